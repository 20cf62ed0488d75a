#include "Document/Import/KntImporter.h"

#include "Shared/Base/TextConv.h"
#include "Shared/Log/Log.h"
#include "Shared/RichText/PlainTextReader.h"
#include "Shared/RichText/RtfReader.h"

#include <algorithm>
#include <map>
#include <new>

namespace
{
constexpr std::string_view EndOfImage = "##END_IMAGE##";
// The "plain text only" flag of a folder's FL= flags string, which counts only when complete.
constexpr size_t PlainTextFlag = 5;
constexpr size_t FlagsLength = 24;
constexpr int MaxNodeDepth = 256;

struct SKntSyntaxError
{
    std::u16string reason;
};

// The text of a note as stored: RTF, or plain text lines with their ';' marks.
struct SKntBody
{
    std::string text;
    bool plain = false;
};

// A node as read, before the tree is known.
struct SKntNode
{
    int level = 0;
    std::u16string caption; // 1.x/2.x
    SKntBody body;          // 1.x/2.x
    std::string noteId;     // 3.x: the note shown ("GI", else the node's own "gi")
    std::string nodeId;
};

struct SKntFolder
{
    bool isTree = true;
    bool plainText = false;
    std::u16string caption;
    std::string body; // simple folders
    std::vector<SKntNode> nodes;
};

// 3.x: a note listed before the folders, with the texts of its entries.
struct SKntNote
{
    std::u16string caption;
    std::vector<SKntBody> entries;
};

enum class ESection
{
    Header,
    Folder,
    Node,
    Note,  // 3.x
    Entry, // 3.x
    Body,
    Ignored, // tags, bookmarks, storage and image lists
    Images
};

// Captions are UTF-8 in current files; older files wrote them in the system code page.
std::u16string DecodeCaption(std::string_view bytes)
{
    return IsValidUtf8(bytes) ? Utf8ToUtf16(bytes) : Cp1252ToUtf16(bytes);
}

class CKntParser
{
public:
    CKntParser(std::string_view bytes, const SFontDescription& defaultFont)
        : m_In(bytes), m_DefaultFont(defaultFont)
    {
    }

    std::vector<SImportItem> Parse()
    {
        CheckHeader(NextLine());
        while (!m_Ended && m_Pos < m_In.size())
            HandleLine(NextLine());
        FinishBody();
        std::vector<SImportItem> items;
        for (SKntFolder& folder : m_Folders)
            items.push_back(ConvertFolder(folder));
        return items;
    }

private:
    std::string_view NextLine()
    {
        const size_t end = std::min(m_In.find('\n', m_Pos), m_In.size());
        std::string_view line = m_In.substr(m_Pos, end - m_Pos);
        m_Pos = std::min(end + 1, m_In.size());
        ++m_LineNumber;
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        return line;
    }

    void CheckHeader(std::string_view line)
    {
        if (line.starts_with("\xEF\xBB\xBF"))
            line.remove_prefix(3);
        if (!line.starts_with("#!GFKN"))
            throw SKntSyntaxError{u"it is not a KeyNote file"};
        if (!line.starts_with("#!GFKNT"))
            throw SKntSyntaxError{u"it is encrypted or compressed, which is not supported"};
        const std::string_view version = line.substr(std::min<size_t>(8, line.size()));
        if (version.starts_with("3."))
            m_NewerLayout = true;
        else if (!version.starts_with("1.") && !version.starts_with("2."))
            throw SKntSyntaxError{u"its layout version " + Cp1252ToUtf16(version.substr(0, 16)) +
                                  u" is not supported (files of versions 1, 2 and 3 can be imported)"};
    }

    static bool IsMarker(std::string_view line)
    {
        static constexpr std::string_view Markers[] = {"%",  "%+", "%-", "%:",  "%>",  "%%", "%*",
                                                       "%.", "%S", "%I", "%EI", "%BK", "%TG"};
        return std::find(std::begin(Markers), std::end(Markers), line) != std::end(Markers);
    }

