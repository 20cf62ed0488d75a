// The 3.x layout of .knt files: notes listed with their texts first, then folders whose nodes
// name the notes, levels carried over from the node before.
#include "ImportTestSupport.h"

#include "Document/Import/KntImporter.h"
#include "Document/Import/MemImportTarget.h"
#include "Shared/RichText/FontDescription.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace
{
const SFontDescription Font = SFontDescription::Make(u"Arial", 10);

bool Import(std::string_view bytes, CMemFolder& root)
{
    CMemImportTarget target;
    return ImportKntFile(bytes, u"new.knt", Font, target, root);
}

TEST(KntNewerLayoutTest, RealFileImportsNotesThroughTheirNodes)
{
    std::ifstream in(QUILL_SAMPLES_DIR "/knt/fileformat_3.1.knt", std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    CImportLogCapture log;
    CMemFolder root;
    ASSERT_TRUE(Import(bytes.str(), root));
    EXPECT_EQ(u"FOLDER A[Node linked,Node 2[Node 2,Node 3,Node linked,Node with folded text,Node with tags],"
              u"SomeTextFile.txt],"
              u"FOLDER B[Node in Folder B,Second node in Folder B[Second node in Folder B,"
              u"Hidden node (child of second node)[Hidden node (child of second node),Node]]]",
              ChildrenOutline(root));
    // Hidden text (the program's bookmark marks) is left out; a linked node shows its note's text.
    const std::u16string linked = PlainText(NoteAt(root, {0, 0}));
    EXPECT_TRUE(linked.starts_with(u"Line text with THIS word with a marker\n")) << Utf16ToUtf8(linked);
    EXPECT_EQ(linked, PlainText(NoteAt(root, {0, 1, 2})));
    EXPECT_EQ(u"Fist Line in node 3  (PLAIN TEXT)\nSecond Line in node 3  \n\nChild of Node 2",
              PlainText(NoteAt(root, {0, 1, 1})));
    EXPECT_TRUE(NoteAt(root, {0, 2}).GetRichText()->IsEmpty()); // a virtual node: its file is not read
    EXPECT_TRUE(log.TakeMessages().empty());
}

TEST(KntNewerLayoutTest, HandWrittenFileWithEntriesLevelsAndPlainText)
{
    const std::string knt =
        "#!GFKNT 3.2\r\n#/about\r\n%TG\r\nID=1\r\nTN=tag\r\nN:=3\r\n"
        "%*\r\nGI=5\r\nND=\xc3\x9c"
        "ber\r\n%.\r\nDC=2811241742\r\n%:\r\n"
        "{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}\\pard\\qr {\\b Fett}\\par}\r\n"
        "%.\r\nid=1\r\n%>\r\n;second entry\r\n;%- not a marker\r\n"
        "%*\r\nGI=6\r\nND=Child\r\n"
        "%*\r\nGI=7\r\nND=Sibling\r\n%.\r\n%>\r\n;plain\r\n"
        "%+\r\nNN=Folder\r\nn:=3\r\n"
        "%-\r\ngi=5\r\nLV=0\r\n%-\r\ngi=6\r\nLV=1\r\n%-\r\ngi=7\r\n%-\r\nGI=5\r\ngi=8\r\nLV=0\r\n"
        "%%\r\n";
    CMemFolder root;
    ASSERT_TRUE(Import(knt, root));
    EXPECT_EQ(u"Folder[\u00dcber[\u00dcber,Child,Sibling],\u00dcber]", ChildrenOutline(root));
    CMemNote& uber = NoteAt(root, {0, 0, 0});
    EXPECT_EQ(u"Fett\nsecond entry\n%- not a marker", PlainText(uber));
    EXPECT_EQ(CRtfTextLine::AlignRight, uber.GetRichText()->Line(0).Alignment());
    EXPECT_TRUE(uber.GetRichText()->Line(0).EffectiveFont(0)->IsBold());
    EXPECT_EQ(u"plain", PlainText(NoteAt(root, {0, 0, 2})));
    EXPECT_EQ(PlainText(uber), PlainText(NoteAt(root, {0, 1})));
}

TEST(KntNewerLayoutTest, MalformedNewerFilesImportNothing)
{
    CImportLogCapture log;
    CMemFolder root;
    EXPECT_FALSE(Import("#!GFKNT 3.0\n%+\nNN=F\n%-\ngi=9\n%%\n", root));
    EXPECT_FALSE(Import("#!GFKNT 3.0\n%.\n%:\n{\\rtf1 x}\n%%\n", root));
    EXPECT_FALSE(Import("#!GFKNT 3.0\n%\nNN=simple\n%%\n", root));
    EXPECT_FALSE(Import("#!GFKNT 4.0\n%%\n", root));
    // A note's RTF nested a million groups deep fails at once, without deep recursion.
    EXPECT_FALSE(
        Import("#!GFKNT 2.0\n%+\nNN=F\n%-\nLV=0\nND=deep\n%:\n{\\rtf1" + std::string(1000000, '{') + "\n%%\n",
               root));
    EXPECT_EQ(
        (std::vector<std::u16string>{
            u"Error: Cannot import KeyNote file new.knt, a node names a note the file does not hold",
            u"Error: Cannot import KeyNote file new.knt, the entry at line 2 belongs to no note",
            u"Error: Cannot import KeyNote file new.knt, line 2 holds a simple folder, which the 3.x "
            u"layout has not",
            u"Error: Cannot import KeyNote file new.knt, its layout version 4.0 is not supported (files of "
            u"versions 1, 2 and 3 can be imported)",
            u"Error: Cannot import KeyNote file new.knt, the RTF text of a note cannot be read: groups are "
            u"nested more than 512 deep"}),
        log.TakeMessages());
    EXPECT_EQ(0u, root.GetChildCount());
}
} // namespace
