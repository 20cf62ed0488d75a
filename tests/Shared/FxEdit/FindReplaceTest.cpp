// Find next with its wrap rule, replace and replace all with the range rule, and the dialogs'
// message boxes.
#include "FxEditTestHost.h"

#include <gtest/gtest.h>

namespace
{
class FxEditFind : public ::testing::Test
{
protected:
    void SetUp() override
    {
        host.width = 1000;
        edit.OnResize();
    }
    void Load(std::initializer_list<std::u16string_view> lines)
    {
        CRichTextDocument document;
        for (std::u16string_view line : lines)
            document.AppendLine(CRtfTextLine(std::u16string(line)));
        edit.SetDocument(document);
    }
    SFxCharPosition CaretChars() const { return edit.ToCharPosition(edit.Caret()); }
    SFxCharPosition AnchorChars() const { return edit.ToCharPosition(edit.Anchor()); }

    CFxEditTestHost host;
    CFxEdit edit{host, CFxEdit::ModeRich, true};
};
} // namespace

TEST_F(FxEditFind, FindNextWalksForwardAndWrapsOnce)
{
    Load({u"abc x abc", u"none", u"ABC"});
    ASSERT_TRUE(edit.FindNext(u"abc", false));
    // From the caret at the start the search begins one after it, so the first match is skipped.
    EXPECT_EQ(CaretChars(), (SFxCharPosition{0, 6}));
    EXPECT_EQ(AnchorChars(), (SFxCharPosition{0, 9}));
    ASSERT_TRUE(edit.FindNext(u"abc", false));
    EXPECT_EQ(CaretChars(), (SFxCharPosition{2, 0}));
    ASSERT_TRUE(edit.FindNext(u"abc", false)); // wraps to line 0
    EXPECT_EQ(CaretChars(), (SFxCharPosition{0, 0}));
    ASSERT_TRUE(edit.FindNext(u"abc", true));
    EXPECT_EQ(CaretChars(), (SFxCharPosition{0, 6}));
    ASSERT_TRUE(edit.FindNext(u"abc", true)); // "ABC" does not match with case
    EXPECT_EQ(CaretChars(), (SFxCharPosition{0, 0}));
    EXPECT_FALSE(edit.FindNext(u"", false));
    EXPECT_FALSE(edit.FindNext(u"zzz", false));
}

TEST_F(FxEditFind, ASingleSelectedOccurrenceIsNotFoundAgain)
{
    Load({u"one", u"the word", u"two"});
    ASSERT_TRUE(edit.FindNext(u"word", false));
    EXPECT_EQ(CaretChars(), (SFxCharPosition{1, 4}));
    EXPECT_FALSE(edit.FindNext(u"word", false));
    EXPECT_EQ(CaretChars(), (SFxCharPosition{1, 4})); // selection unchanged

    // After wrapping, the starting line still offers what lies before the start.
    Load({u"aXa"});
    edit.SetCaret(edit.FromCharPosition({0, 2}));
    ASSERT_TRUE(edit.FindNext(u"a", false));
    EXPECT_EQ(CaretChars(), (SFxCharPosition{0, 0}));
}

TEST_F(FxEditFind, ReplaceAllReplacesEachOriginalOccurrenceOnceAndUndoesOneByOne)
{
    Load({u"aa a", u"xa"});
    EXPECT_EQ(edit.Replace(u"a", u"aa", true, true, false), 4);
    EXPECT_EQ(EditorText(edit), u"aaaa aa\nxaa");
    EXPECT_EQ(edit.UndoHistory().QuantCount(), 4u);
    std::u16string label;
    edit.CanUndo(&label);
    EXPECT_EQ(label, u"Undo Replacement");
    for (int i = 0; i < 4; ++i)
        ASSERT_TRUE(edit.Undo());
    EXPECT_EQ(EditorText(edit), u"aa a\nxa");
    EXPECT_FALSE(edit.IsModified());
    EXPECT_EQ(edit.Replace(u"A", u"b", false, true, false), 4); // without case
    EXPECT_EQ(edit.Replace(u"b", u"", true, true, false), 4);
    EXPECT_EQ(EditorText(edit), u" \nx");
    EXPECT_EQ(edit.Replace(u"", u"q", true, true, false), 0);
}

TEST_F(FxEditFind, ReplaceInSelectionKeepsToTheRange)
{
    Load({u"cat cat", u"cat cat"});
    // The range ends inside the second line's second "cat": that one runs past the end.
    edit.SetSelection(edit.FromCharPosition({0, 4}), edit.FromCharPosition({1, 6}));
    EXPECT_EQ(edit.Replace(u"cat", u"dog!", true, true, true), 2);
    EXPECT_EQ(EditorText(edit), u"cat dog!\ndog! cat");
    // A single replace stops after the first occurrence.
    Load({u"cat cat"});
    EXPECT_EQ(edit.Replace(u"cat", u"x", true, false, false), 1);
    EXPECT_EQ(EditorText(edit), u"x cat");
    EXPECT_EQ(CaretChars(), (SFxCharPosition{0, 0}));
}