    void HandleLine(std::string_view line)
    {
        if (line == "%C" || line == "%CE")
            throw SKntSyntaxError{u"it holds encrypted content, which is not supported"};
        if (IsMarker(line))
        {
            HandleMarker(line);
            return;
        }
        switch (m_Section)
        {
        case ESection::Body:
            AppendBodyLine(line);
            break;
        case ESection::Folder:
            HandleFolderData(line);
            break;
        case ESection::Node:
            HandleNodeData(line);
            break;
        case ESection::Note:
            HandleNoteData(line);
            break;
        case ESection::Images:
            if (line.starts_with("EI="))
                SkipImage();
            break;
        case ESection::Header:
            // The 3.x layout counts its notes on a line of its own before listing them.
            if (!line.empty() && line[0] != '#' && !(m_NewerLayout && line.starts_with("N:=")))
                throw SKntSyntaxError{FormatText(u"line %d lies outside any folder", m_LineNumber)};
            break;
        case ESection::Entry:
        case ESection::Ignored:
            break;
        }
    }

    void HandleMarker(std::string_view marker)
    {
        FinishBody();
        if (marker == "%+" || marker == "%")
        {
            if (m_NewerLayout && marker == "%")
                throw SKntSyntaxError{
                    FormatText(u"line %d holds a simple folder, which the 3.x layout has not", m_LineNumber)};
            m_Folders.emplace_back();
            m_Folders.back().isTree = marker == "%+";
            m_Section = ESection::Folder;
        }
        else if (marker == "%-")
            StartNode();
        else if (marker == "%*" && m_NewerLayout)
        {
            m_Notes.emplace_back();
            m_Section = ESection::Note;
        }
        else if (marker == "%." && m_NewerLayout)
        {
            if (m_Notes.empty() || !m_Folders.empty())
                throw SKntSyntaxError{FormatText(u"the entry at line %d belongs to no note", m_LineNumber)};
            m_Section = ESection::Entry;
        }
        else if (marker == "%:" || marker == "%>")
            StartBody(marker == "%>");
        else if (marker == "%%")
            m_Ended = true;
        else
            m_Section = marker == "%EI" ? ESection::Images : ESection::Ignored;
    }

    void StartNode()
    {
        if (m_Folders.empty() || !m_Folders.back().isTree)
            throw SKntSyntaxError{
                FormatText(u"the node at line %d lies outside a tree folder", m_LineNumber)};
        std::vector<SKntNode>& nodes = m_Folders.back().nodes;
        nodes.emplace_back();
        // A 3.x node without a level stands at the level of the node before it.
        if (nodes.size() > 1)
            nodes.back().level = nodes[nodes.size() - 2].level;
        m_Section = ESection::Node;
    }

    void StartBody(bool plain)
    {
        const bool allowed = m_NewerLayout
                                 ? m_Section == ESection::Entry
                                 : (m_Section == ESection::Node || m_Section == ESection::Folder) && !plain;
        if (!allowed)
            throw SKntSyntaxError{FormatText(u"the text at line %d belongs to no note", m_LineNumber)};
        if (m_Section == ESection::Folder && m_Folders.back().isTree)
        {
            m_Section = ESection::Ignored; // a tree folder keeps its text in its nodes
            return;
        }
        if (m_Section == ESection::Node)
            m_Folders.back().nodes.back().body.plain = m_Folders.back().plainText;
        else if (m_Section == ESection::Entry)
            m_Notes.back().entries.push_back({std::string(), plain});
        m_BodyOwner = m_Section;
        m_Section = ESection::Body;
    }

    std::string& BodyText()
    {
        switch (m_BodyOwner)
        {
        case ESection::Node:
            return m_Folders.back().nodes.back().body.text;
        case ESection::Entry:
            return m_Notes.back().entries.back().text;
        default:
            return m_Folders.back().body;
        }
    }

