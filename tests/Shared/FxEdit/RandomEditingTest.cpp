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

// The state after one undo quantum: the text always, the whole document when it is known.
struct SSnapshot
{
    Lines text;
    std::optional<CRichTextDocument> document;
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
    std::vector<SSnapshot> history{{model.lines, edit.GetDocument()}};
    size_t current = 0; // index of the state the editor shows
    auto record = [&](bool documentKnown)
    {
        history.resize(current + 1);
        history.push_back({model.lines, documentKnown ? std::optional(edit.GetDocument()) : std::nullopt});
        ++current;
    };

    std::mt19937 random(2024);
    for (int step = 0; step < 4000; ++step)
    {
        if (step % 7 == 0)
            edit.SetSelection(RandomPosition(edit, random), RandomPosition(edit, random));
        const SFxCharPosition from = edit.ToCharPosition(edit.SelectionStart());
        const SFxCharPosition to = edit.ToCharPosition(edit.SelectionEnd());
        const bool selected = from != to;
        const Lines before = model.lines;
        const uint32_t operation = random() % 12;
        switch (operation)
        {
        case 0:
        case 1:
        case 2:
        {
            const char16_t c = u"ab c.,x"[random() % 7];
            edit.OnChar(c);
            if (selected)
            {
                model.Erase(from, to);
                record(false);
            }
            model.Insert(from, std::u16string(1, c));
            record(true);
            break;
        }
        case 3:
            edit.Enter();
            if (selected)
            {
                model.Erase(from, to);
                record(false);
            }
            model.Insert(from, u"\n");
            record(true);
            break;
        case 4:
        case 5:
        {
            const bool backspace = operation == 4;
            backspace ? edit.Backspace() : edit.Delete();
            if (selected)
                model.Erase(from, to);
            else if (backspace && (from.offset > 0 || from.line > 0))
                model.Erase(
                    from.offset > 0
                        ? SFxCharPosition{from.line, from.offset - 1}
                        : SFxCharPosition{from.line - 1,
                                          static_cast<int32_t>(
                                              model.lines[static_cast<size_t>(from.line - 1)].size())},
                    from);
            else if (!backspace && (from.offset < static_cast<int32_t>(
                                                      model.lines[static_cast<size_t>(from.line)].size()) ||
                                    from.line + 1 < static_cast<int32_t>(model.lines.size())))
                model.Erase(from, from.offset < static_cast<int32_t>(
                                                    model.lines[static_cast<size_t>(from.line)].size())
                                      ? SFxCharPosition{from.line, from.offset + 1}
                                      : SFxCharPosition{from.line + 1, 0});
            if (model.lines != before)
                record(true);
            break;
        }
        case 6:
            edit.InsertText(u"pa\r\nste");
            if (selected)
            {
                model.Erase(from, to);
                record(false);
            }
            model.Insert(from, u"pa\nste");
            record(true);
            break;
        case 7:
        case 8:
            if (edit.Undo())
            {
                ASSERT_GT(current, 0u);
                model.lines = history[--current].text;
            }
            else
            {
                ASSERT_EQ(current, 0u);
            }
            break;
        case 9:
            if (edit.Redo())
            {
                model.lines = history[++current].text;
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
                record(true);
            break;
        }
        case 11:
        {
            const int32_t line = edit.ToCharPosition(edit.Anchor()).line;
            const bool up = random() % 2 == 0;
            edit.MoveLine(up);
            const int32_t other = up ? line - 1 : line + 1;
            if (other >= 0 && other < static_cast<int32_t>(model.lines.size()))
            {
                std::swap(model.lines[static_cast<size_t>(line)], model.lines[static_cast<size_t>(other)]);
                record(true);
            }
            break;
        }
        }
        ASSERT_EQ(EditorLines(edit), model.lines) << "step " << step << " operation " << operation;
        if (history[current].document)
        {
            ASSERT_EQ(edit.GetDocument(), *history[current].document) << "step " << step;
        }
        ASSERT_EQ(edit.UndoHistory().Current() + 1, static_cast<int32_t>(current)) << "step " << step;
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