TEST_F(FxEditFind, DialogCommandsShowTheirMessages)
{
    Load({u"one two two"});
    host.dialogAnswer.findText = u"two";
    host.dialogAnswer.replaceText = u"2";
    host.dialogAnswer.result = SFxFindReplaceRequest::ReplaceAll;
    edit.RunReplaceCommand();
    EXPECT_EQ(EditorText(edit), u"one 2 2");
    ASSERT_EQ(host.shownMessages.size(), 1u);
    EXPECT_EQ(host.shownMessages.back(), u"2 occurrences have been replaced.");

    host.dialogAnswer.result = SFxFindReplaceRequest::ReplaceOne;
    edit.RunReplaceCommand();
    EXPECT_EQ(host.shownMessages.back(), u"Not found.");

    host.dialogAnswer.result = SFxFindReplaceRequest::FindNext;
    host.dialogAnswer.findText = u"one";
    edit.RunFindCommand();
    EXPECT_EQ(host.shownMessages.size(), 2u);
    EXPECT_EQ(edit.GetSelectedPlainText(), u"one");
    host.dialogAnswer.findText = u"zz";
    edit.RunFindCommand();
    EXPECT_EQ(host.shownMessages.size(), 3u);

    edit.SetReadOnly(true);
    host.dialogAnswer.result = SFxFindReplaceRequest::ReplaceAll;
    edit.RunReplaceCommand();
    EXPECT_EQ(host.shownMessages.size(), 3u);
}

TEST(FxEditFindFields, SingleLineFieldsOpenNoFindDialog)
{
    CFxEditTestHost host;
    CFxEdit field(host, CFxEdit::ModeSingleLine, false);
    field.SetPlainText(u"one two");
    host.dialogAnswer.findText = u"two";
    host.dialogAnswer.result = SFxFindReplaceRequest::ReplaceAll;
    field.RunReplaceCommand();
    host.dialogAnswer.result = SFxFindReplaceRequest::FindNext;
    field.RunFindCommand();
    field.FindNextCommand();
    EXPECT_EQ(field.GetPlainText(), u"one two");
    EXPECT_TRUE(field.IsSelectionEmpty());
    EXPECT_TRUE(host.shownMessages.empty());
}

TEST(FxEditReplaceBounded, ReplaceAllInALongLineKeepsOnlyTheNewestQuanta)
{
    // Each quantum of the long line costs two copies of a little over 2,000 bytes; the bound
    // holds three and a half.
    std::u16string text;
    for (int i = 0; i < 100; ++i)
        text += u"word cat. ";
    auto load = [&](CFxEdit& edit)
    {
        CRichTextDocument document;
        document.AppendLine(CRtfTextLine(u"cat first"));
        CRtfTextLine line(text);
        CRtfTextBlockInfo colour(7);
        colour.SetTextColour(0x0000FF);
        line.AddBlock(colour);
        document.AppendLine(line);
        edit.SetDocument(document);
    };
    CFxEditTestHost host;
    CFxEdit unbounded(host, CFxEdit::ModeRich, true);
    load(unbounded);
    EXPECT_EQ(unbounded.Replace(u"cat", u"dog!", true, true, false), 101);
    EXPECT_EQ(unbounded.UndoHistory().QuantCount(), 101u);
    for (int i = 0; i < 3; ++i)
        unbounded.Undo();
    const CRichTextDocument threeUndone = unbounded.GetDocument();
    while (unbounded.Redo())
    {
    }

    SFxEditSettings settings;
    settings.undoMemoryLimit = 7 * (CFxEdit::CUndoRedo::LineBytes(CRtfTextLine(text)) + 250);
    CFxEdit bounded(host, CFxEdit::ModeRich, true, settings);
    load(bounded);
    EXPECT_EQ(bounded.Replace(u"cat", u"dog!", true, true, false), 101);
    EXPECT_EQ(bounded.GetDocument(), unbounded.GetDocument());
    EXPECT_EQ(bounded.UndoHistory().QuantCount(), 3u);
    EXPECT_TRUE(bounded.UndoHistory().DroppedOlderChanges());
    EXPECT_LE(bounded.UndoHistory().MemoryUsed(), settings.undoMemoryLimit);
    EXPECT_EQ(bounded.ToCharPosition(bounded.Caret()), unbounded.ToCharPosition(unbounded.Caret()));
    while (bounded.Undo())
    {
    }
    EXPECT_EQ(bounded.GetDocument(), threeUndone);
    EXPECT_TRUE(bounded.IsModified());
    EXPECT_TRUE(LayoutIsConsistent(bounded));
}
