// Export of notes, folders and the whole tree to files, and of a folder to HTML files with an
// index, on an in-memory disk; stored notes are exported from a real document.
#include "../DataCenter/DataCenterTestSupport.h"
#include "../Items/TestTree.h"

#include "Document/DBFolder.h"
#include "Document/DBNote.h"
#include "Document/Export/ExportFileNames.h"
#include "Document/Export/ItemExporter.h"
#include "Shared/RichText/HtmlWriter.h"
#include "Shared/RichText/PlainTextWriter.h"
#include "Shared/RichText/RtfWriter.h"

#include <gtest/gtest.h>

namespace
{
const SFontDescription Font = SFontDescription::Make(u"Arial", 12);

CMemNote* AddTextNote(CFolderBase& parent, std::u16string caption, std::u16string_view text)
{
    CMemNote* note = AddNote(parent, std::move(caption));
    note->GetRichText()->BuildFromPlainText(text);
    return note;
}

// Notes\{Plan "x<y", Sub\{Deep "caf\u00e9"}, "a/b", "Same" twice, "index", "\u00e4"}
struct STree
{
    STree()
    {
        root.SetCaption(u"Notes");
        AddTextNote(root, u"Plan", u"x<y\r\nline two");
        CMemFolder* sub = AddFolder(root, u"Sub");
        AddTextNote(*sub, u"Deep", u"caf\u00e9");
        AddTextNote(root, u"a/b", u"slash");
        AddTextNote(root, u"Same", u"first");
        AddTextNote(root, u"same", u"second");
        AddTextNote(root, u"index", u"not the index");
        AddTextNote(root, u"\u00e4", u"umlaut");
    }
    CMemFolder root;
};

std::string Utf8(std::u16string_view text)
{
    return Utf16ToUtf8(text);
}

class CErrorLog
{
public:
    CErrorLog()
    {
        m_Connector.SetLog(&m_Log);
        CAppConnector::Install(&m_Connector);
    }
    ~CErrorLog() { CAppConnector::Install(nullptr); }

    std::vector<std::u16string> Errors()
    {
        const std::u16string text = Utf16LeBytesToText(m_Fs.Bytes(Path));
        std::vector<std::u16string> lines;
        for (size_t at = text.find(u"Error: "); at != std::u16string::npos;
             at = text.find(u"Error: ", at + 1))
            lines.push_back(text.substr(at, text.find(u"\r\n", at) - at));
        return lines;
    }

private:
    static constexpr const char16_t* Path = u"/l/Quillarium.log";
    CMemFileSystem m_Fs;
    CLog m_Log{Path, &m_Fs};
    CAppConnector m_Connector;
};
} // namespace

TEST(ExportFileNames, CaptionsBecomeSafeUniqueNames)
{
    EXPECT_EQ(SafeFileStem(u"a/b:c*d?e\"f<g>h|i\\j\x01k"), u"a_b_c_d_e_f_g_h_i_j_k");
    EXPECT_EQ(SafeFileStem(u"  x.  "), u"x");
    EXPECT_EQ(SafeFileStem(u" .. "), u"Untitled");
    EXPECT_EQ(SafeFileStem(u"CON"), u"_CON");
    EXPECT_EQ(SafeFileStem(u"lpt9.txt"), u"_lpt9.txt");
    EXPECT_EQ(SafeFileStem(u"COM10"), u"COM10");
    EXPECT_EQ(SafeFileStem(std::u16string(150, u'w')).size(), CExportNames::MaxStemLength);
    // A surrogate pair is not cut in half.
    const std::u16string emoji = std::u16string(99, u'w') + u"\U0001F600";
    EXPECT_EQ(SafeFileStem(emoji), std::u16string(99, u'w'));

    CExportNames names;
    EXPECT_EQ(names.Take(u"Note", u"html"), u"Note.html");
    EXPECT_EQ(names.Take(u"note", u"html"), u"note (2).html");
    EXPECT_EQ(names.Take(u"NOTE", u"html"), u"NOTE (3).html");
    EXPECT_EQ(names.Take(u"Note", u""), u"Note");
    EXPECT_EQ(names.Take(u"Note", u""), u"Note (2)");

    EXPECT_EQ(RelativeLink(u"Sub dir/\u00e4 #1.html"), "Sub%20dir/%C3%A4%20%231.html");
    EXPECT_EQ(HtmlEscaped(u"<a href='x'>&\"</a>"), "&lt;a href=&#39;x&#39;&gt;&amp;&quot;&lt;/a&gt;");
}

