// Thousands of random edits, undos and redos checked against a plain model of the text; undoing
// everything restores the first document byte for byte and redoing everything the last.
#include "FxEditTestHost.h"
#include "Shared/Base/Archive.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>

namespace
{
using Lines = std::vector<std::u16string>;

// The state after one undo quantum: the text always, the whole document when it is known, and
// the caret and anchor the quantum stored before and after it.
struct SSnapshot
{
    Lines text;
    std::optional<CRichTextDocument> document;
    SFxCharPosition caretBefore;
    SFxCharPosition anchorBefore;
    SFxCharPosition caretAfter;
    SFxCharPosition anchorAfter;
};

class CTextModel
{
public:
    Lines lines{u""};

    void Erase(SFxCharPosition from, SFxCharPosition to)
    {
        std::u16string& first = lines[static_cast<size_t>(from.line)];
        const std::u16string tail =
            lines[static_cast<size_t>(to.line)].substr(static_cast<size_t>(to.offset));
        first = first.substr(0, static_cast<size_t>(from.offset)) + tail;
        lines.erase(lines.begin() + from.line + 1, lines.begin() + to.line + 1);
    }

    // Inserts text whose lines are separated by '\n'.
    SFxCharPosition Insert(SFxCharPosition at, std::u16string_view text)
    {
        std::u16string& line = lines[static_cast<size_t>(at.line)];
        const std::u16string tail = line.substr(static_cast<size_t>(at.offset));
        line.resize(static_cast<size_t>(at.offset));
        size_t index = static_cast<size_t>(at.line);
        for (char16_t c : text)
        {
            if (c == u'\n')
                lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(++index), u"");
            else
                lines[index] += c;
        }
        const SFxCharPosition end{static_cast<int32_t>(index), static_cast<int32_t>(lines[index].size())};
        lines[index] += tail;
        return end;
    }

    int32_t Length(int32_t line) const
    {
        return static_cast<int32_t>(lines[static_cast<size_t>(line)].size());
    }
    int32_t Count() const { return static_cast<int32_t>(lines.size()); }
};

std::vector<uint8_t> Bytes(const CRichTextDocument& document)
{
    CArchiveWriter writer;
    document.Serialize(writer);
    return writer.Take();
}

Lines EditorLines(const CFxEdit& edit)
{
    Lines lines;
    for (int32_t i = 0; i < edit.LineCount(); ++i)
        lines.push_back(edit.Line(i).Text());
    return lines;
}

SFxPosition RandomPosition(const CFxEdit& edit, std::mt19937& random)
{
    const auto line = static_cast<int32_t>(random() % static_cast<uint32_t>(edit.LineCount()));
    const auto pos =
        static_cast<int32_t>(random() % static_cast<uint32_t>(edit.Line(line).LastLayoutPosition() + 1));
    return {line, pos};
}

CRichTextDocument RichPiece()
{
    CRichTextDocument piece;
    CRtfTextLine first(u"ri");
    CRtfTextBlockInfo colour(1);
    colour.SetTextColour(0x00FF00);
    first.AddBlock(colour);
    piece.AppendLine(first);
    CRtfTextLine second(u"ch");
    second.SetAlignment(CRtfTextLine::AlignCentre);
    piece.AppendLine(second);
    return piece;
}
} // namespace

