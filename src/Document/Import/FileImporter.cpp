#include "Document/Import/FileImporter.h"

#include "Document/Import/KntImporter.h"
#include "Shared/Base/File.h"
#include "Shared/Base/TextConv.h"
#include "Shared/Log/Log.h"
#include "Shared/RichText/PlainTextReader.h"
#include "Shared/RichText/RtfReader.h"

#include <algorithm>

namespace
{
enum class EFileKind
{
    Rtf,
    Knt,
    Text,
    Other
};

std::u16string ExtensionOf(std::u16string_view name)
{
    const size_t dot = name.rfind(u'.');
    return dot == std::u16string_view::npos || dot == 0 ? std::u16string()
                                                        : AsciiToLower(name.substr(dot + 1));
}

std::u16string StemOf(std::u16string_view name)
{
    const size_t dot = name.rfind(u'.');
    return std::u16string(dot == std::u16string_view::npos || dot == 0 ? name : name.substr(0, dot));
}

EFileKind KindOf(std::u16string_view name)
{
    const std::u16string extension = ExtensionOf(name);
    if (extension == u"rtf")
        return EFileKind::Rtf;
    if (extension == u"knt")
        return EFileKind::Knt;
    static constexpr std::u16string_view TextExtensions[] = {u"txt", u"text", u"md", u"log", u"csv", u"ini"};
    if (std::find(std::begin(TextExtensions), std::end(TextExtensions), extension) !=
        std::end(TextExtensions))
        return EFileKind::Text;
    return EFileKind::Other;
}
} // namespace

bool CFileImporter::Import(const std::vector<std::u16string>& paths, IImportTarget& target,
                           CFolderBase& parent)
{
    std::vector<SImportItem> items;
    return Read(paths, items) && target.AddItems(parent, items);
}

bool CFileImporter::Read(const std::vector<std::u16string>& paths, std::vector<SImportItem>& items)
{
    std::vector<SImportItem> read;
    for (const std::u16string& path : paths)
        if (!ReadPath(path, true, 0, read))
            return false;
    for (SImportItem& item : read)
        items.push_back(std::move(item));
    return true;
}

bool CFileImporter::ReadPath(const std::u16string& path, bool named, int depth,
                             std::vector<SImportItem>& items)
{
    if (m_Fs.IsFolder(path))
        return ReadFolder(path, depth, items);
    return ReadFile(path, named, items);
}

bool CFileImporter::ReadFolder(const std::u16string& path, int depth, std::vector<SImportItem>& items)
{
    if (depth >= MaxFolderDepth)
    {
        LogMessage(u"Error: Cannot import folder %s, folders are nested more than %d deep", path,
                   MaxFolderDepth);
        return false;
    }
    std::u16string trimmed = path;
    while (trimmed.size() > 1 && trimmed.back() == u'/')
        trimmed.pop_back();
    SImportItem folder = SImportItem::Folder(FileNameOf(trimmed));
    for (const SFolderEntry& entry : m_Fs.ListFolder(trimmed, u"*"))
    {
        if (entry.name == u"." || entry.name == u"..")
            continue;
        if (!ReadPath(JoinPath(trimmed, entry.name), false, depth + 1, folder.children))
            return false;
    }
    items.push_back(std::move(folder));
    return true;
}

bool CFileImporter::ReadFile(const std::u16string& path, bool named, std::vector<SImportItem>& items)
{
    const std::u16string name = FileNameOf(path);
    const EFileKind kind = KindOf(name);
    if (kind == EFileKind::Other && !named)
    {
        LogMessage(u"Info: Import skips %s, it is not a text, RTF or KeyNote file", path);
        return true;
    }
    std::string bytes;
    int cause = 0;
    if (!ReadWholeFile(m_Fs, path, bytes, cause))
    {
        LogMessage(u"Error: Cannot import file %s, it cannot be read, cause - %d", path, cause);
        return false;
    }
    if (kind == EFileKind::Knt)
        return ParseKntFile(bytes, path, m_DefaultFont, items);
    CRichTextDocument text;
    std::u16string failure;
    if (kind != EFileKind::Rtf)
        ReadPlainText(bytes, text);
    else if (!ReadRtf(bytes, m_DefaultFont, text, &failure))
    {
        LogMessage(u"Error: Cannot import file %s, its RTF cannot be read: %s", path, failure);
        return false;
    }
    items.push_back(SImportItem::Note(StemOf(name), std::move(text)));
    return true;
}
