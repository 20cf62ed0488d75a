// Scripted editing sessions against the fixed-width screen (ten characters per row).
#include "FxEditTestHost.h"
#include "Shared/FxEdit/LineEditing.h"

#include <gtest/gtest.h>

namespace
{
void Type(CFxEdit& edit, std::u16string_view text)
{
    for (char16_t c : text)
        edit.OnChar(c);
}

CRichTextDocument Document(std::initializer_list<std::u16string_view> lines)
{
    CRichTextDocument document;
    for (std::u16string_view line : lines)
        document.AppendLine(CRtfTextLine(std::u16string(line)));
    return document;
}

std::u16string UndoText(const CFxEdit& edit)
{
    std::u16string text;
    edit.CanUndo(&text);
    return text;
}

std::u16string RedoText(const CFxEdit& edit)
{
    std::u16string text;
    edit.CanRedo(&text);
    return text;
}

class FxEditSession : public ::testing::Test
{
protected:
    CFxEditTestHost host;
    CFxEdit edit{host, CFxEdit::ModeRich, true};
};
} // namespace

TEST_F(FxEditSession, TypingAcrossWrappedRowsKeepsTheCaretOnTheText)
{
    Type(edit, u"hello world foo");
    EXPECT_EQ(EditorText(edit), u"hello world foo");
    ASSERT_EQ(edit.Line(0).RowCount(), 2);
    EXPECT_EQ(edit.Line(0).Layout().rowBreaks, std::vector<int32_t>{6});
    // The caret stands after the last character: offset 15 is layout position 16.
    EXPECT_EQ(edit.Caret(), (SFxPosition{0, 16}));
    EXPECT_EQ(edit.ToCharPosition(edit.Caret()).offset, 15);
    EXPECT_TRUE(LayoutIsConsistent(edit));
    EXPECT_EQ(edit.TotalRows(), 2);
    EXPECT_TRUE(edit.IsModified());
    ASSERT_FALSE(host.messages.empty());
    EXPECT_EQ(host.messages.back(), (std::pair<uint32_t, int32_t>{FxEditTextChangedMessage, 1}));

    // Typing in the first row moves the wrap point and the caret stays behind the new character.
    edit.SetCaret({0, 2});
    Type(edit, u"XY");
    EXPECT_EQ(EditorText(edit), u"heXYllo world foo");
    EXPECT_EQ(edit.ToCharPosition(edit.Caret()).offset, 4);
    EXPECT_TRUE(LayoutIsConsistent(edit));
}

TEST_F(FxEditSession, HomeAndEndOnAWrappedLineGiveTwoPositionsForOneOffset)
{
    Type(edit, u"hello world foo");
    edit.SetCaret({0, 1});
    edit.MoveCaret(EFxKey::End, false, false);
    const SFxPosition rowEnd = edit.Caret();
    edit.MoveCaret(EFxKey::Down, false, false);
    edit.MoveCaret(EFxKey::Home, false, false);
    const SFxPosition rowStart = edit.Caret();
    EXPECT_EQ(rowEnd, (SFxPosition{0, 6}));
    EXPECT_EQ(rowStart, (SFxPosition{0, 7}));
    EXPECT_EQ(edit.ToCharPosition(rowEnd), edit.ToCharPosition(rowStart));
    edit.SetCaret(rowEnd);
    EXPECT_EQ(edit.CaretX(), 60);
    edit.SetCaret(rowStart);
    EXPECT_EQ(edit.CaretX(), 0);

    // Shift extends, Ctrl+End goes to the text's end.
    edit.SetCaret({0, 0});
    edit.MoveCaret(EFxKey::End, true, true);
    EXPECT_EQ(edit.Anchor(), (SFxPosition{0, 0}));
    EXPECT_EQ(edit.Caret(), (SFxPosition{0, 16}));
    edit.MoveCaret(EFxKey::Left, true, false);
    EXPECT_EQ(edit.ToCharPosition(edit.Caret()).offset, 12);
}

