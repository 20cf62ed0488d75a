#pragma once
// Copying tree items to the system clipboard: the tree writes the selected items once as the
// application's tree data and once as Unicode text, and both blocks go to the clipboard.
#include "Shared/Clipboard/ClipboardFormats.h"

#include <cstdint>
#include <functional>
#include <span>

class CArchiveWriter;

// The platform clipboard, opened on behalf of the application's main window.
class IClipboard
{
public:
    virtual ~IClipboard() = default;
    virtual bool Open() = 0;
    virtual bool Empty() = 0;
    // Hands a copy of `data` to the clipboard under `formatId`.
    virtual bool SetData(uint32_t formatId, std::span<const uint8_t> data) = 0;
    virtual bool Close() = 0;
    // The identifier of the standard Unicode text format.
    virtual uint32_t UnicodeTextFormat() const = 0;
};

// Writes the selected items into the two memory blocks (tree data, UTF-16LE text with its
// terminating zero unit if the writer wants one).
using TreeItemsWriter = std::function<void(CArchiveWriter& treeData, CArchiveWriter& unicodeText)>;

// Logs "Error: failed on copying data to clipboard" and returns false when the clipboard cannot
// be opened or emptied, the tree format cannot be registered or closing fails; an exception on
// the way is logged as a general exception and also gives false. Empty blocks are not offered.
bool CopyTreeItemsToClipboard(IClipboard& clipboard, CClipboardFormats& formats,
                              const TreeItemsWriter& writeItems);
