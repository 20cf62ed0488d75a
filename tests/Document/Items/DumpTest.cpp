#include "Shared/RichText/RichTextDocument.h"
#include "TestTree.h"

#include <gtest/gtest.h>

namespace
{
const std::u16string Rule(76, u'-');

std::vector<std::u16string> LineTexts(const CRichTextDocument& doc)
{
    std::vector<std::u16string> texts;
    for (const CRtfTextLine& line : doc.Lines())
        texts.push_back(line.Text());
    return texts;
}
} // namespace

TEST(ItemDump, FolderHeadingsNotesAndSeparators)
{
    CMemFolder root;
    root.SetCaption(u"R");
    CMemNote* note = AddNote(root, u"n");
    note->GetRichText()->BuildFromPlainText(u"first\r\nsecond");
    CRtfTextBlockInfo red(2);
    red.SetTextColour(0x0000FF);
    note->GetRichText()->Line(0).AddBlock(red);
    CMemFolder* sub = AddFolder(root, u"S");
    AddNote(*sub, u"empty");

    CRichTextDocument doc;
    const SFontDescription font = SFontDescription::Make(u"Arial", 12);
    ASSERT_TRUE(root.DumpText(doc, font));
    const std::vector<std::u16string> expected = {u"--- [Folder] R --- Path: \\R (Depth: 1)---",
                                                  u"",
                                                  Rule,
                                                  u"",
                                                  u"--- [Note] n --- Path: \\R\\n (Depth: 2)---",
                                                  u"",
                                                  u"first",
                                                  u"second",
                                                  u"",
                                                  Rule,
                                                  u"",
                                                  u"--- [Folder] S --- Path: \\R\\S (Depth: 2)---",
                                                  u"",
                                                  Rule,
                                                  u"",
                                                  u"--- [Note] empty --- Path: \\R\\S\\empty (Depth: 3)---",
                                                  u"",
                                                  u""};
    EXPECT_EQ(LineTexts(doc), expected);

    // Folder headings carry the default font at weight 900; note headings have no format.
    for (size_t index : {0u, 11u})
    {
        ASSERT_EQ(doc.Line(index).Blocks().size(), 1u) << index;
        SFontDescription bold = font;
        bold.weight = 900;
        EXPECT_EQ(doc.Line(index).Blocks()[0].Font(), bold);
        EXPECT_EQ(doc.Line(index).Blocks()[0].Start(), 0);
    }
    EXPECT_TRUE(doc.Line(4).Blocks().empty());
    // The note's text keeps its formats.
    ASSERT_EQ(doc.Line(6).Blocks().size(), 1u);
    EXPECT_EQ(doc.Line(6).Blocks()[0].TextColour(), 0x0000FFu);
    EXPECT_EQ(doc.Line(6).Blocks()[0].Start(), 2);
}

TEST(ItemDump, ASingleNoteHasNoSeparator)
{
    CMemNote note;
    note.SetCaption(u"only");
    note.GetRichText()->BuildFromPlainText(u"x");
    CRichTextDocument doc;
    ASSERT_TRUE(note.DumpText(doc, SFontDescription::Make(u"Arial", 10)));
    EXPECT_EQ(LineTexts(doc),
              (std::vector<std::u16string>{u"--- [Note] only --- Path: \\only (Depth: 1)---", u"", u"x"}));
}