TEST_F(FxEditSession, TypingOverASelectionRecordsTwoQuanta)
{
    edit.SetDocument(Document({u"abcdef"}));
    edit.SetSelection({0, 1}, {0, 4});
    edit.OnChar(u'X');
    EXPECT_EQ(EditorText(edit), u"aXef");
    EXPECT_EQ(edit.UndoHistory().QuantCount(), 2u);
    EXPECT_EQ(UndoText(edit), u"Undo Typing");
    ASSERT_TRUE(edit.Undo());
    EXPECT_EQ(EditorText(edit), u"aef");
    EXPECT_EQ(UndoText(edit), u"Undo Clear Selection");
    ASSERT_TRUE(edit.Undo());
    EXPECT_EQ(EditorText(edit), u"abcdef");
    EXPECT_EQ(edit.Anchor(), (SFxPosition{0, 1}));
    EXPECT_EQ(edit.Caret(), (SFxPosition{0, 4}));
    EXPECT_FALSE(edit.IsModified());
    EXPECT_EQ(UndoText(edit), u"Undo (nothing)");
    EXPECT_EQ(RedoText(edit), u"Redo Clear Selection");
}

TEST_F(FxEditSession, UndoRemovesOneTypedCharacterAtATimeAndANewEditCutsRedo)
{
    Type(edit, u"abc");
    for (const char16_t* expected : {u"ab", u"a", u""})
    {
        ASSERT_TRUE(edit.Undo());
        EXPECT_EQ(EditorText(edit), expected);
    }
    EXPECT_FALSE(edit.Undo());
    EXPECT_EQ(UndoText(edit), u"Undo (nothing)");
    EXPECT_FALSE(edit.IsModified());
    EXPECT_EQ(host.messages.back(), (std::pair<uint32_t, int32_t>{FxEditTextChangedMessage, 0}));
    ASSERT_TRUE(edit.Redo());
    EXPECT_EQ(EditorText(edit), u"a");
    EXPECT_TRUE(edit.CanRedo());
    Type(edit, u"z");
    EXPECT_FALSE(edit.CanRedo());
    EXPECT_EQ(RedoText(edit), u"Redo (nothing)");
    EXPECT_EQ(EditorText(edit), u"az");
}

TEST_F(FxEditSession, TabIndentsSelectedLinesWithTheEndAtStartRule)
{
    host.width = 1000;
    edit.OnResize();
    edit.SetDocument(Document({u"one", u"two", u"three"}));
    // Ending at the start of a non-empty line leaves that line alone.
    edit.SetSelection({0, 0}, {1, 0});
    edit.OnChar(u'\t');
    EXPECT_EQ(EditorText(edit), u"\tone\ntwo\nthree");
    EXPECT_EQ(edit.UndoHistory().QuantCount(), 1u);
    EXPECT_EQ(UndoText(edit), u"Undo Typing");
    // The anchor at position 0 moved behind the tab; the caret at 0 of line 1 did not move.
    EXPECT_EQ(edit.Anchor(), (SFxPosition{0, 1}));
    EXPECT_EQ(edit.Caret(), (SFxPosition{1, 0}));

    edit.SetSelection({0, 2}, {2, 2});
    edit.OnChar(u'\t');
    EXPECT_EQ(EditorText(edit), u"\t\tone\n\ttwo\n\tthree");
    EXPECT_EQ(edit.Anchor(), (SFxPosition{0, 3}));
    EXPECT_EQ(edit.Caret(), (SFxPosition{2, 3}));
    // Shift+Tab takes one tab off each line that has one, as one quantum.
    edit.OnChar(u'\t', true);
    EXPECT_EQ(EditorText(edit), u"\tone\ntwo\nthree");
    edit.OnChar(u'\t', true);
    edit.OnChar(u'\t', true); // nothing left to take: no quantum
    EXPECT_EQ(EditorText(edit), u"one\ntwo\nthree");
    EXPECT_EQ(edit.UndoHistory().QuantCount(), 4u);
    ASSERT_TRUE(edit.Undo());
    EXPECT_EQ(EditorText(edit), u"\tone\ntwo\nthree");

    // A caret at position 0 with an empty selection on one line types a tab.
    edit.SetCaret({1, 0});
    edit.OnChar(u'\t');
    EXPECT_EQ(edit.Line(1).Text(), u"\ttwo");
}

