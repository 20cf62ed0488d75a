// Every kind of change, undone and redone after the text was wrapped differently, gives back the
// document byte for byte with caret and anchor on the same characters, under its own label.
#include "FxEditTestHost.h"
#include "Shared/Base/Archive.h"
#include "Shared/FxEdit/LineEditing.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>

namespace
{
struct SEditorState
{
    std::vector<uint8_t> bytes;
    SFxCharPosition caret;
    SFxCharPosition anchor;
    bool operator==(const SEditorState&) const = default;
};

SEditorState Capture(const CFxEdit& edit)
{
    CArchiveWriter writer;
    edit.GetDocument().Serialize(writer);
    return {writer.Take(), edit.ToCharPosition(edit.Caret()), edit.ToCharPosition(edit.Anchor())};
}

CRichTextDocument StartDocument()
{
    CRichTextDocument document;
    CRtfTextLine first(u"The quick brown fox jumps over");
    CRtfTextBlockInfo bold(4);
    bold.SetFont(SFontDescription::Make(u"Arial", 14));
    first.AddBlock(bold);
    CRtfTextBlockInfo red(10);
    red.SetTextColour(0x0000FF);
    first.AddBlock(red);
    CRtfTextBlockInfo plain(16);
    plain.SetFont(SFontDescription::Make(u"Arial", 12));
    plain.SetTextColour(DefaultRichTextColour);
    first.AddBlock(plain);
    document.AppendLine(first);

    CRtfTextLine second(u"\tindented with \x14 file");
    CRtfObjectInfo attachment(CRtfObjectInfo::AttachmentType, 15);
    attachment.SetFileName(u"a.txt");
    CHugeMemory data;
    const uint8_t bytes[] = {1, 2, 3};
    data.Append(std::span<const uint8_t>(bytes, 3));
    attachment.SetData(std::move(data));
    second.AddObject(attachment);
    document.AppendLine(second);
    document.AppendLine(CRtfTextLine());

    CRtfTextLine fourth(u"picture \x14 here, cat cat");
    fourth.SetAlignment(CRtfTextLine::AlignRight);
    CRtfObjectInfo picture(CRtfObjectInfo::PictureType, 8);
    CDIBitmap bitmap;
    std::vector<uint8_t> packed(40 + 4, 0);
    SDIBitmapHeader header;
    header.width = 1;
    header.height = 1;
    header.bitCount = 24;
    header.ToBytes(std::span<uint8_t, 40>(packed.data(), 40));
    EXPECT_TRUE(bitmap.SetPacked(packed));
    picture.SetPicture(bitmap);
    picture.SetParam1(30);
    picture.SetParam2(20);
    fourth.AddObject(picture);
    document.AppendLine(fourth);
    document.AppendLine(CRtfTextLine(u"cat and dog"));
    return document;
}

struct SOperation
{
    const char* name;
    SFxCharPosition anchor;
    SFxCharPosition caret;
    std::function<void(CFxEdit&, CFxEditTestHost&)> run;
    std::vector<std::u16string> labels; // the quanta recorded, oldest first
    // Where undo leaves the caret and the anchor when it is not where they were before: a
    // replacement collapses them onto the occurrence before it opens its quantum.
    std::optional<SFxCharPosition> undoneAt = std::nullopt;
};

std::vector<SOperation> Operations()
{
    using E = CFxEdit;
    using H = CFxEditTestHost;
    return {
        {"typed character", {0, 12}, {0, 12}, [](E& e, H&) { e.OnChar(u'Z'); }, {u"Typing"}},
        {"typed over a selection",
         {1, 3},
         {0, 8},
         [](E& e, H&) { e.OnChar(u'Z'); },
         {u"Clear Selection", u"Typing"}},
        {"typed with a pending format",
         {0, 20},
         {0, 20},
         [](E& e, H&)
         {
             e.SetBackColour(0x00FF00);
             e.OnChar(u'Z');
         },
         {u"Typing"}},
        {"Enter inside a format run", {0, 6}, {0, 6}, [](E& e, H&) { e.Enter(); }, {u"Typing"}},
        {"Backspace joining lines", {1, 0}, {1, 0}, [](E& e, H&) { e.Backspace(); }, {u"Deletion"}},
        {"Delete joining lines", {2, 0}, {2, 0}, [](E& e, H&) { e.Delete(); }, {u"Deletion"}},
        {"Delete of an object", {1, 15}, {1, 15}, [](E& e, H&) { e.Delete(); }, {u"Deletion"}},
        {"deleted selection over lines and objects",
         {3, 10},
         {0, 5},
         [](E& e, H&) { e.DeleteSelection(); },
         {u"Clear Selection"}},
        {"cut", {0, 4}, {1, 16}, [](E& e, H&) { e.Cut(); }, {u"Clear Selection"}},
        {"rich paste over a selection",
         {4, 4},
         {4, 0},
         [](E& e, H& h)
         {
             const SFxPosition keep[2] = {e.Anchor(), e.Caret()};
             e.SetSelection(e.FromCharPosition({0, 2}), e.FromCharPosition({1, 17}));
             e.Copy();
             e.SetSelection(keep[0], keep[1]);
             ASSERT_FALSE(h.clipboard.richText.empty());
             e.Paste();
         },
         {u"Clear Selection", u"Insertion"}},
        {"plain paste of lines",
         {3, 4},
         {3, 4},
         [](E& e, H& h)
         {
             h.clipboard = {u"one\r\ntwo\nthree", {}};
             e.Paste();
         },
         {u"Insertion"}},
        {"Tab over three lines", {1, 2}, {3, 0}, [](E& e, H&) { e.OnChar(u'\t'); }, {u"Typing"}},
        {"Shift+Tab", {0, 3}, {1, 3}, [](E& e, H&) { e.OnChar(u'\t', true); }, {u"Typing"}},
        {"bold over lines", {0, 2}, {3, 5}, [](E& e, H&) { e.ToggleBold(); }, {u"Font Formatting"}},
        {"larger font", {0, 0}, {0, 30}, [](E& e, H&) { e.ChangeFontSize(true); }, {u"Font Formatting"}},
        {"font name", {3, 0}, {4, 3}, [](E& e, H&) { e.SetFontName(u"Courier"); }, {u"Font Formatting"}},
        {"text colour", {0, 12}, {1, 1}, [](E& e, H&) { e.SetTextColour(0x123456); }, {u"Font Formatting"}},
        {"alignment",
         {0, 1},
         {2, 0},
         [](E& e, H&) { e.SetAlignment(CRtfTextLine::AlignCentre); },
         {u"Alignment"}},
        {"bullets", {3, 2}, {4, 2}, [](E& e, H&) { e.ToggleBullets(); }, {u"Insertion"}},
        {"upper case",
         {0, 3},
         {4, 2},
         [](E& e, H&) { e.ChangeCase(CFxEdit::ECase::Upper); },
         {u"Replacement"}},
        {"untabify", {0, 0}, {1, 5}, [](E& e, H&) { e.Untabify(); }, {u"Replacement"}},
        {"replace one",
         {0, 0},
         {0, 0},
         [](E& e, H&) { e.Replace(u"cat", u"lion", true, false, false); },
         {u"Replacement"},
         SFxCharPosition{3, 16}},
        {"replace all",
         {0, 0},
         {0, 0},
         [](E& e, H&) { e.Replace(u"cat", u"c", true, true, false); },
         {u"Replacement", u"Replacement", u"Replacement"},
         SFxCharPosition{3, 16}},
        {"move line up", {3, 9}, {3, 2}, [](E& e, H&) { e.MoveLine(true); }, {u"Replacement"}},
        {"move line down", {0, 25}, {0, 25}, [](E& e, H&) { e.MoveLine(false); }, {u"Replacement"}},
        {"date stamp", {0, 3}, {0, 3}, [](E& e, H&) { e.InsertDateStamp(); }, {u"Insertion"}},
        {"inserted object",
         {2, 0},
         {2, 0},
         [](E& e, H&) { e.InsertObject(CRtfObjectInfo(CRtfObjectInfo::AttachmentType, 0)); },
         {u"Insertion"}},
        {"restored picture size", {3, 8}, {3, 9}, [](E& e, H&) { e.RestoreImageSize(); }, {u"Replacement"}},
        {"deleted line", {2, 0}, {2, 0}, [](E& e, H&) { e.DeleteCaretLine(); }, {u"Deletion"}},
    };
}
} // namespace

