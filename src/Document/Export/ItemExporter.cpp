#include "Document/Export/ItemExporter.h"

#include "Document/DBNote.h"
#include "Document/Export/ExportFileNames.h"
#include "Document/FolderBase.h"
#include "Document/NoteBase.h"
#include "Shared/Base/File.h"
#include "Shared/Base/TextConv.h"
#include "Shared/Log/Log.h"
#include "Shared/RichText/HtmlWriter.h"
#include "Shared/RichText/PlainTextWriter.h"
#include "Shared/RichText/RtfWriter.h"

namespace
{
// A note's text for the time of one export: a stored note whose text was not in memory is read
// and then left in storage again, so exporting a large tree does not keep every text loaded.
class CNoteTextUse
{
public:
    explicit CNoteTextUse(CNoteBase& note) : m_Stored(dynamic_cast<CDBNote*>(&note))
    {
        m_WasLoaded = m_Stored == nullptr || m_Stored->IsTextLoaded();
        m_Text = note.GetRichText();
    }
    ~CNoteTextUse()
    {
        if (!m_WasLoaded && m_Stored->IsTextLoaded())
            m_Stored->UnloadText();
    }
    CNoteTextUse(const CNoteTextUse&) = delete;
    CNoteTextUse& operator=(const CNoteTextUse&) = delete;

    const CRichTextDocument* Text() const { return m_Text; }

private:
    CDBNote* m_Stored;
    bool m_WasLoaded = true;
    const CRichTextDocument* m_Text = nullptr;
};

size_t CountNotes(const CFolderBase& folder)
{
    size_t notes = 0;
    for (size_t i = 0; i < folder.GetChildCount(); ++i)
    {
        const CItem& child = *folder.GetChild(i);
        notes += child.IsKind(EItemKind::Folder) ? CountNotes(static_cast<const CFolderBase&>(child)) : 1;
    }
    return notes;
}
} // namespace

std::u16string_view ExportExtension(EExportFormat format)
{
    switch (format)
    {
    case EExportFormat::Rtf:
        return u"rtf";
    case EExportFormat::Html:
        return u"html";
    case EExportFormat::PlainText:
        break;
    }
    return u"txt";
}

bool ExportedText(CItem& item, const SFontDescription& defaultFont, CRichTextDocument& text)
{
    if (item.IsKind(EItemKind::Folder))
        return item.DumpText(text, defaultFont);
    const CNoteTextUse use(static_cast<CNoteBase&>(item));
    if (use.Text() == nullptr)
        return false;
    text = *use.Text();
    return true;
}

std::string ExportFileBytes(const CRichTextDocument& text, EExportFormat format, std::u16string_view title,
                            const SFontDescription& defaultFont)
{
    switch (format)
    {
    case EExportFormat::Rtf:
        return RtfTextToBytes(ToRtf(text, defaultFont));
    case EExportFormat::Html:
        return Utf16ToUtf8(ToHtml(text, title, defaultFont));
    case EExportFormat::PlainText:
        break;
    }
    return Utf16ToUtf8(ToPlainText(text));
}

bool CItemExporter::ExportToFile(CItem& item, EExportFormat format, const std::u16string& path)
{
    m_Failure = {};
    CRichTextDocument text;
    if (!ExportedText(item, m_DefaultFont, text))
    {
        m_Failure = {path, 0, false}; // the reading logged why
        return false;
    }
    return Write(path, ExportFileBytes(text, format, item.GetCaption(), m_DefaultFont));
}

bool CItemExporter::Write(const std::u16string& path, std::string_view bytes)
{
    int cause = 0;
    if (WriteWholeFile(m_Fs, path, bytes, cause))
        return true;
    LogMessage(u"Error: Cannot write the exported file %s, cause - %d", path, cause);
    m_Failure = {path, cause, false};
    return false;
}