TEST_F(FxEditSession, UndoRedoRestoresFormatsObjectsCaretAndAnchorAfterAWidthChange)
{
    CRichTextDocument document = Document({u"first line of text", u"second"});
    CRtfObjectInfo attachment(CRtfObjectInfo::AttachmentType, 0);
    attachment.SetFileName(u"a.txt");
    CRtfTextLine withObject(u"\x14 x");
    withObject.AddObject(attachment);
    document.AppendLine(withObject);
    edit.SetDocument(document);
    const CRichTextDocument start = edit.GetDocument();

    edit.SetSelection({0, 2}, {0, 9});
    edit.ToggleBold();
    EXPECT_EQ(UndoText(edit), u"Undo Font Formatting");
    edit.SetSelection({1, 3}, {2, 1});
    edit.DeleteSelection(); // takes the object with it
    EXPECT_EQ(edit.LineCount(), 2);
    edit.SetAlignment(CRtfTextLine::AlignRight);
    EXPECT_EQ(UndoText(edit), u"Undo Alignment");
    edit.SetCaret(edit.FromCharPosition({0, 14}));
    edit.OnChar(u'!');
    const CRichTextDocument end = edit.GetDocument();
    const int32_t wideCaret = edit.Line(0).OffsetToLayout(14);

    host.width = 40;
    edit.OnResize();
    ASSERT_TRUE(edit.Undo());
    // The same character, now on a differently wrapped row.
    EXPECT_EQ(edit.ToCharPosition(edit.Caret()), (SFxCharPosition{0, 14}));
    EXPECT_NE(edit.Caret().pos, wideCaret);
    EXPECT_EQ(edit.Caret().pos, edit.Line(0).OffsetToLayout(14));
    ASSERT_TRUE(edit.Undo());
    ASSERT_TRUE(edit.Undo());
    EXPECT_EQ(edit.LineCount(), 3);
    EXPECT_EQ(edit.ToCharPosition(edit.Anchor()), (SFxCharPosition{1, 3}));
    EXPECT_EQ(edit.ToCharPosition(edit.Caret()), (SFxCharPosition{2, 1}));
    ASSERT_TRUE(edit.Undo());
    EXPECT_EQ(edit.GetDocument(), start);
    EXPECT_TRUE(LayoutIsConsistent(edit));
    while (edit.Redo())
    {
    }
    EXPECT_EQ(edit.GetDocument(), end);
    EXPECT_TRUE(LayoutIsConsistent(edit));
}

TEST_F(FxEditSession, EnterBackspaceAndDeleteJoinAndSplitLines)
{
    Type(edit, u"abcd");
    edit.SetCaret({0, 2});
    edit.OnKeyDown(EFxKey::Enter, 0, false, false, false);
    EXPECT_EQ(EditorText(edit), u"ab\ncd");
    EXPECT_EQ(edit.Caret(), (SFxPosition{1, 0}));
    EXPECT_EQ(UndoText(edit), u"Undo Typing");
    edit.OnKeyDown(EFxKey::Backspace, 0, false, false, false);
    EXPECT_EQ(EditorText(edit), u"abcd");
    EXPECT_EQ(edit.Caret(), (SFxPosition{0, 2}));
    EXPECT_EQ(UndoText(edit), u"Undo Deletion");
    edit.OnKeyDown(EFxKey::Delete, 0, false, false, false);
    EXPECT_EQ(EditorText(edit), u"abd");
    edit.SetCaret({0, 0});
    edit.Backspace(); // nothing before the text's start
    EXPECT_EQ(EditorText(edit), u"abd");
    EXPECT_EQ(edit.UndoHistory().QuantCount(), 7u);
    edit.Undo();
    edit.Undo();
    EXPECT_EQ(EditorText(edit), u"ab\ncd");
}