TEST(ItemExporter, NoteFolderAndTreeToOneFile)
{
    STree tree;
    CMemFileSystem fs;
    CItemExporter exporter(fs, Font);
    CItem& plan = *tree.root.GetChild(0);
    const CRichTextDocument& text = *static_cast<CMemNote&>(plan).GetRichText();

    ASSERT_TRUE(exporter.ExportToFile(plan, EExportFormat::Rtf, u"/out/plan.rtf"));
    EXPECT_EQ(fs.Bytes(u"/out/plan.rtf"), RtfTextToBytes(ToRtf(text, Font)));
    ASSERT_TRUE(exporter.ExportToFile(plan, EExportFormat::Html, u"/out/plan.html"));
    EXPECT_EQ(fs.Bytes(u"/out/plan.html"), Utf8(ToHtml(text, u"Plan", Font)));
    EXPECT_NE(fs.Bytes(u"/out/plan.html").find("<title>Plan</title>"), std::string::npos);
    ASSERT_TRUE(exporter.ExportToFile(plan, EExportFormat::PlainText, u"/out/plan.txt"));
    EXPECT_EQ(fs.Bytes(u"/out/plan.txt"), "x<y\r\nline two");

    // A folder gives its subtree dump, in UTF-8.
    ASSERT_TRUE(exporter.ExportToFile(*tree.root.GetChild(1), EExportFormat::PlainText, u"/out/sub.txt"));
    EXPECT_EQ(fs.Bytes(u"/out/sub.txt"), "--- [Folder] Sub --- Path: \\Notes\\Sub (Depth: 2)---\r\n\r\n" +
                                             std::string(76, '-') +
                                             "\r\n\r\n--- [Note] Deep --- Path: \\Notes\\Sub\\Deep (Depth: "
                                             "3)---\r\n\r\ncaf\xC3\xA9");
    CRichTextDocument dump;
    ASSERT_TRUE(tree.root.DumpText(dump, Font));
    ASSERT_TRUE(exporter.ExportToFile(tree.root, EExportFormat::Html, u"/out/all.html"));
    EXPECT_EQ(fs.Bytes(u"/out/all.html"), Utf8(ToHtml(dump, u"Notes", Font)));
    // The headings are bold (weight 900) in the RTF of the dump.
    ASSERT_TRUE(exporter.ExportToFile(tree.root, EExportFormat::Rtf, u"/out/all.rtf"));
    EXPECT_NE(fs.Bytes(u"/out/all.rtf").find("\\b\\cpg1252\\lang1033\\ltrch --- [Folder] Notes"),
              std::string::npos);
}

TEST(ItemExporter, RtfFileHoldsOnlyBytesAndWideFaceNamesAsUnicode)
{
    CMemFolder root;
    CMemNote* note = AddTextNote(root, u"N", u"\u4e2d\u00e9");
    CRtfTextBlockInfo block(0);
    block.SetFont(SFontDescription::Make(u"\u5b8b\u4f53", 10));
    note->GetRichText()->Line(0).AddBlock(block);
    CMemFileSystem fs;
    ASSERT_TRUE(CItemExporter(fs, Font).ExportToFile(*note, EExportFormat::Rtf, u"/n.rtf"));
    const std::string& rtf = fs.Bytes(u"/n.rtf");
    EXPECT_NE(rtf.find("\\ftnil \\u23435?\\u20307?;}"), std::string::npos);
    EXPECT_NE(rtf.find("\\u20013?\\u233\xE9}"), std::string::npos);
}

TEST(ItemExporter, FolderAsHtmlFilesWithIndex)
{
    STree tree;
    CMemFileSystem fs;
    CItemExporter exporter(fs, Font);
    std::vector<std::pair<size_t, size_t>> progress;
    exporter.SetProgress(
        [&](size_t done, size_t total)
        {
            progress.emplace_back(done, total);
            return true;
        });
    ASSERT_TRUE(exporter.ExportAsHtmlFiles(tree.root, u"/site"));
    EXPECT_EQ(progress.size(), 7u);
    EXPECT_EQ(progress.back(), std::make_pair(size_t(7), size_t(7)));

    std::vector<std::u16string> names;
    for (const SFolderEntry& entry : fs.ListFolder(u"/site", u"*"))
        names.push_back(entry.name + (entry.isFolder ? u"/" : u""));
    EXPECT_EQ(names, (std::vector<std::u16string>{u"Plan.html", u"Same.html", u"Sub/", u"a_b.html",
                                                  u"index (2).html", u"index.html", u"same (2).html",
                                                  u"\u00e4.html"}));
    const CRichTextDocument& deep =
        *static_cast<CMemNote&>(*static_cast<CFolderBase&>(*tree.root.GetChild(1)).GetChild(0)).GetRichText();
    EXPECT_EQ(fs.Bytes(u"/site/Sub/Deep.html"), Utf8(ToHtml(deep, u"Deep", Font)));

    const std::string index = fs.Bytes(u"/site/index.html");
    EXPECT_NE(index.find("<title>Notes</title>"), std::string::npos);
    for (const char* link :
         {"<li><a href=\"Plan.html\">Plan</a></li>",
          "<li>Sub\r\n<ul>\r\n<li><a href=\"Sub/Deep.html\">Deep</a></li>",
          "<li><a href=\"a_b.html\">a/b</a></li>", "<li><a href=\"same%20%282%29.html\">same</a></li>",
          "<li><a href=\"index%20%282%29.html\">index</a></li>",
          "<li><a href=\"%C3%A4.html\">\xC3\xA4</a></li>"})
        EXPECT_NE(index.find(link), std::string::npos) << link << "\n" << index;
}

TEST(ItemExporter, WriteFailureAndCancelAreReported)
{
    CErrorLog log;
    STree tree;
    CMemFileSystem fs;
    CItemExporter exporter(fs, Font);
    fs.Faults().failWriteAfter = 1; // Plan.html is written, Sub/Deep.html is not
    EXPECT_FALSE(exporter.ExportAsHtmlFiles(tree.root, u"/site"));
    EXPECT_EQ(exporter.Failure().path, u"/site/Sub/Deep.html");
    EXPECT_EQ(exporter.Failure().cause, 5);
    EXPECT_EQ(log.Errors(), std::vector<std::u16string>{
                                u"Error: Cannot write the exported file /site/Sub/Deep.html, cause - 5"});

    fs.Faults().failWriteAfter = -1;
    exporter.SetProgress([](size_t done, size_t) { return done < 3; });
    EXPECT_FALSE(exporter.ExportAsHtmlFiles(tree.root, u"/site2"));
    EXPECT_TRUE(exporter.Failure().cancelled);
    EXPECT_FALSE(fs.Exists(u"/site2/index.html"));
}