    void AppendBodyLine(std::string_view line)
    {
        std::string& body = BodyText();
        body.append(line);
        body.append("\r\n");
    }

    // The section after a body is the data of nothing: only markers may follow.
    void FinishBody()
    {
        if (m_Section == ESection::Body)
            m_Section = ESection::Ignored;
    }

    void HandleFolderData(std::string_view line)
    {
        SKntFolder& folder = m_Folders.back();
        if (line.starts_with("NN="))
            folder.caption = DecodeCaption(line.substr(3));
        else if (line.starts_with("FL=") && line.size() >= 3 + FlagsLength)
            folder.plainText = line[3 + PlainTextFlag] == '1';
    }

    void HandleNodeData(std::string_view line)
    {
        SKntNode& node = m_Folders.back().nodes.back();
        if (line.starts_with("ND="))
            node.caption = DecodeCaption(line.substr(3));
        else if (line.starts_with("LV="))
            node.level = ParseLevel(line.substr(3));
        else if (line.starts_with("GI="))
            node.noteId = line.substr(3);
        else if (line.starts_with("gi="))
            node.nodeId = line.substr(3);
    }

    void HandleNoteData(std::string_view line)
    {
        if (line.starts_with("ND="))
            m_Notes.back().caption = DecodeCaption(line.substr(3));
        else if (line.starts_with("GI="))
            m_NoteIndex[std::string(line.substr(3))] = m_Notes.size() - 1;
    }

    int ParseLevel(std::string_view digits) const
    {
        int level = 0;
        for (const char ch : digits)
        {
            if (ch < '0' || ch > '9' || level > 100000)
                throw SKntSyntaxError{FormatText(u"the node level at line %d is not a number", m_LineNumber)};
            level = level * 10 + (ch - '0');
        }
        return level;
    }

    // Embedded image data is binary and may hold anything, line breaks and markers included; it
    // runs to the end-of-image line.
    void SkipImage()
    {
        const size_t end = m_In.find(EndOfImage, m_Pos);
        if (end == std::string_view::npos)
            throw SKntSyntaxError{u"an embedded image has no end"};
        m_Pos = end;
        NextLine();
    }

    // ---- conversion -----------------------------------------------------------------------

    // A node's caption and text, from the node itself (1.x/2.x) or from the note it names (3.x).
    struct SNodeContent
    {
        std::u16string caption;
        CRichTextDocument text;
    };

    SNodeContent NodeContent(const SKntNode& node, const SKntFolder& folder)
    {
        if (!m_NewerLayout)
            return {node.caption, ConvertBody(node.body.text, folder.plainText)};
        const auto found = m_NoteIndex.find(node.noteId.empty() ? node.nodeId : node.noteId);
        if (found == m_NoteIndex.end())
            throw SKntSyntaxError{u"a node names a note the file does not hold"};
        const SKntNote& note = m_Notes[found->second];
        SNodeContent content{note.caption, CRichTextDocument()};
        for (const SKntBody& entry : note.entries)
        {
            const CRichTextDocument text = ConvertBody(entry.text, entry.plain);
            for (const CRtfTextLine& line : text.Lines())
                content.text.AppendLine(line);
        }
        return content;
    }

    SImportItem ConvertFolder(SKntFolder& folder)
    {
        SImportItem item = SImportItem::Folder(folder.caption);
        if (!folder.isTree)
        {
            item.children.push_back(
                SImportItem::Note(folder.caption, ConvertBody(folder.body, folder.plainText)));
            return item;
        }
        LimitLevels(folder.nodes);
        size_t next = 0;
        AddNodes(folder, next, 0, item.children);
        return item;
    }

