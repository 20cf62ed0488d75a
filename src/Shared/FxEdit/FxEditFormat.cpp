// Formatting commands, alignment, bullets, change case and tabify/untabify. A format command
// with an empty selection sets the pending format at the caret instead.
#include "Shared/FxEdit/FxEdit.h"
#include "Shared/FxEdit/LineEditing.h"
#include "Shared/FxEdit/LineLayout.h"
#include "Shared/TextSearch/CaseFolding.h"

#include <algorithm>
#include <array>

namespace
{
constexpr std::array<int32_t, 16> FontSizeSteps = {8,  9,  10, 11, 12, 14, 16, 18,
                                                   20, 22, 24, 26, 28, 36, 48, 72};
constexpr int32_t MinFontPoints = 2;
constexpr int32_t MaxFontPoints = 299;

char16_t ToUpperUnit(char16_t c)
{
    if (c >= 0xD800 && c <= 0xDFFF)
        return c;
    const char16_t folded = FoldUnit(c);
    for (char16_t candidate : UnitsFoldingTo(folded))
        if (candidate != folded)
            return candidate;
    return c;
}

char16_t ToLowerUnit(char16_t c)
{
    return (c >= 0xD800 && c <= 0xDFFF) ? c : FoldUnit(c);
}

int32_t SteppedSize(int32_t points, bool larger)
{
    if (larger)
    {
        for (int32_t step : FontSizeSteps)
            if (step > points)
                return step;
        return std::min(points + 12, MaxFontPoints);
    }
    for (auto step = FontSizeSteps.rbegin(); step != FontSizeSteps.rend(); ++step)
        if (*step < points)
            return *step;
    return std::max(points - 1, MinFontPoints);
}
} // namespace

SFontDescription CFxEdit::FontAtCaret() const
{
    if (CaretOnPendingPosition() && m_PendingFormat->HasFont())
        return *m_PendingFormat->Font();
    const SFxCharPosition caret = ToCharPosition(IsSelectionEmpty() ? m_Caret : SelectionStart());
    // Typed text takes the format of the character before the caret.
    const int32_t offset = IsSelectionEmpty() ? std::max(caret.offset - 1, 0) : caret.offset;
    const CRtfTextBlockInfo format = FormatAt(Line(caret.line), offset);
    return format.HasFont() ? *format.Font() : m_Settings.defaultFont;
}

void CFxEdit::ChangeSelectionFont(const std::function<SFontDescription(const SFontDescription&)>& change)
{
    if (m_ReadOnly)
        return;
    if (IsSelectionEmpty())
    {
        CRtfTextBlockInfo pending = CaretOnPendingPosition() ? *m_PendingFormat : CRtfTextBlockInfo();
        pending.SetFont(change(FontAtCaret()));
        m_PendingFormat = pending;
        m_PendingPosition = m_Caret;
        return;
    }
    const SFontDescription defaultFont = m_Settings.defaultFont;
    ChangeSelectedLines(u"EDITCTL_UNDO_FONT_FORMATTING",
                        [&](CRtfTextLine& line, int32_t from, int32_t to, int32_t*, int32_t*)
                        {
                            // Each run of one font gets its own changed font, so a bold command
                            // over several sizes keeps the sizes.
                            const CRtfTextLine original = line;
                            int32_t runStart = from;
                            while (runStart < to)
                            {
                                int32_t runEnd = to;
                                for (const CRtfTextBlockInfo& block : original.Blocks())
                                    if (block.HasFont() && block.Start() > runStart && block.Start() < runEnd)
                                        runEnd = block.Start();
                                const CRtfTextBlockInfo format = FormatAt(original, runStart);
                                CRtfTextBlockInfo font(runStart);
                                font.SetFont(change(format.HasFont() ? *format.Font() : defaultFont));
                                ApplyLineFormat(line, runStart, runEnd, font, defaultFont);
                                runStart = runEnd;
                            }
                            return true;
                        });
}

