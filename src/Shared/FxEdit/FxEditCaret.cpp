// Keyboard dispatch, caret movement, scrolling and hit testing.
#include "Shared/FxEdit/FxEdit.h"
#include "Shared/FxEdit/LineLayout.h"

#include <algorithm>

namespace
{
bool IsWordCharacter(char16_t c)
{
    return !IsWrapOpportunity(c);
}
} // namespace

// ---- keyboard

void CFxEdit::OnKeyDown(EFxKey key, int32_t platformKey, bool ctrl, bool shift, bool alt)
{
    const int32_t action = m_Host.TranslateKey(key, platformKey, ctrl, shift, alt);
    if (action != 0 && action != ActionOwnKey)
    {
        DoAction(action);
        return;
    }
    HandleOwnKey(key, ctrl, shift);
}

bool CFxEdit::HandleOwnKey(EFxKey key, bool ctrl, bool shift)
{
    switch (key)
    {
    case EFxKey::Home:
    case EFxKey::End:
    case EFxKey::Left:
    case EFxKey::Right:
    case EFxKey::Up:
    case EFxKey::Down:
    case EFxKey::PageUp:
    case EFxKey::PageDown:
        MoveCaret(key, ctrl, shift);
        return true;
    case EFxKey::Tab:
        if (!m_TabsAllowed)
            return false;
        OnChar(u'\t', shift);
        return true;
    case EFxKey::Enter:
        Enter();
        return true;
    case EFxKey::Backspace:
        Backspace();
        return true;
    case EFxKey::Delete:
        Delete();
        return true;
    case EFxKey::Other:
        break;
    }
    return false;
}

bool CFxEdit::DoAction(int32_t action)
{
    switch (action)
    {
    case ActionCut:
        return Cut();
    case ActionCopy:
        return Copy();
    case ActionPaste:
    case ActionPasteOther:
        return Paste();
    case ActionFindNext:
        FindNextCommand();
        return true;
    case ActionFind:
        RunFindCommand();
        return true;
    case ActionReplace:
        RunReplaceCommand();
        return true;
    case ActionSelectWord:
        SelectWordAtCaret();
        return true;
    case ActionUndo:
        return Undo();
    case ActionRedo:
        return Redo();
    case ActionSelectAll:
        SelectAll();
        return true;
    case ActionSelectLine:
        SelectAnchorLine();
        return true;
    case ActionDateStamp:
        InsertDateStamp();
        return true;
    case ActionTimeStamp:
        InsertTimeStamp();
        return true;
    case ActionLineUp:
    case ActionLineDown:
        MoveLine(action == ActionLineUp);
        return true;
    case ActionUpperCase:
        ChangeCase(ECase::Upper);
        return true;
    case ActionLowerCase:
        ChangeCase(ECase::Lower);
        return true;
    case ActionMixedCase:
        ChangeCase(ECase::Mixed);
        return true;
    case ActionDeleteLine:
        DeleteCaretLine();
        return true;
    default:
        return false;
    }
}

// ---- caret movement

SFxPosition CFxEdit::WordLeft(SFxPosition position) const
{
    SFxCharPosition at = ToCharPosition(position);
    if (at.offset == 0)
        return at.line > 0 ? SFxPosition{at.line - 1, Line(at.line - 1).LastLayoutPosition()} : position;
    const std::u16string& text = Line(at.line).Text();
    while (at.offset > 0 && !IsWordCharacter(text[static_cast<size_t>(at.offset - 1)]))
        --at.offset;
    while (at.offset > 0 && IsWordCharacter(text[static_cast<size_t>(at.offset - 1)]))
        --at.offset;
    return FromCharPosition(at);
}

SFxPosition CFxEdit::WordRight(SFxPosition position) const
{
    SFxCharPosition at = ToCharPosition(position);
    const std::u16string& text = Line(at.line).Text();
    const auto length = static_cast<int32_t>(text.size());
    if (at.offset >= length)
        return at.line + 1 < LineCount() ? SFxPosition{at.line + 1, 0} : position;
    while (at.offset < length && IsWordCharacter(text[static_cast<size_t>(at.offset)]))
        ++at.offset;
    while (at.offset < length && !IsWordCharacter(text[static_cast<size_t>(at.offset)]))
        ++at.offset;
    return FromCharPosition(at);
}

