// Typing, line splits, deletions, insertions of text, documents and objects, indenting, and the
// recording of every change in the undo history.
#include "Shared/FxEdit/FxEdit.h"
#include "Shared/FxEdit/LineEditing.h"

#include <algorithm>

namespace
{
bool IsDecimalDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

bool IsHighSurrogate(char16_t c)
{
    return c >= 0xD800 && c <= 0xDBFF;
}

bool IsLowSurrogate(char16_t c)
{
    return c >= 0xDC00 && c <= 0xDFFF;
}
} // namespace

// ---- recording

void CFxEdit::ReplaceLines(int32_t first, int32_t oldCount, std::vector<CRtfTextLine> newLines,
                           SFxCharPosition caret, SFxCharPosition anchor, const std::u16string& label)
{
    const auto newCount = static_cast<int32_t>(newLines.size());
    const int32_t common = std::min(oldCount, newCount);
    bool changed = oldCount != newCount;
    m_UndoRedo.BeginUndoQuant(label);
    for (int32_t i = 0; i < common; ++i)
    {
        const int32_t index = first + i;
        if (Line(index).Paragraph() == newLines[static_cast<size_t>(i)])
            continue;
        PutLineRecorded(index, std::move(newLines[static_cast<size_t>(i)]));
        changed = true;
    }
    for (int32_t i = common; i < oldCount; ++i)
    {
        m_UndoRedo.AddLineDeleted(first + common);
        RemoveLineAt(first + common);
    }
    for (int32_t i = common; i < newCount; ++i)
    {
        InsertLineAt(first + i, newLines[static_cast<size_t>(i)]);
        m_UndoRedo.AddLineInserted(first + i, std::move(newLines[static_cast<size_t>(i)]));
    }
    RelayoutRange(first, first + std::max(newCount, 1) - 1, oldCount != newCount);
    SetCaretChars(caret, anchor);
    m_UndoRedo.EndUndoQuant();
    if (changed)
        NotifyTextChanged(true);
    EnsureCaretVisible();
}

void CFxEdit::ChangeSelectedLines(std::u16string_view labelKey, const LineChange& change)
{
    const SFxCharPosition from = ToCharPosition(SelectionStart());
    const SFxCharPosition to = ToCharPosition(SelectionEnd());
    SFxCharPosition caret = ToCharPosition(m_Caret);
    SFxCharPosition anchor = ToCharPosition(m_Anchor);
    bool opened = false;
    for (int32_t i = from.line; i <= to.line; ++i)
    {
        CRtfTextLine after = Line(i).Paragraph();
        const int32_t start = i == from.line ? from.offset : 0;
        const int32_t end = i == to.line ? to.offset : static_cast<int32_t>(after.Text().size());
        if (!change(after, start, end, caret.line == i ? &caret.offset : nullptr,
                    anchor.line == i ? &anchor.offset : nullptr) ||
            after == Line(i).Paragraph())
            continue;
        if (!opened)
            m_UndoRedo.BeginUndoQuant(Translate(labelKey));
        opened = true;
        PutLineRecorded(i, std::move(after));
    }
    RelayoutRange(from.line, to.line, false);
    SetCaretChars(caret, anchor);
    if (!opened)
        return;
    m_UndoRedo.EndUndoQuant();
    NotifyTextChanged(true);
    EnsureCaretVisible();
}

// ---- building the new lines