    // A node lies at most one level below its predecessor; deeper trees are refused so that
    // building them cannot exhaust the stack.
    static void LimitLevels(std::vector<SKntNode>& nodes)
    {
        int previous = -1;
        for (SKntNode& node : nodes)
        {
            node.level = std::min(node.level, previous + 1);
            if (node.level > MaxNodeDepth)
                throw SKntSyntaxError{
                    FormatText(u"its nodes are nested more than %d levels deep", MaxNodeDepth)};
            previous = node.level;
        }
    }

    // Adds the nodes from `next` on that lie at `level` (deeper ones go to their parent); a node
    // deeper than one below its predecessor is taken as that one's child.
    void AddNodes(SKntFolder& folder, size_t& next, int level, std::vector<SImportItem>& out)
    {
        while (next < folder.nodes.size() && folder.nodes[next].level >= level)
        {
            SNodeContent content = NodeContent(folder.nodes[next++], folder);
            if (next >= folder.nodes.size() || folder.nodes[next].level <= level)
            {
                out.push_back(SImportItem::Note(std::move(content.caption), std::move(content.text)));
                continue;
            }
            SImportItem parent = SImportItem::Folder(content.caption);
            if (!content.text.IsEmpty())
                parent.children.push_back(SImportItem::Note(content.caption, std::move(content.text)));
            AddNodes(folder, next, level + 1, parent.children);
            out.push_back(std::move(parent));
        }
    }

    CRichTextDocument ConvertBody(std::string_view body, bool plainText)
    {
        CRichTextDocument text;
        const size_t start = body.find_first_not_of(" \r\n");
        if (!plainText && start != std::string_view::npos && body.substr(start).starts_with("{\\rtf"))
        {
            std::u16string failure;
            if (!ReadRtf(body, m_DefaultFont, text, &failure))
                throw SKntSyntaxError{u"the RTF text of a note cannot be read: " + failure};
            return text;
        }
        ReadPlainText(StripPlainTextMarks(body), text);
        return text;
    }

    // Plain text lines carry a leading ';' so that they never read as markers.
    static std::string StripPlainTextMarks(std::string_view body)
    {
        if (body.ends_with("\r\n"))
            body.remove_suffix(2);
        std::string text;
        text.reserve(body.size());
        for (size_t at = 0; at <= body.size();)
        {
            const size_t end = std::min(body.find("\r\n", at), body.size());
            std::string_view line = body.substr(at, end - at);
            if (line.starts_with(';'))
                line.remove_prefix(1);
            if (at > 0)
                text.append("\r\n");
            text.append(line);
            at = end + 2;
        }
        return text;
    }

    std::string_view m_In;
    size_t m_Pos = 0;
    int m_LineNumber = 0;
    bool m_Ended = false;
    bool m_NewerLayout = false;
    const SFontDescription& m_DefaultFont;
    ESection m_Section = ESection::Header;
    ESection m_BodyOwner = ESection::Node;
    std::vector<SKntFolder> m_Folders;
    std::vector<SKntNote> m_Notes;
    std::map<std::string, size_t> m_NoteIndex; // 3.x note ID -> index in m_Notes
};
} // namespace

bool ParseKntFile(std::string_view bytes, const std::u16string& fileName, const SFontDescription& defaultFont,
                  std::vector<SImportItem>& items)
{
    try
    {
        std::vector<SImportItem> parsed = CKntParser(bytes, defaultFont).Parse();
        for (SImportItem& item : parsed)
            items.push_back(std::move(item));
        return true;
    }
    catch (const SKntSyntaxError& error)
    {
        LogMessage(u"Error: Cannot import KeyNote file %s, %s", fileName, error.reason);
    }
    catch (const std::bad_alloc&)
    {
        LogMessage(u"Error: Cannot import KeyNote file %s, out of memory", fileName);
    }
    return false;
}

bool ImportKntFile(std::string_view bytes, const std::u16string& fileName,
                   const SFontDescription& defaultFont, IImportTarget& target, CFolderBase& parent)
{
    std::vector<SImportItem> items;
    return ParseKntFile(bytes, fileName, defaultFont, items) && target.AddItems(parent, items);
}
