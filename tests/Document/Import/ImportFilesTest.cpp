#include "ImportTestSupport.h"

#include "Document/Import/FileImporter.h"
#include "Document/Import/MemImportTarget.h"
#include "Shared/RichText/FontDescription.h"
#include "Shared/RichText/PlainTextReader.h"

#include <gtest/gtest.h>

namespace
{
const SFontDescription Font = SFontDescription::Make(u"Arial", 10);

TEST(ImportPlainTextTest, EncodingIsRecognisedFromTheBytes)
{
    EXPECT_EQ(u"\u00e9t\u00e9", DecodePlainTextBytes("\xEF\xBB\xBF\xC3\xA9t\xC3\xA9"));
    EXPECT_EQ(u"\u00e9t\u00e9", DecodePlainTextBytes("\xC3\xA9t\xC3\xA9"));
    EXPECT_EQ(u"a\u20ac", DecodePlainTextBytes(std::string_view("\xFF\xFE"
                                                                "a\0\xAC\x20",
                                                                6)));
    EXPECT_EQ(u"a\u20ac", DecodePlainTextBytes(std::string_view("\xFE\xFF\0a\x20\xAC", 6)));
    // Not UTF-8: Windows-1252.
    EXPECT_EQ(u"\u00e9t\u20ac", DecodePlainTextBytes("\xE9t\x80"));
    // Overlong forms, surrogates and cut sequences are not UTF-8 either.
    EXPECT_EQ(u"\u00c0\u20ac", DecodePlainTextBytes("\xC0\x80"));
    EXPECT_FALSE(IsValidUtf8("\xED\xA0\x80"));
    EXPECT_FALSE(IsValidUtf8("\xE2\x82"));
    EXPECT_FALSE(IsValidUtf8("\xF4\x90\x80\x80"));
    EXPECT_TRUE(IsValidUtf8("\xF0\x9F\x98\x80"));
    EXPECT_EQ(u"", DecodePlainTextBytes(""));
}

CMemFileSystem MakeFiles()
{
    CMemFileSystem fs;
    int cause = 0;
    fs.CreateFolder(u"/in/notes/sub", cause);
    fs.Bytes(u"/in/notes/a.txt") = "first\r\nsecond";
    fs.Bytes(u"/in/notes/b.TXT") = std::string("\xFF\xFEh\0i\0", 6);
    fs.Bytes(u"/in/notes/c.rtf") = "{\\rtf1 {\\b bold} text}";
    fs.Bytes(u"/in/notes/picture.png") = "\x89PNG";
    fs.Bytes(u"/in/notes/sub/d.md") = "\xE9t\xE9";
    fs.Bytes(u"/in/notes/sub/e.knt") = "#!GFKNT 2.0\n%+\nNN=Tree\n%-\nLV=0\nND=Node\n%:\n;x\n%%\n";
    fs.Bytes(u"/in/loose.log") = "log";
    return fs;
}

TEST(ImportFilesTest, FolderImportKeepsTheFolderStructure)
{
    CImportLogCapture log;
    CMemFileSystem fs = MakeFiles();
    CFileImporter importer(fs, Font);
    CMemImportTarget target;
    CMemFolder root;
    ASSERT_TRUE(importer.Import({u"/in/notes/", u"/in/loose.log"}, target, root));
    EXPECT_EQ(u"notes[a,b,c,sub[d,Tree[Node]]],loose", ChildrenOutline(root));
    EXPECT_EQ(u"first\nsecond", PlainText(NoteAt(root, {0, 0})));
    EXPECT_EQ(u"hi", PlainText(NoteAt(root, {0, 1})));
    CMemNote& rtf = NoteAt(root, {0, 2});
    EXPECT_EQ(u"bold text", PlainText(rtf));
    EXPECT_TRUE(rtf.GetRichText()->Line(0).EffectiveFont(0)->IsBold());
    EXPECT_FALSE(rtf.GetRichText()->Line(0).EffectiveFont(5)->IsBold());
    EXPECT_EQ(u"\u00e9t\u00e9", PlainText(NoteAt(root, {0, 3, 0})));
    EXPECT_EQ(
        std::vector<std::u16string>{
            u"Info: Import skips /in/notes/picture.png, it is not a text, RTF or KeyNote file"},
        log.TakeMessages());
}

TEST(ImportFilesTest, ANamedFileOfAnyKindIsReadAsText)
{
    CMemFileSystem fs = MakeFiles();
    CFileImporter importer(fs, Font);
    std::vector<SImportItem> items;
    ASSERT_TRUE(importer.Read({u"/in/notes/picture.png"}, items));
    ASSERT_EQ(1u, items.size());
    EXPECT_EQ(u"picture", items[0].caption);
    EXPECT_FALSE(items[0].isFolder);
}

TEST(ImportFilesTest, OneBadFileImportsNothing)
{
    CImportLogCapture log;
    CMemFileSystem fs = MakeFiles();
    fs.Bytes(u"/in/notes/sub/z.rtf") = "{\\rtf1 unclosed";
    CFileImporter importer(fs, Font);
    CMemImportTarget target;
    CMemFolder root;
    EXPECT_FALSE(importer.Import({u"/in/loose.log", u"/in/notes"}, target, root));
    EXPECT_EQ(0u, root.GetChildCount());
    const std::vector<std::u16string> expected = {
        u"Info: Import skips /in/notes/picture.png, it is not a text, RTF or KeyNote file",
        u"Error: Cannot import file /in/notes/sub/z.rtf, its RTF cannot be read: the text ends inside a "
        u"group"};
    EXPECT_EQ(expected, log.TakeMessages());

    EXPECT_FALSE(importer.Import({u"/in/missing.txt"}, target, root));
    const auto messages = log.TakeMessages();
    ASSERT_EQ(1u, messages.size());
    EXPECT_TRUE(
        messages[0].starts_with(u"Error: Cannot import file /in/missing.txt, it cannot be read, cause - "));
    EXPECT_EQ(0u, root.GetChildCount());
}

TEST(ImportFilesTest, DeeplyNestedFoldersAreRefused)
{
    CImportLogCapture log;
    CMemFileSystem fs;
    std::u16string path = u"/deep";
    for (int i = 0; i <= CFileImporter::MaxFolderDepth; ++i)
        path += u"/d";
    int cause = 0;
    ASSERT_TRUE(fs.CreateFolder(path, cause));
    CFileImporter importer(fs, Font);
    CMemImportTarget target;
    CMemFolder root;
    EXPECT_FALSE(importer.Import({u"/deep"}, target, root));
    EXPECT_EQ(1u, log.TakeMessages().size());
    EXPECT_EQ(0u, root.GetChildCount());
}

// A target that refuses everything, as the document does when it cannot store the items.
class CRefusingTarget : public IImportTarget
{
public:
    bool AddItems(CFolderBase&, std::vector<SImportItem>& items) override
    {
        offered = items.size();
        return false;
    }
    size_t offered = 0;
};

TEST(ImportFilesTest, TargetRefusalFailsTheImport)
{
    CMemFileSystem fs = MakeFiles();
    CFileImporter importer(fs, Font);
    CRefusingTarget target;
    CMemFolder root;
    EXPECT_FALSE(importer.Import({u"/in/notes"}, target, root));
    EXPECT_EQ(target.offered, 1u);
    EXPECT_EQ(0u, root.GetChildCount());
}
} // namespace