int32_t CFxEdit::XOfPosition(int32_t lineIndex, int32_t position) const
{
    const COneLineInfo& line = Line(lineIndex);
    const int32_t row = line.RowOfLayoutPosition(position);
    SLineLayoutContext context;
    context.host = &m_Host;
    context.defaultFont = &m_Settings.defaultFont;
    context.tabStopWidth = std::max(1, m_Host.MeasureText(u" ", m_Settings.defaultFont).width *
                                           std::clamp(m_Settings.spacesPerTab, 1, 99));
    const int32_t offset =
        std::min(line.RowStart(row) + position - line.RowLayoutStart(row), line.RowEnd(row));
    const auto& indents = line.Layout().rowIndents;
    const int32_t indent = static_cast<size_t>(row) < indents.size() ? indents[static_cast<size_t>(row)] : 0;
    return indent + RowTextWidth(line, context, line.RowStart(row), offset);
}

int32_t CFxEdit::PositionAtX(int32_t lineIndex, int32_t row, int32_t x) const
{
    const COneLineInfo& line = Line(lineIndex);
    int32_t low = line.RowLayoutStart(row);
    int32_t high = line.RowLayoutEnd(row);
    // The last place whose x does not pass the point, then the nearer of it and the next.
    while (low < high)
    {
        const int32_t mid = (low + high + 1) / 2;
        if (XOfPosition(lineIndex, mid) <= x)
            low = mid;
        else
            high = mid - 1;
    }
    if (low < line.RowLayoutEnd(row))
    {
        const int32_t left = XOfPosition(lineIndex, low);
        const int32_t right = XOfPosition(lineIndex, low + 1);
        if (right - x < x - left)
            ++low;
    }
    return low;
}

int32_t CFxEdit::CaretX() const
{
    return XOfPosition(m_Caret.line, m_Caret.pos);
}

SFxPosition CFxEdit::RowUpDown(SFxPosition position, int32_t rows) const
{
    const int32_t x = XOfPosition(position.line, position.pos);
    int32_t line = position.line;
    int32_t row = Line(line).RowOfLayoutPosition(position.pos);
    for (; rows < 0; ++rows)
    {
        if (row > 0)
            --row;
        else if (line > 0)
            row = Line(--line).RowCount() - 1;
        else
            return {0, 0};
    }
    for (; rows > 0; --rows)
    {
        if (row + 1 < Line(line).RowCount())
            ++row;
        else if (line + 1 < LineCount())
        {
            ++line;
            row = 0;
        }
        else
            return {line, Line(line).LastLayoutPosition()};
    }
    return {line, PositionAtX(line, row, x)};
}

int32_t CFxEdit::PageRows() const
{
    const int32_t rowHeight = std::max(1, RowHeightOf(Line(m_Caret.line), 0));
    return std::max(1, m_Host.TextAreaHeight() / rowHeight - 1);
}

void CFxEdit::MoveCaret(EFxKey key, bool ctrl, bool extend)
{
    SFxPosition caret = m_Caret;
    const COneLineInfo& line = Line(caret.line);
    const int32_t row = line.RowOfLayoutPosition(caret.pos);
    switch (key)
    {
    case EFxKey::Home:
        caret = ctrl ? SFxPosition{0, 0} : SFxPosition{caret.line, line.RowLayoutStart(row)};
        break;
    case EFxKey::End:
        caret = ctrl ? SFxPosition{LineCount() - 1, Line(LineCount() - 1).LastLayoutPosition()}
                     : SFxPosition{caret.line, line.RowLayoutEnd(row)};
        break;
    case EFxKey::Left:
        if (ctrl)
            caret = WordLeft(caret);
        else if (!extend && !IsSelectionEmpty())
            caret = SelectionStart();
        else if (const SFxCharPosition at = ToCharPosition(caret); at.offset > 0)
            caret = FromCharPosition({at.line, at.offset - 1});
        else if (caret.line > 0)
            caret = {caret.line - 1, Line(caret.line - 1).LastLayoutPosition()};
        break;
    case EFxKey::Right:
        if (ctrl)
            caret = WordRight(caret);
        else if (!extend && !IsSelectionEmpty())
            caret = SelectionEnd();
        else if (const SFxCharPosition at = ToCharPosition(caret); at.offset < line.Length())
            caret = FromCharPosition({at.line, at.offset + 1});
        else if (caret.line + 1 < LineCount())
            caret = {caret.line + 1, 0};
        break;
    case EFxKey::Up:
    case EFxKey::Down:
        caret = RowUpDown(caret, key == EFxKey::Up ? -1 : 1);
        break;
    case EFxKey::PageUp:
    case EFxKey::PageDown:
        caret = RowUpDown(caret, key == EFxKey::PageUp ? -PageRows() : PageRows());
        break;
    default:
        return;
    }
    m_Caret = ClampPosition(caret);
    if (!extend)
        m_Anchor = m_Caret;
    EnsureCaretVisible();
    Redraw();
}