TEST_F(FxEditSession, PendingFormatAppliesOnlyAtItsPosition)
{
    Type(edit, u"ab");
    edit.SetFontSize(20); // empty selection: sets the pending format
    EXPECT_EQ(edit.UndoHistory().QuantCount(), 2u);
    edit.OnChar(u'X');
    edit.OnChar(u'Y'); // continues the format of the character before it
    EXPECT_FALSE(FormatAt(edit.Line(0), 1).HasFont());
    EXPECT_EQ(FormatAt(edit.Line(0), 2).Font()->PointSize(), 20);
    EXPECT_EQ(FormatAt(edit.Line(0), 3).Font()->PointSize(), 20);

    edit.SetCaret({0, 0});
    edit.SetTextColour(0x0000FF);
    edit.SetCaret({0, 4});
    edit.OnChar(u'Z'); // the caret moved away: no colour
    EXPECT_FALSE(FormatAt(edit.Line(0), 4).TextColour().has_value());
}

TEST_F(FxEditSession, ReadOnlyRefusesEveryChangeButKeepsTheHistory)
{
    Type(edit, u"ab\tc");
    edit.SetReadOnly(true);
    const CRichTextDocument before = edit.GetDocument();
    edit.OnChar(u'x');
    edit.Enter();
    edit.Backspace();
    edit.Delete();
    edit.SelectAll();
    edit.IndentSelectedLines(false);
    edit.MoveLine(true);
    EXPECT_FALSE(edit.Cut());
    EXPECT_FALSE(edit.Paste());
    EXPECT_EQ(edit.Replace(u"a", u"b", true, true, false), 0);
    EXPECT_FALSE(edit.Undo());
    EXPECT_FALSE(edit.CanUndo());
    EXPECT_EQ(UndoText(edit), u"Undo Typing");
    edit.ToggleBold();
    edit.InsertDateStamp();
    EXPECT_EQ(edit.GetDocument(), before);
    EXPECT_TRUE(edit.Copy()); // reading is allowed
    edit.SetReadOnly(false);
    EXPECT_TRUE(edit.Undo());
}

TEST(FxEditModes, SingleLineFieldsFilterInput)
{
    CFxEditTestHost host;
    CFxEdit digits(host, CFxEdit::ModeDigits, false);
    Type(digits, u"1a2\x01"
                 u"3\t");
    digits.Enter();
    EXPECT_EQ(EditorText(digits), u"123");
    digits.InsertText(u"4x\r\n5");
    EXPECT_EQ(EditorText(digits), u"12345");

    CFxEdit field(host, CFxEdit::ModeSingleLine, false);
    Type(field, u"some long text beyond the width");
    field.Enter();
    EXPECT_EQ(field.LineCount(), 1);
    EXPECT_EQ(field.Line(0).RowCount(), 1); // single-line fields do not wrap
    EXPECT_EQ(field.Line(0).RowHeight(0), 20);
    field.SetPlainText(u"new");
    EXPECT_FALSE(field.CanUndo());

    CFxEdit body(host, CFxEdit::ModeRich, false);
    body.OnChar(u'\t');
    body.OnChar(u'\x08');
    EXPECT_EQ(EditorText(body), u"");
}

TEST(FxEditModes, AutoHeightEditorAsksForItsHeight)
{
    CFxEditTestHost host;
    host.height = 20;
    CFxEdit edit(host, CFxEdit::ModeAutoHeight, false);
    Type(edit, u"hello world foo");
    const auto request = std::find_if(host.messages.rbegin(), host.messages.rend(),
                                      [](const auto& m) { return m.first == FxEditHeightChangedMessage; });
    ASSERT_NE(request, host.messages.rend());
    EXPECT_EQ(request->second, 40);
}