TEST(FxEditUndoRoundTrip, EveryKindOfChangeUndoesAndRedoesExactly)
{
    for (const SOperation& operation : Operations())
    {
        SCOPED_TRACE(operation.name);
        CFxEditTestHost host;
        host.width = 100;
        host.clock.now = 46000.5;
        CFxEdit edit(host, CFxEdit::ModeRich, true);
        edit.SetDocument(StartDocument());
        edit.SetSelection(edit.FromCharPosition(operation.anchor), edit.FromCharPosition(operation.caret));
        SEditorState before = Capture(edit);
        if (operation.undoneAt)
            before.caret = before.anchor = *operation.undoneAt;
        operation.run(edit, host);
        const SEditorState after = Capture(edit);
        ASSERT_NE(after.bytes, before.bytes);

        const auto& history = edit.UndoHistory();
        ASSERT_EQ(history.QuantCount(), operation.labels.size());
        for (size_t i = 0; i < operation.labels.size(); ++i)
            EXPECT_EQ(history.Quant(i).label, operation.labels[i]) << i;

        for (int32_t width : {37, 250})
        {
            // The wrapping changes between the edit and its undo; offsets are what was stored.
            host.width = width;
            edit.OnResize();
            for (size_t i = 0; i < operation.labels.size(); ++i)
                ASSERT_TRUE(edit.Undo());
            EXPECT_FALSE(edit.CanUndo());
            EXPECT_FALSE(edit.IsModified());
            EXPECT_EQ(Capture(edit), before);
            EXPECT_TRUE(LayoutIsConsistent(edit));
            host.width = width + 13;
            edit.OnResize();
            for (size_t i = 0; i < operation.labels.size(); ++i)
                ASSERT_TRUE(edit.Redo());
            EXPECT_FALSE(edit.CanRedo());
            EXPECT_TRUE(edit.IsModified());
            EXPECT_EQ(Capture(edit), after);
            EXPECT_TRUE(LayoutIsConsistent(edit));
        }
    }
}