void CFxEdit::SelectWordAtCaret()
{
    const SFxCharPosition at = ToCharPosition(m_Caret);
    const std::u16string& text = Line(at.line).Text();
    int32_t from = at.offset;
    int32_t to = at.offset;
    while (from > 0 && IsWordCharacter(text[static_cast<size_t>(from - 1)]))
        --from;
    while (to < static_cast<int32_t>(text.size()) && IsWordCharacter(text[static_cast<size_t>(to)]))
        ++to;
    SetCaretChars({at.line, to}, {at.line, from});
    Redraw();
}

// ---- view

void CFxEdit::ScrollToRow(int32_t line, int32_t row)
{
    m_TopLine = std::clamp(line, 0, LineCount() - 1);
    m_TopRow = std::clamp(row, 0, Line(m_TopLine).RowCount() - 1);
    Redraw();
}

void CFxEdit::EnsureCaretVisible()
{
    const int32_t caretRow = Line(m_Caret.line).RowOfLayoutPosition(m_Caret.pos);
    if (m_Caret.line < m_TopLine || (m_Caret.line == m_TopLine && caretRow < m_TopRow))
    {
        ScrollToRow(m_Caret.line, caretRow);
        return;
    }
    // Walk down from the top only as far as one screen; a caret further down scrolls the view.
    const int32_t areaHeight = std::max(1, m_Host.TextAreaHeight());
    int32_t line = m_TopLine;
    int32_t row = m_TopRow;
    int32_t bottom = 0;
    while (bottom <= areaHeight)
    {
        bottom += RowHeightOf(Line(line), row);
        if (line == m_Caret.line && row == caretRow)
        {
            if (bottom > areaHeight)
                ScrollCaretRowToBottom(caretRow, areaHeight);
            return;
        }
        if (++row >= Line(line).RowCount())
        {
            if (++line >= LineCount())
                return;
            row = 0;
        }
    }
    ScrollCaretRowToBottom(caretRow, areaHeight);
}

void CFxEdit::ScrollCaretRowToBottom(int32_t caretRow, int32_t areaHeight)
{
    int32_t line = m_Caret.line;
    int32_t row = caretRow;
    int32_t height = RowHeightOf(Line(line), row);
    while (true)
    {
        int32_t previousLine = line;
        int32_t previousRow = row - 1;
        if (previousRow < 0)
        {
            if (--previousLine < 0)
                break;
            previousRow = Line(previousLine).RowCount() - 1;
        }
        const int32_t previousHeight = RowHeightOf(Line(previousLine), previousRow);
        if (height + previousHeight > areaHeight)
            break;
        height += previousHeight;
        line = previousLine;
        row = previousRow;
    }
    ScrollToRow(line, row);
}

SFxPosition CFxEdit::HitTest(int32_t x, int32_t y) const
{
    int32_t line = m_TopLine;
    int32_t row = m_TopRow;
    int32_t top = 0;
    while (true)
    {
        const int32_t height = RowHeightOf(Line(line), row);
        const bool last = row + 1 >= Line(line).RowCount() && line + 1 >= LineCount();
        if (y < top + height || last)
            break;
        top += height;
        if (++row >= Line(line).RowCount())
        {
            ++line;
            row = 0;
        }
    }
    return {line, PositionAtX(line, row, x)};
}