bool CItemExporter::MakeFolder(const std::u16string& path)
{
    int cause = 0;
    if (m_Fs.IsFolder(path) || m_Fs.CreateFolder(path, cause))
        return true;
    LogMessage(u"Error: Cannot create the export folder %s, cause - %d", path, cause);
    m_Failure = {path, cause, false};
    return false;
}

// Writes the notes of one folder tree and collects the index page as it goes.
class CItemExporter::CHtmlFilesWriter
{
public:
    CHtmlFilesWriter(CItemExporter& exporter, size_t total) : m_Exporter(exporter), m_Total(total) {}

    // `relative` is the folder's path below the target ("" for the target itself).
    bool WriteFolder(CFolderBase& folder, const std::u16string& target, const std::u16string& relative)
    {
        CExportNames names;
        if (relative.empty())
            names.Take(u"index", u"html"); // the index page's own name
        m_Index += "<ul>\r\n";
        for (size_t i = 0; i < folder.GetChildCount(); ++i)
        {
            CItem& child = *folder.GetChild(i);
            const bool isFolder = child.IsKind(EItemKind::Folder);
            const std::u16string name = names.Take(child.GetCaption(), isFolder ? u"" : u"html");
            const std::u16string path = JoinPath(target, name);
            const std::u16string link = relative.empty() ? name : relative + u"/" + name;
            if (isFolder)
            {
                m_Index += "<li>" + HtmlEscaped(child.GetCaption()) + "\r\n";
                if (!m_Exporter.MakeFolder(path) ||
                    !WriteFolder(static_cast<CFolderBase&>(child), path, link))
                    return false;
                m_Index += "</li>\r\n";
            }
            else
            {
                if (!WriteNote(static_cast<CNoteBase&>(child), path))
                    return false;
                m_Index += "<li><a href=\"" + RelativeLink(link) + "\">" + HtmlEscaped(child.GetCaption()) +
                           "</a></li>\r\n";
            }
        }
        m_Index += "</ul>\r\n";
        return true;
    }

    const std::string& Index() const { return m_Index; }

private:
    bool WriteNote(CNoteBase& note, const std::u16string& path)
    {
        {
            const CNoteTextUse use(note);
            if (use.Text() == nullptr)
            {
                m_Exporter.m_Failure = {path, 0, false}; // the reading logged why
                return false;
            }
            if (!m_Exporter.Write(path, ExportFileBytes(*use.Text(), EExportFormat::Html, note.GetCaption(),
                                                        m_Exporter.m_DefaultFont)))
                return false;
        }
        ++m_Done;
        if (m_Exporter.m_Progress && !m_Exporter.m_Progress(m_Done, m_Total))
        {
            LogMessage(u"Info: Export to HTML files cancelled after %d of %d notes",
                       static_cast<long long>(m_Done), static_cast<long long>(m_Total));
            m_Exporter.m_Failure = {path, 0, true};
            return false;
        }
        return true;
    }

    CItemExporter& m_Exporter;
    size_t m_Total;
    size_t m_Done = 0;
    std::string m_Index;
};

bool CItemExporter::ExportAsHtmlFiles(CFolderBase& folder, const std::u16string& targetFolder)
{
    m_Failure = {};
    if (!MakeFolder(targetFolder))
        return false;
    CHtmlFilesWriter writer(*this, CountNotes(folder));
    if (!writer.WriteFolder(folder, targetFolder, u""))
        return false;
    const std::string title = HtmlEscaped(folder.GetCaption());
    const std::string page =
        "<!DOCTYPE html>\r\n<html>\r\n<head>\r\n<meta charset=\"utf-8\">\r\n<title>" + title +
        "</title>\r\n</head>\r\n<body>\r\n<!-- generated by Quillarium Organizer -->\r\n<h1>" + title +
        "</h1>\r\n" + writer.Index() + "</body>\r\n</html>\r\n";
    return Write(JoinPath(targetFolder, u"index.html"), page);
}