std::vector<std::u16string> CFxEdit::SplitForInsertion(std::u16string_view text) const
{
    std::vector<std::u16string> parts(1);
    for (size_t i = 0; i < text.size(); ++i)
    {
        const char16_t c = text[i];
        if (c == u'\r' || c == u'\n')
        {
            if (c == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n')
                ++i;
            if (m_Mode == ModeSingleLine)
                parts.back() += u' ';
            else if (m_Mode != ModeDigits)
                parts.emplace_back();
            continue;
        }
        if (c == CRtfObjectInfo::ObjectCharacter)
            parts.back() += u' '; // an object character without its object would be a dangling one
        else if (c == u'\t' && !m_TabsAllowed)
            parts.back() += u' ';
        else if (m_Mode != ModeDigits || IsDecimalDigit(c))
            parts.back() += c;
    }
    return parts;
}

std::vector<CRtfTextLine> CFxEdit::LinesFromText(std::u16string_view text) const
{
    std::vector<CRtfTextLine> lines;
    for (std::u16string& part : SplitForInsertion(text))
        lines.emplace_back(std::move(part));
    return lines;
}

std::vector<CRtfTextLine> CFxEdit::PlainInsertion(const CRtfTextLine& line, int32_t offset,
                                                  const std::vector<std::u16string>& texts,
                                                  int32_t& endOffset) const
{
    std::vector<CRtfTextLine> lines;
    if (texts.size() == 1)
    {
        lines.push_back(line);
        InsertLineText(lines.back(), offset, texts.front());
        endOffset = offset + static_cast<int32_t>(texts.front().size());
        return lines;
    }
    // New lines take the format that text typed at the insertion point would get.
    CRtfTextLine formatOnly = CopyLinePart(line, std::max(offset - 1, 0), std::max(offset - 1, 0));
    const CRtfTextLine tail = CopyLinePart(line, offset, static_cast<int32_t>(line.Text().size()));
    lines.push_back(CopyLinePart(line, 0, offset));
    InsertLineText(lines.back(), offset, texts.front());
    for (size_t i = 1; i < texts.size(); ++i)
    {
        CRtfTextLine next = formatOnly;
        InsertLineText(next, 0, texts[i]);
        lines.push_back(std::move(next));
    }
    endOffset = static_cast<int32_t>(lines.back().Text().size());
    AppendLine(lines.back(), tail, m_Settings.defaultFont);
    return lines;
}

std::vector<CRtfTextLine> CFxEdit::RichInsertion(const CRtfTextLine& line, int32_t offset,
                                                 const std::vector<CRtfTextLine>& inserted,
                                                 int32_t& endOffset) const
{
    std::vector<CRtfTextLine> lines;
    const CRtfTextLine tail = CopyLinePart(line, offset, static_cast<int32_t>(line.Text().size()));
    lines.push_back(CopyLinePart(line, 0, offset));
    AppendLine(lines.back(), inserted.front(), m_Settings.defaultFont);
    for (size_t i = 1; i < inserted.size(); ++i)
        lines.push_back(inserted[i]);
    endOffset = static_cast<int32_t>(lines.back().Text().size());
    AppendLine(lines.back(), tail, m_Settings.defaultFont);
    return lines;
}

// ---- deletion

void CFxEdit::DeleteCharRange(SFxCharPosition from, SFxCharPosition to, std::u16string_view labelKey)
{
    if (to.line < from.line || (to.line == from.line && to.offset <= from.offset))
        return;
    CRtfTextLine joined;
    if (from.line == to.line)
        joined = WithRemovedText(Line(from.line), from.offset, to.offset);
    else
    {
        joined = CopyLinePart(Line(from.line), 0, from.offset);
        const COneLineInfo& last = Line(to.line);
        AppendLine(joined, CopyLinePart(last, to.offset, last.Length()), m_Settings.defaultFont);
    }
    std::vector<CRtfTextLine> lines;
    lines.push_back(std::move(joined));
    ReplaceLines(from.line, to.line - from.line + 1, std::move(lines), from, from, Translate(labelKey));
}

bool CFxEdit::DeleteSelection()
{
    if (m_ReadOnly || IsSelectionEmpty())
        return false;
    DeleteCharRange(ToCharPosition(SelectionStart()), ToCharPosition(SelectionEnd()),
                    u"EDITCTL_CLEAR_SELECTION");
    return true;
}

void CFxEdit::Backspace()
{
    if (m_ReadOnly)
        return;
    if (DeleteSelection())
        return;
    const SFxCharPosition caret = ToCharPosition(m_Caret);
    if (caret.offset > 0)
    {
        const std::u16string& text = Line(caret.line).Text();
        int32_t from = caret.offset - 1;
        if (from > 0 && IsLowSurrogate(text[static_cast<size_t>(from)]) &&
            IsHighSurrogate(text[static_cast<size_t>(from - 1)]))
            --from;
        DeleteCharRange({caret.line, from}, caret, u"EDITCTL_UNDO_DELETION");
    }
    else if (caret.line > 0)
        DeleteCharRange({caret.line - 1, Line(caret.line - 1).Length()}, caret, u"EDITCTL_UNDO_DELETION");
}

void CFxEdit::Delete()
{
    if (m_ReadOnly)
        return;
    if (DeleteSelection())
        return;
    const SFxCharPosition caret = ToCharPosition(m_Caret);
    const std::u16string& text = Line(caret.line).Text();
    const auto length = static_cast<int32_t>(text.size());
    if (caret.offset < length)
    {
        int32_t to = caret.offset + 1;
        if (to < length && IsHighSurrogate(text[static_cast<size_t>(to - 1)]) &&
            IsLowSurrogate(text[static_cast<size_t>(to)]))
            ++to;
        DeleteCharRange(caret, {caret.line, to}, u"EDITCTL_UNDO_DELETION");
    }
    else if (caret.line + 1 < LineCount())
        DeleteCharRange(caret, {caret.line + 1, 0}, u"EDITCTL_UNDO_DELETION");
}

void CFxEdit::DeleteCaretLine()
{
    if (m_ReadOnly)
        return;
    const int32_t index = m_Caret.line;
    m_Anchor = m_Caret;
    if (LineCount() == 1)
    {
        ReplaceLines(0, 1, {CRtfTextLine()}, {0, 0}, {0, 0}, Translate(u"EDITCTL_UNDO_DELETION"));
        return;
    }
    const SFxCharPosition after{std::min(index, LineCount() - 2), 0};
    ReplaceLines(index, 1, {}, after, after, Translate(u"EDITCTL_UNDO_DELETION"));
}

// ---- typing

bool CFxEdit::CaretOnPendingPosition() const
{
    return m_PendingFormat.has_value() && m_Caret == m_PendingPosition;
}

void CFxEdit::ApplyPendingFormat(CRtfTextLine& line, int32_t offset, int32_t count) const
{
    ApplyLineFormat(line, offset, offset + count, *m_PendingFormat, m_Settings.defaultFont);
}

void CFxEdit::OnChar(char16_t c, bool shift)
{
    if (m_ReadOnly)
        return;
    if (c < 32 && !(c == u'\t' && m_TabsAllowed))
        return;
    if (m_Mode == ModeDigits && !IsDecimalDigit(c))
        return;
    if (c == u'\t' && (shift || m_Caret.line != m_Anchor.line))
    {
        IndentSelectedLines(shift);
        return;
    }
    InsertTypedCharacter(c);
}

void CFxEdit::InsertTypedCharacter(char16_t c)
{
    const bool onPending = CaretOnPendingPosition();
    DeleteSelection();
    const SFxCharPosition caret = ToCharPosition(m_Caret);
    m_Anchor = m_Caret;
    CRtfTextLine after = WithInsertedText(Line(caret.line), caret.offset, std::u16string_view(&c, 1));
    if (onPending)
        ApplyPendingFormat(after, caret.offset, 1);
    const SFxCharPosition moved{caret.line, caret.offset + 1};
    std::vector<CRtfTextLine> lines;
    lines.push_back(std::move(after));
    ReplaceLines(caret.line, 1, std::move(lines), moved, moved, Translate(u"EDITCTL_UNDO_TYPING"));
}

void CFxEdit::Enter()
{
    if (m_ReadOnly || m_Mode == ModeSingleLine || m_Mode == ModeDigits)
        return;
    DeleteSelection();
    const SFxCharPosition caret = ToCharPosition(m_Caret);
    m_Anchor = m_Caret;
    const COneLineInfo& line = Line(caret.line);
    std::vector<CRtfTextLine> lines;
    lines.push_back(CopyLinePart(line, 0, caret.offset));
    lines.push_back(CopyLinePart(line, caret.offset, line.Length()));
    const SFxCharPosition next{caret.line + 1, 0};
    ReplaceLines(caret.line, 1, std::move(lines), next, next, Translate(u"EDITCTL_UNDO_TYPING"));
    if (m_Settings.stampDateTimeForEachNewLine && m_Mode == ModeRich)
    {
        InsertText(DateStampText() + TimeStampText());
    }
}

// ---- insertions

void CFxEdit::InsertText(std::u16string_view text)
{
    if (m_ReadOnly || text.empty())
        return;
    DeleteSelection();
    const SFxCharPosition caret = ToCharPosition(m_Caret);
    m_Anchor = m_Caret;
    int32_t endOffset = 0;
    std::vector<CRtfTextLine> lines =
        PlainInsertion(Line(caret.line).Paragraph(), caret.offset, SplitForInsertion(text), endOffset);
    const SFxCharPosition end{caret.line + static_cast<int32_t>(lines.size()) - 1, endOffset};
    ReplaceLines(caret.line, 1, std::move(lines), end, end, Translate(u"EDITCTL_UNDO_TXT_INSERT"));
}

void CFxEdit::InsertDocument(const CRichTextDocument& document)
{
    if (m_ReadOnly || document.LineCount() == 0)
        return;
    if (m_Mode != ModeRich)
    {
        std::u16string text;
        for (size_t i = 0; i < document.LineCount(); ++i)
            text += (i > 0 ? u"\r\n" : u"") + document.Line(i).Text();
        InsertText(text);
        return;
    }
    DeleteSelection();
    const SFxCharPosition caret = ToCharPosition(m_Caret);
    m_Anchor = m_Caret;
    int32_t endOffset = 0;
    std::vector<CRtfTextLine> lines =
        RichInsertion(Line(caret.line).Paragraph(), caret.offset, document.Lines(), endOffset);
    const SFxCharPosition end{caret.line + static_cast<int32_t>(lines.size()) - 1, endOffset};
    ReplaceLines(caret.line, 1, std::move(lines), end, end, Translate(u"EDITCTL_UNDO_TXT_INSERT"));
}

void CFxEdit::InsertObject(CRtfObjectInfo object)
{
    if (m_ReadOnly || m_Mode != ModeRich)
        return;
    DeleteSelection();
    const SFxCharPosition caret = ToCharPosition(m_Caret);
    m_Anchor = m_Caret;
    CRtfTextLine after = Line(caret.line).Paragraph();
    const char16_t objectCharacter = CRtfObjectInfo::ObjectCharacter;
    InsertLineText(after, caret.offset, std::u16string_view(&objectCharacter, 1));
    object.SetPosition(caret.offset);
    after.AddObject(std::move(object));
    const SFxCharPosition moved{caret.line, caret.offset + 1};
    std::vector<CRtfTextLine> lines;
    lines.push_back(std::move(after));
    ReplaceLines(caret.line, 1, std::move(lines), moved, moved, Translate(u"EDITCTL_UNDO_TXT_INSERT"));
}

// ---- indenting

void CFxEdit::IndentSelectedLines(bool outdent)
{
    if (m_ReadOnly || m_Mode == ModeDigits)
        return;
    const SFxPosition start = SelectionStart();
    const SFxPosition end = SelectionEnd();
    int32_t lastLine = end.line;
    if (end.line > start.line && end.pos == 0 && !Line(end.line).Text().empty())
        --lastLine;
    const bool onPending = CaretOnPendingPosition();
    SFxCharPosition caret = ToCharPosition(m_Caret);
    SFxCharPosition anchor = ToCharPosition(m_Anchor);
    bool opened = false;
    for (int32_t i = start.line; i <= lastLine; ++i)
    {
        CRtfTextLine after = Line(i).Paragraph();
        if (outdent)
        {
            if (after.Text().empty() || after.Text().front() != u'\t')
                continue;
            RemoveLineText(after, 0, 1);
            if (caret.line == i && caret.offset > 0)
                --caret.offset;
            if (anchor.line == i && anchor.offset > 0)
                --anchor.offset;
        }
        else
        {
            InsertLineText(after, 0, u"\t");
            if (onPending)
                ApplyPendingFormat(after, 0, 1);
            // A caret at the line's start stays in front of the new tab while the anchor goes
            // behind it, so a selection that ended there still ends before the line's text.
            if (anchor.line == i)
                ++anchor.offset;
            if (caret.line == i && caret.offset > 0)
                ++caret.offset;
        }
        if (!opened)
            m_UndoRedo.BeginUndoQuant(Translate(u"EDITCTL_UNDO_TYPING"));
        opened = true;
        PutLineRecorded(i, std::move(after));
    }
    RelayoutRange(start.line, lastLine, false);
    SetCaretChars(caret, anchor);
    if (!opened)
        return;
    m_UndoRedo.EndUndoQuant();
    NotifyTextChanged(true);
    EnsureCaretVisible();
}

// ---- moving lines

void CFxEdit::MoveLine(bool up)
{
    const int32_t index = m_Anchor.line;
    if (m_ReadOnly || LineCount() < 2 || (up && index < 1) || (!up && index >= LineCount() - 1))
        return;
    const int32_t other = up ? index - 1 : index + 1;
    const SFxCharPosition moved{other, ToCharPosition(m_Anchor).offset};
    m_UndoRedo.BeginUndoQuant(Translate(u"EDITCTL_UNDO_REPLACEMENT"));
    CRtfTextLine moving = Line(index).Paragraph();
    CRtfTextLine neighbour = Line(other).Paragraph();
    PutLine(index, neighbour);
    m_UndoRedo.AddLineChanged(index, moving, neighbour);
    PutLine(other, moving);
    m_UndoRedo.AddLineChanged(other, std::move(neighbour), std::move(moving));
    RelayoutRange(std::min(index, other), std::max(index, other), false);
    SetCaretChars(moved, moved);
    m_UndoRedo.EndUndoQuant();
    NotifyTextChanged(true);
    EnsureCaretVisible();
}