TEST_F(FxEditSession, ClipboardCarriesPlainAndRichText)
{
    CRichTextDocument document = Document({u"red text", u"more"});
    CRtfTextBlockInfo red(0);
    red.SetTextColour(0x0000FF);
    document.Line(0).AddBlock(red);
    edit.SetDocument(document);
    edit.SetSelection({0, 4}, {1, 2});
    ASSERT_TRUE(edit.Cut());
    EXPECT_EQ(host.clipboard.plainText, u"text\r\nmo");
    EXPECT_FALSE(host.clipboard.richText.empty());
    EXPECT_EQ(EditorText(edit), u"red re");
    EXPECT_EQ(UndoText(edit), u"Undo Clear Selection");
    EXPECT_EQ(host.statusTexts.front(), u"Busy...");

    edit.SetCaret({0, 6});
    ASSERT_TRUE(edit.Paste());
    EXPECT_EQ(EditorText(edit), u"red retext\nmo");
    EXPECT_EQ(FormatAt(edit.Line(0), 7).TextColour(), 0x0000FFu);
    EXPECT_EQ(UndoText(edit), u"Undo Insertion");

    host.clipboard.richText = {1, 2, 3}; // unreadable: the plain text is used
    host.clipboard.plainText.assign(1, u'P');
    ASSERT_TRUE(edit.Paste());
    EXPECT_EQ(EditorText(edit), u"red retext\nmoP");

    host.clipboardWorks = false;
    EXPECT_FALSE(edit.Paste());
    edit.SelectAll();
    EXPECT_FALSE(edit.Copy());
    EXPECT_EQ(EditorText(edit), u"red retext\nmoP");
}

TEST_F(FxEditSession, ActionCodesReachTheirCommands)
{
    host.keyBindings = {
        {'A', CFxEdit::ActionSelectAll}, {'L', CFxEdit::ActionSelectLine}, {'Z', CFxEdit::ActionUndo},
        {'Y', CFxEdit::ActionRedo},      {'D', CFxEdit::ActionDateStamp},  {'T', CFxEdit::ActionTimeStamp},
        {'U', CFxEdit::ActionLineUp},    {'X', CFxEdit::ActionCut},        {'V', CFxEdit::ActionPaste}};
    edit.SetDocument(Document({u"one", u"two"}));
    edit.OnKeyDown(EFxKey::Other, 'A', true, false, false);
    EXPECT_EQ(edit.Caret(), (SFxPosition{0, 0}));
    EXPECT_EQ(edit.Anchor(), (SFxPosition{1, 3}));
    edit.SetSelection({1, 1}, {0, 1});
    edit.OnKeyDown(EFxKey::Other, 'L', true, false, false);
    EXPECT_EQ(edit.Caret(), (SFxPosition{1, 0}));
    EXPECT_EQ(edit.Anchor(), (SFxPosition{1, 3}));
    edit.OnKeyDown(EFxKey::Other, 'X', true, false, false);
    EXPECT_EQ(EditorText(edit), u"one\n");
    edit.OnKeyDown(EFxKey::Other, 'Z', true, false, false);
    EXPECT_EQ(EditorText(edit), u"one\ntwo");
    edit.OnKeyDown(EFxKey::Other, 'Y', true, false, false);
    edit.OnKeyDown(EFxKey::Other, 'V', true, false, false);
    EXPECT_EQ(EditorText(edit), u"one\ntwo");

    host.clock.now = 46000.5; // 9 December 2025, 12:00:00
    edit.SetCaret({0, 0});
    edit.OnKeyDown(EFxKey::Other, 'D', true, false, false);
    edit.OnKeyDown(EFxKey::Other, 'T', true, false, false);
    EXPECT_EQ(edit.Line(0).Text(), u"Tuesday, December 09, 2025 12:00:00 one");
    EXPECT_EQ(UndoText(edit), u"Undo Insertion");
    SFxEditSettings settings;
    settings.dateStampFormat = 0;
    settings.timeStampFormat = 0;
    edit.SetSettings(settings);
    EXPECT_EQ(edit.DateStampText(), u"12/09/2025 ");
    EXPECT_EQ(edit.TimeStampText(), u"12:00 ");

    edit.SetCaret({1, 1});
    edit.OnKeyDown(EFxKey::Other, 'U', true, false, false);
    EXPECT_EQ(edit.Line(0).Text(), u"two");
}