TEST(FxEditUndoRoundTrip, StepsRecordWholeLinesOfTheRightKind)
{
    CFxEditTestHost host;
    CFxEdit edit(host, CFxEdit::ModeRich, true);
    edit.SetDocument(StartDocument());
    // Deleting from line 0 into line 3 changes line 0 and deletes lines 1 to 3.
    edit.SetSelection(edit.FromCharPosition({0, 5}), edit.FromCharPosition({3, 10}));
    edit.DeleteSelection();
    const auto& quant = edit.UndoHistory().Quant(0);
    ASSERT_EQ(quant.steps.size(), 4u);
    EXPECT_EQ(quant.steps[0].kind, CFxEdit::CUndoRedo::LineChanged);
    EXPECT_EQ(quant.steps[0].before->Text(), u"The quick brown fox jumps over");
    EXPECT_EQ(quant.steps[0].after->Text(), u"The qhere, cat cat");
    for (size_t i = 1; i < 4; ++i)
    {
        EXPECT_EQ(quant.steps[i].kind, CFxEdit::CUndoRedo::LineDeleted);
        EXPECT_EQ(quant.steps[i].line, 1); // each removal at the same index
        EXPECT_EQ(quant.steps[i].after, nullptr);
    }
    EXPECT_EQ(quant.steps[3].before->Objects().size(), 1u);
    EXPECT_EQ(quant.anchorBefore, (SFxCharPosition{0, 5}));
    EXPECT_EQ(quant.caretBefore, (SFxCharPosition{3, 10}));
    EXPECT_EQ(quant.caretAfter, (SFxCharPosition{0, 5}));

    // Enter records the changed line and the inserted one.
    edit.Enter();
    const auto& split = edit.UndoHistory().Quant(1);
    ASSERT_EQ(split.steps.size(), 2u);
    EXPECT_EQ(split.steps[0].kind, CFxEdit::CUndoRedo::LineChanged);
    EXPECT_EQ(split.steps[1].kind, CFxEdit::CUndoRedo::LineInserted);
    EXPECT_EQ(split.steps[1].line, 1);
    EXPECT_EQ(split.steps[1].after->Text(), u"here, cat cat");
    EXPECT_EQ(split.steps[1].before, nullptr);

    // A change that changes nothing leaves no quantum; a step's line index outside the text is a
    // programming fault.
    edit.SetSelection(edit.FromCharPosition({0, 0}), edit.FromCharPosition({0, 0}));
    edit.ChangeCase(CFxEdit::ECase::Upper);
    edit.SetAlignment(CRtfTextLine::AlignLeft);
    EXPECT_EQ(edit.UndoHistory().QuantCount(), 2u);
    EXPECT_THROW(edit.Line(edit.LineCount()), std::invalid_argument);
}