void CFxEdit::ChangeSelectionColours(std::optional<RichTextColour> text, std::optional<RichTextColour> back)
{
    if (m_ReadOnly)
        return;
    if (IsSelectionEmpty())
    {
        CRtfTextBlockInfo pending = CaretOnPendingPosition() ? *m_PendingFormat : CRtfTextBlockInfo();
        if (text)
            pending.SetTextColour(text);
        if (back)
            pending.SetBackColour(back);
        m_PendingFormat = pending;
        m_PendingPosition = m_Caret;
        return;
    }
    CRtfTextBlockInfo colours;
    colours.SetTextColour(text);
    colours.SetBackColour(back);
    ChangeSelectedLines(u"EDITCTL_UNDO_FONT_FORMATTING",
                        [&](CRtfTextLine& line, int32_t from, int32_t to, int32_t*, int32_t*)
                        {
                            CRtfTextBlockInfo block = colours;
                            block.SetStart(from);
                            ApplyLineFormat(line, from, to, block, m_Settings.defaultFont);
                            return true;
                        });
}

void CFxEdit::SetFontName(std::u16string_view face)
{
    if (face.empty())
        return;
    ChangeSelectionFont(
        [&](const SFontDescription& font)
        {
            SFontDescription changed = font;
            changed.SetFaceName(face);
            return changed;
        });
}

void CFxEdit::SetFontSize(int32_t points)
{
    points = std::clamp(points, MinFontPoints, MaxFontPoints);
    ChangeSelectionFont(
        [&](const SFontDescription& font)
        {
            SFontDescription changed = font;
            changed.height = points;
            return changed;
        });
}

void CFxEdit::ChangeFontSize(bool larger)
{
    ChangeSelectionFont(
        [&](const SFontDescription& font)
        {
            SFontDescription changed = font;
            changed.height =
                SteppedSize(static_cast<int32_t>(std::min<int64_t>(font.PointSize(), MaxFontPoints)), larger);
            return changed;
        });
}

void CFxEdit::ToggleBold()
{
    const bool bold = !FontAtCaret().IsBold();
    ChangeSelectionFont(
        [&](const SFontDescription& font)
        {
            SFontDescription changed = font;
            changed.weight = bold ? SFontDescription::BoldWeight : 400;
            return changed;
        });
}

void CFxEdit::ToggleItalic()
{
    const uint8_t italic = FontAtCaret().IsItalic() ? 0 : 1;
    ChangeSelectionFont(
        [&](const SFontDescription& font)
        {
            SFontDescription changed = font;
            changed.italic = italic;
            return changed;
        });
}

void CFxEdit::ToggleUnderline()
{
    const uint8_t underline = FontAtCaret().IsUnderlined() ? 0 : 1;
    ChangeSelectionFont(
        [&](const SFontDescription& font)
        {
            SFontDescription changed = font;
            changed.underline = underline;
            return changed;
        });
}

void CFxEdit::SetTextColour(RichTextColour colour)
{
    ChangeSelectionColours(colour, std::nullopt);
}

void CFxEdit::SetBackColour(RichTextColour colour)
{
    ChangeSelectionColours(std::nullopt, colour);
}

void CFxEdit::SetAlignment(int32_t alignment)
{
    if (m_ReadOnly)
        return;
    ChangeSelectedLines(u"EDITCTL_UNDO_ALIGNMENT",
                        [&](CRtfTextLine& line, int32_t, int32_t, int32_t*, int32_t*)
                        {
                            line.SetAlignment(alignment);
                            return true;
                        });
}

void CFxEdit::ToggleBullets()
{
    if (m_ReadOnly || m_Mode != ModeRich)
        return;
    const std::u16string prefix{m_Settings.bulletCharacter, u'\t'};
    const auto prefixLength = static_cast<int32_t>(prefix.size());
    bool allBulleted = true;
    for (int32_t i = SelectionStart().line; i <= SelectionEnd().line; ++i)
        allBulleted = allBulleted && Line(i).Text().starts_with(prefix);
    ChangeSelectedLines(u"EDITCTL_UNDO_TXT_INSERT",
                        [&](CRtfTextLine& line, int32_t, int32_t, int32_t* caret, int32_t* anchor)
                        {
                            const bool bulleted = line.Text().starts_with(prefix);
                            if (allBulleted == !bulleted)
                                return false;
                            const int32_t shift = allBulleted ? -prefixLength : prefixLength;
                            if (allBulleted)
                                RemoveLineText(line, 0, prefixLength);
                            else
                                InsertLineText(line, 0, prefix);
                            for (int32_t* offset : {caret, anchor})
                                if (offset != nullptr)
                                    *offset = std::max(0, *offset + shift);
                            return true;
                        });
}