TEST(FxEditRandom, EditsUndosAndRedosFollowAPlainModel)
{
    CFxEditTestHost host;
    host.width = 60;
    CFxEdit edit(host, CFxEdit::ModeRich, true);
    CRichTextDocument first;
    first.AppendLine(CRtfTextLine(u"start of the text"));
    first.AppendLine(CRtfTextLine(u"second line"));
    edit.SetDocument(first);
    const std::vector<uint8_t> firstBytes = Bytes(edit.GetDocument());

    CTextModel model;
    model.lines = EditorLines(edit);
    std::vector<SSnapshot> history{{model.lines, edit.GetDocument(), {}, {}, {}, {}}};
    size_t current = 0; // index of the state the editor shows
    SFxCharPosition caretBefore;
    SFxCharPosition anchorBefore;
    // Records a quantum that ended with caret and anchor at `caret` and `anchor` (the model's
    // expectation) and checks that the editor put them there.
    auto record = [&](bool documentKnown, SFxCharPosition caret, SFxCharPosition anchor)
    {
        history.resize(current + 1);
        history.push_back({model.lines, documentKnown ? std::optional(edit.GetDocument()) : std::nullopt,
                           caretBefore, anchorBefore, caret, anchor});
        ++current;
        caretBefore = caret;
        anchorBefore = anchor;
    };

    std::mt19937 random(2024);
    for (int step = 0; step < 5000; ++step)
    {
        if (step % 7 == 0)
            edit.SetSelection(RandomPosition(edit, random), RandomPosition(edit, random));
        const SFxCharPosition from = edit.ToCharPosition(edit.SelectionStart());
        const SFxCharPosition to = edit.ToCharPosition(edit.SelectionEnd());
        caretBefore = edit.ToCharPosition(edit.Caret());
        anchorBefore = edit.ToCharPosition(edit.Anchor());
        const bool selected = from != to;
        // Typing, Enter and insertions first delete the selection as a quantum of their own.
        auto eraseSelection = [&]
        {
            if (!selected)
                return;
            model.Erase(from, to);
            record(false, from, from);
        };
        const size_t quantaBefore = current;
        const uint32_t operation = random() % 15;
        switch (operation)
        {
        case 0:
        case 1:
        case 2:
        {
            const char16_t c = u"ab c.,x"[random() % 7];
            edit.OnChar(c);
            eraseSelection();
            const SFxCharPosition end = model.Insert(from, std::u16string(1, c));
            record(true, end, end);
            break;
        }
        case 3:
        {
            edit.Enter();
            eraseSelection();
            const SFxCharPosition end = model.Insert(from, u"\n");
            record(true, end, end);
            break;
        }
        case 4:
        case 5:
        {
            const bool backspace = operation == 4;
            backspace ? edit.Backspace() : edit.Delete();
            if (selected)
            {
                model.Erase(from, to);
                record(true, from, from);
            }
            else if (backspace && (from.offset > 0 || from.line > 0))
            {
                const SFxCharPosition left =
                    from.offset > 0 ? SFxCharPosition{from.line, from.offset - 1}
                                    : SFxCharPosition{from.line - 1, model.Length(from.line - 1)};
                model.Erase(left, from);
                record(true, left, left);
            }
            else if (!backspace && (from.offset < model.Length(from.line) || from.line + 1 < model.Count()))
            {
                model.Erase(from, from.offset < model.Length(from.line)
                                      ? SFxCharPosition{from.line, from.offset + 1}
                                      : SFxCharPosition{from.line + 1, 0});
                record(true, from, from);
            }
            break;
        }
        case 6:
        {
            edit.InsertText(u"pa\r\nste");
            eraseSelection();
            const SFxCharPosition end = model.Insert(from, u"pa\nste");
            record(true, end, end);
            break;
        }
        case 7:
        case 8:
            if (edit.Undo())
            {
                ASSERT_GT(current, 0u);
                const SSnapshot& undone = history[current--];
                model.lines = history[current].text;
                ASSERT_EQ(edit.ToCharPosition(edit.Caret()), undone.caretBefore) << "step " << step;
                ASSERT_EQ(edit.ToCharPosition(edit.Anchor()), undone.anchorBefore) << "step " << step;
            }
            else
            {
                ASSERT_EQ(current, 0u);
            }
            break;
        case 9:
            if (edit.Redo())
            {
                const SSnapshot& redone = history[++current];
                model.lines = redone.text;
                ASSERT_EQ(edit.ToCharPosition(edit.Caret()), redone.caretAfter) << "step " << step;
                ASSERT_EQ(edit.ToCharPosition(edit.Anchor()), redone.anchorAfter) << "step " << step;
            }
            else
            {
                ASSERT_EQ(current + 1, history.size());
            }
            break;
        case 10:
        {
            // Formatting changes no text; it is one quantum when the selection holds characters.
            const CRichTextDocument unchanged = edit.GetDocument();
            edit.ToggleBold();
            if (!(edit.GetDocument() == unchanged))
                record(true, caretBefore, anchorBefore);
            break;
        }
        case 11:
        {
            const int32_t line = anchorBefore.line;
            const bool up = random() % 2 == 0;
            edit.MoveLine(up);
            const int32_t other = up ? line - 1 : line + 1;
            if (other >= 0 && other < model.Count())
            {
                std::swap(model.lines[static_cast<size_t>(line)], model.lines[static_cast<size_t>(other)]);
                const SFxCharPosition moved{other, anchorBefore.offset};
                record(true, moved, moved);
            }
            break;
        }
        case 12:
        {
            // Indent or outdent of the selected lines; a selection ending at the start of a later
            // non-empty line leaves that line out.
            const bool outdent = random() % 2 == 0;
            edit.IndentSelectedLines(outdent);
            int32_t last = to.line;
            if (to.line > from.line && to.offset == 0 && model.Length(to.line) > 0)
                --last;
            SFxCharPosition caret = caretBefore;
            SFxCharPosition anchor = anchorBefore;
            bool changed = false;
            for (int32_t i = from.line; i <= last; ++i)
            {
                std::u16string& text = model.lines[static_cast<size_t>(i)];
                if (outdent)
                {
                    if (text.empty() || text.front() != u'\t')
                        continue;
                    text.erase(0, 1);
                    for (SFxCharPosition* at : {&caret, &anchor})
                        if (at->line == i && at->offset > 0)
                            --at->offset;
                }
                else
                {
                    text.insert(0, 1, u'\t');
                    if (anchor.line == i)
                        ++anchor.offset;
                    if (caret.line == i && caret.offset > 0)
                        ++caret.offset;
                }
                changed = true;
            }
            if (changed)
                record(true, caret, anchor);
            break;
        }
        case 13:
        {
            // Replace all over the whole text: one quantum per occurrence, caret on its start.
            const int32_t count = edit.Replace(u"ab", u"xab", true, true, false);
            int32_t expected = 0;
            for (int32_t i = 0; i < model.Count(); ++i)
            {
                size_t at = 0;
                while ((at = model.lines[static_cast<size_t>(i)].find(u"ab", at)) != std::u16string::npos)
                {
                    model.lines[static_cast<size_t>(i)].replace(at, 2, u"xab");
                    const SFxCharPosition start{i, static_cast<int32_t>(at)};
                    caretBefore = anchorBefore = start;
                    record(false, start, start);
                    at += 3;
                    ++expected;
                }
            }
            ASSERT_EQ(count, expected) << "step " << step;
            if (expected > 0)
                history[current].document = edit.GetDocument();
            break;
        }
        case 14:
        {
            edit.InsertDocument(RichPiece());
            eraseSelection();
            const SFxCharPosition end = model.Insert(from, u"ri\nch");
            record(true, end, end);
            break;
        }
        }
        ASSERT_EQ(EditorLines(edit), model.lines) << "step " << step << " operation " << operation;
        if (history[current].document)
        {
            ASSERT_EQ(edit.GetDocument(), *history[current].document) << "step " << step;
        }
        ASSERT_EQ(edit.UndoHistory().Current() + 1, static_cast<int32_t>(current)) << "step " << step;
        if (current > quantaBefore && operation != 7 && operation != 8 && operation != 9)
        {
            ASSERT_EQ(edit.ToCharPosition(edit.Caret()), history[current].caretAfter) << "step " << step;
            ASSERT_EQ(edit.ToCharPosition(edit.Anchor()), history[current].anchorAfter) << "step " << step;
        }
        if (step % 500 == 250)
        {
            host.width = 30 + static_cast<int32_t>(random() % 80);
            edit.OnResize();
        }
        ASSERT_TRUE(LayoutIsConsistent(edit)) << "step " << step;
    }

    while (edit.Undo())
    {
    }
    EXPECT_EQ(Bytes(edit.GetDocument()), firstBytes);
    EXPECT_FALSE(edit.IsModified());
    while (edit.Redo())
    {
    }
    ASSERT_TRUE(history.back().document.has_value());
    EXPECT_EQ(Bytes(edit.GetDocument()), Bytes(*history.back().document));
    EXPECT_TRUE(LayoutIsConsistent(edit));
}

TEST(FxEditRandom, BoundedHistoryDropsOldestChangesAndStaysModified)
{
    CFxEditTestHost host;
    SFxEditSettings settings;
    settings.undoMemoryLimit = 4000;
    CFxEdit edit(host, CFxEdit::ModeRich, true, settings);
    for (int i = 0; i < 200; ++i)
        edit.OnChar(u'a');
    const auto& history = edit.UndoHistory();
    EXPECT_LE(history.MemoryUsed(), 4000u);
    EXPECT_TRUE(history.DroppedOlderChanges());
    EXPECT_LT(history.QuantCount(), 200u);
    int undone = 0;
    while (edit.Undo())
        ++undone;
    EXPECT_EQ(static_cast<size_t>(undone), history.QuantCount());
    EXPECT_EQ(edit.Line(0).Text().size(), 200u - static_cast<size_t>(undone));
    EXPECT_TRUE(edit.IsModified()); // older changes are gone, so this is not the loaded text
}
