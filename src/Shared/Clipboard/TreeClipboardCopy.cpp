#include "Shared/Clipboard/TreeClipboardCopy.h"

#include "Shared/Base/Archive.h"
#include "Shared/Log/Log.h"

#include <exception>

namespace
{
constexpr size_t MemoryGrowStep = 4096;

void LogCopyFailure()
{
    LogMessage(u"Error: failed on copying data to clipboard");
}

bool OfferBlocks(IClipboard& clipboard, uint32_t treeFormat, const CArchiveWriter& treeData,
                 const CArchiveWriter& unicodeText)
{
    if (treeFormat != 0 && treeData.Size() != 0)
        clipboard.SetData(treeFormat, treeData.Bytes());
    if (unicodeText.Size() != 0)
        clipboard.SetData(clipboard.UnicodeTextFormat(), unicodeText.Bytes());
    const bool closed = clipboard.Close();
    return closed && treeFormat != 0;
}
} // namespace

bool CopyTreeItemsToClipboard(IClipboard& clipboard, CClipboardFormats& formats,
                              const TreeItemsWriter& writeItems)
{
    bool opened = false;
    try
    {
        if (!clipboard.Open())
        {
            LogCopyFailure();
            return false;
        }
        opened = true;
        if (!clipboard.Empty())
        {
            clipboard.Close();
            LogCopyFailure();
            return false;
        }
        CArchiveWriter treeData(MemoryGrowStep);
        CArchiveWriter unicodeText(MemoryGrowStep);
        writeItems(treeData, unicodeText);
        opened = false; // offering the blocks closes the clipboard
        if (!OfferBlocks(clipboard, formats.Id(EClipboardFormat::TreeData), treeData, unicodeText))
        {
            LogCopyFailure();
            return false;
        }
        return true;
    }
    catch (const std::exception&)
    {
        LogMessage(u"Error: general exception caught on copying data in to clipboard");
        if (opened)
            clipboard.Close();
        return false;
    }
}