void CFxEdit::ChangeCase(ECase kind)
{
    if (m_ReadOnly || IsSelectionEmpty())
        return;
    ChangeSelectedLines(u"EDITCTL_UNDO_REPLACEMENT",
                        [&](CRtfTextLine& line, int32_t from, int32_t to, int32_t*, int32_t*)
                        {
                            // Case mapping keeps every character's length, so formats and objects stay.
                            std::u16string text = line.Text();
                            bool wordStart =
                                from == 0 || IsWrapOpportunity(text[static_cast<size_t>(from - 1)]);
                            for (int32_t i = from; i < to; ++i)
                            {
                                char16_t& c = text[static_cast<size_t>(i)];
                                const bool upper =
                                    kind == ECase::Upper || (kind == ECase::Mixed && wordStart);
                                wordStart = IsWrapOpportunity(c);
                                if (c != CRtfObjectInfo::ObjectCharacter)
                                    c = upper ? ToUpperUnit(c) : ToLowerUnit(c);
                            }
                            line.SetText(std::move(text));
                            return true;
                        });
}

void CFxEdit::Tabify()
{
    if (m_ReadOnly || !m_TabsAllowed)
        return;
    const int32_t spaces = std::clamp(m_Settings.spacesPerTab, 1, 99);
    ChangeSelectedLines(
        u"EDITCTL_UNDO_REPLACEMENT",
        [&](CRtfTextLine& line, int32_t, int32_t, int32_t* caret, int32_t* anchor)
        {
            // Only the indentation: each full group of leading blanks becomes a tab.
            const std::u16string& text = line.Text();
            int32_t offset = 0;
            int32_t run = 0;
            bool changed = false;
            while (offset < static_cast<int32_t>(text.size()) &&
                   (text[static_cast<size_t>(offset)] == u' ' || text[static_cast<size_t>(offset)] == u'\t'))
            {
                run = text[static_cast<size_t>(offset)] == u' ' ? run + 1 : 0;
                ++offset;
                if (run < spaces)
                    continue;
                const int32_t groupStart = offset - spaces;
                RemoveLineText(line, groupStart, offset);
                InsertLineText(line, groupStart, u"\t");
                for (int32_t* at : {caret, anchor})
                    if (at != nullptr && *at > groupStart)
                        *at = std::max(groupStart + 1, *at - (spaces - 1));
                offset = groupStart + 1;
                run = 0;
                changed = true;
            }
            return changed;
        });
}

void CFxEdit::Untabify()
{
    if (m_ReadOnly)
        return;
    const int32_t spaces = std::clamp(m_Settings.spacesPerTab, 1, 99);
    ChangeSelectedLines(
        u"EDITCTL_UNDO_REPLACEMENT",
        [&](CRtfTextLine& line, int32_t, int32_t, int32_t* caret, int32_t* anchor)
        {
            // Each tab becomes the blanks that reach the same tab stop.
            bool changed = false;
            for (int32_t offset = 0; offset < static_cast<int32_t>(line.Text().size()); ++offset)
            {
                if (line.Text()[static_cast<size_t>(offset)] != u'\t')
                    continue;
                const int32_t width = spaces - offset % spaces;
                RemoveLineText(line, offset, offset + 1);
                InsertLineText(line, offset, std::u16string(static_cast<size_t>(width), u' '));
                for (int32_t* at : {caret, anchor})
                    if (at != nullptr && *at > offset)
                        *at += width - 1;
                offset += width - 1;
                changed = true;
            }
            return changed;
        });
}