TEST_F(FxEditSession, MoveLineAtBothEndsDoesNothing)
{
    edit.SetDocument(Document({u"a", u"bb", u"ccc"}));
    edit.SetCaret({0, 0});
    edit.MoveLine(true);
    edit.SetCaret({2, 1});
    edit.MoveLine(false);
    EXPECT_FALSE(edit.CanUndo());
    edit.MoveLine(true);
    EXPECT_EQ(EditorText(edit), u"a\nccc\nbb");
    EXPECT_EQ(edit.Caret(), (SFxPosition{1, 1}));
    EXPECT_EQ(edit.Anchor(), (SFxPosition{1, 1}));
    EXPECT_EQ(UndoText(edit), u"Undo Replacement");
    edit.Undo();
    EXPECT_EQ(EditorText(edit), u"a\nbb\nccc");
    EXPECT_EQ(edit.Caret(), (SFxPosition{2, 1}));
}

TEST_F(FxEditSession, ChangeCaseTabifyAndBullets)
{
    host.width = 1000;
    edit.OnResize();
    edit.SetDocument(Document({u"hello wORLD", u"        x", u"\ty"}));
    edit.SetSelection({0, 0}, {0, 11});
    edit.ChangeCase(CFxEdit::ECase::Mixed);
    EXPECT_EQ(edit.Line(0).Text(), u"Hello World");
    edit.ChangeCase(CFxEdit::ECase::Upper);
    EXPECT_EQ(edit.Line(0).Text(), u"HELLO WORLD");
    edit.SetSelection({1, 0}, {2, 2});
    edit.Tabify();
    EXPECT_EQ(edit.Line(1).Text(), u"\tx");
    edit.Untabify();
    EXPECT_EQ(EditorText(edit), u"HELLO WORLD\n        x\n        y");
    edit.SetSelection({0, 0}, {1, 0});
    edit.ToggleBullets();
    EXPECT_EQ(edit.Line(0).Text(), u"\x00B7\tHELLO WORLD");
    EXPECT_EQ(edit.Line(1).Text(), u"\x00B7\t        x");
    edit.ToggleBullets();
    EXPECT_EQ(edit.Line(0).Text(), u"HELLO WORLD");
}

TEST_F(FxEditSession, HitTestingAndPagingFollowTheRows)
{
    // Rows of 16 pixels; ten lines, the first one wrapped into two rows.
    CRichTextDocument document = Document({u"hello world foo"});
    for (int i = 1; i < 10; ++i)
        document.AppendLine(CRtfTextLine(u"line"));
    edit.SetDocument(document);
    EXPECT_EQ(edit.TotalRows(), 11);
    EXPECT_EQ(edit.TotalHeight(), 176);
    EXPECT_EQ(edit.HitTest(0, 0), (SFxPosition{0, 0}));
    EXPECT_EQ(edit.HitTest(24, 20), (SFxPosition{0, 9})); // second row, nearer to character 8's right edge
    EXPECT_EQ(edit.HitTest(500, 40), (SFxPosition{1, 4}));
    EXPECT_EQ(edit.HitTest(0, 5000), (SFxPosition{9, 0})); // below the text: the last row

    host.height = 48; // three rows per screen, a page is two
    edit.SetCaret({0, 0});
    edit.MoveCaret(EFxKey::PageDown, false, false);
    EXPECT_EQ(edit.Caret(), (SFxPosition{1, 0}));
    edit.MoveCaret(EFxKey::PageDown, false, true);
    EXPECT_EQ(edit.Caret(), (SFxPosition{3, 0}));
    EXPECT_EQ(edit.Anchor(), (SFxPosition{1, 0}));
    // The view followed the caret: its row is the last one on the screen.
    EXPECT_EQ(edit.TopLine(), 1);
    edit.MoveCaret(EFxKey::Home, true, false);
    EXPECT_EQ(edit.TopLine(), 0);
    EXPECT_EQ(edit.TopRow(), 0);
}

TEST_F(FxEditSession, NewLinesCanStartWithADateAndTimeStamp)
{
    SFxEditSettings settings;
    settings.stampDateTimeForEachNewLine = true;
    settings.timeStampFormat = 0;
    edit.SetSettings(settings);
    host.clock.now = 46000.25; // 9 December 2025, 06:00
    Type(edit, u"a");
    edit.Enter();
    EXPECT_EQ(EditorText(edit), u"a\nTuesday, December 09, 2025 06:00 ");
    edit.Undo(); // the stamp is its own insertion
    EXPECT_EQ(EditorText(edit), u"a\n");
}
