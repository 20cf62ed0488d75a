#include "Shared/FxEdit/FxEdit.h"

#include "Shared/FxEdit/LineEditing.h"
#include "Shared/FxEdit/LineLayout.h"
#include "Shared/LanguagesMgr/LanguageModule.h"
#include "Shared/Log/Log.h"

#include <algorithm>
#include <stdexcept>

CFxEdit::CFxEdit(IFxEditHost& host, int32_t mode, bool tabsAllowed, SFxEditSettings settings)
    : m_Host(host), m_Mode(mode), m_TabsAllowed(tabsAllowed), m_Settings(std::move(settings)),
      m_UndoRedo(*this)
{
    if (m_Host.LanguageModule() == nullptr)
        LogAssertion(u"Language pointer is null", u"Shared/FxEdit", __LINE__);
    m_UndoRedo.SetMemoryLimit(m_Settings.undoMemoryLimit);
    m_LayoutWidth = m_Host.TextAreaWidth();
    ResetLines({});
}

CFxEdit::~CFxEdit() = default;

// ---- content

void CFxEdit::SetDocument(const CRichTextDocument& document)
{
    ResetLines(document.Lines());
}

CRichTextDocument CFxEdit::GetDocument() const
{
    CRichTextDocument document;
    for (const auto& line : m_Lines)
        document.AppendLine(line->Paragraph());
    return document;
}

void CFxEdit::SetPlainText(std::u16string_view text)
{
    ResetLines(LinesFromText(text));
}

std::u16string CFxEdit::GetPlainText() const
{
    std::u16string text;
    for (size_t i = 0; i < m_Lines.size(); ++i)
    {
        if (i > 0)
            text += u"\r\n";
        text += m_Lines[i]->Text();
    }
    return text;
}

const COneLineInfo& CFxEdit::Line(int32_t index) const
{
    return *m_Lines[static_cast<size_t>(CheckedLineIndex(index))];
}

void CFxEdit::SetReadOnly(bool readOnly)
{
    if (m_ReadOnly == readOnly)
        return;
    m_ReadOnly = readOnly;
    Redraw();
}

void CFxEdit::SetSettings(const SFxEditSettings& settings)
{
    m_Settings = settings;
    m_UndoRedo.SetMemoryLimit(settings.undoMemoryLimit);
    OnResize();
}

std::u16string CFxEdit::Translate(std::u16string_view key) const
{
    const CLanguageModule* module = m_Host.LanguageModule();
    return module != nullptr ? module->GetString(key) : std::u16string(key);
}

// ---- lines

int32_t CFxEdit::CheckedLineIndex(int32_t index) const
{
    if (index < 0 || static_cast<size_t>(index) >= m_Lines.size())
        throw std::invalid_argument("editor line index out of range");
    return index;
}

CRtfTextLine CFxEdit::PutLine(int32_t index, CRtfTextLine line)
{
    COneLineInfo& target = MutableLine(index);
    if (target.IsLayoutValid())
        m_TotalRows -= target.RowCount();
    return target.ReplaceParagraph(std::move(line));
}

void CFxEdit::PutLineRecorded(int32_t index, CRtfTextLine line)
{
    CRtfTextLine after = line;
    CRtfTextLine before = PutLine(index, std::move(line));
    m_UndoRedo.AddLineChanged(index, std::move(before), std::move(after));
}

void CFxEdit::InsertLineAt(int32_t index, const CRtfTextLine& line)
{
    if (index < 0 || static_cast<size_t>(index) > m_Lines.size())
        throw std::invalid_argument("editor line index out of range");
    m_Lines.insert(m_Lines.begin() + index, std::make_unique<COneLineInfo>(line));
}

void CFxEdit::RemoveLineAt(int32_t index)
{
    const COneLineInfo& line = Line(index);
    if (line.IsLayoutValid())
        m_TotalRows -= line.RowCount();
    m_Lines.erase(m_Lines.begin() + index);
}

void CFxEdit::ResetLines(const std::vector<CRtfTextLine>& lines)
{
    m_Lines.clear();
    m_TotalRows = 0;
    for (const CRtfTextLine& line : lines)
        m_Lines.push_back(std::make_unique<COneLineInfo>(line));
    if (m_Lines.empty())
        m_Lines.push_back(std::make_unique<COneLineInfo>());
    m_UndoRedo.Clear();
    m_Caret = m_Anchor = m_PendingPosition = SFxPosition();
    m_PendingFormat.reset();
    m_TopLine = m_TopRow = 0;
    m_Modified = false;
    RelayoutRange(0, -1, true);
}

int32_t CFxEdit::LineTextWidthLimit() const
{
    // Single-line fields scroll sideways instead of wrapping.
    if (m_Mode == ModeSingleLine || m_Mode == ModeDigits)
        return 0;
    return m_LayoutWidth;
}

void CFxEdit::LayoutLine(int32_t index)
{
    COneLineInfo& line = MutableLine(index);
    if (line.IsLayoutValid())
        m_TotalRows -= line.RowCount();
    SLineLayoutContext context;
    context.host = &m_Host;
    context.width = LineTextWidthLimit();
    context.fixedRowHeight = m_Mode == ModeRich ? 0 : std::max(1, m_Host.FixedRowHeight());
    context.defaultFont = &m_Settings.defaultFont;
    context.tabStopWidth = std::max(1, m_Host.MeasureText(u" ", m_Settings.defaultFont).width *
                                           std::clamp(m_Settings.spacesPerTab, 1, 99));
    line.SetLayout(ComputeLineLayout(line, context, line.Hint() ? &*line.Hint() : nullptr));
    m_TotalRows += line.RowCount();
}

void CFxEdit::RelayoutRange(int32_t first, int32_t last, bool forceScrollRange)
{
    const int32_t count = LineCount();
    if (last < 0 || last >= count)
        last = count - 1;
    first = std::max(first, 0);
    const int32_t rowsBefore = m_TotalRows;
    for (int32_t i = first; i <= last; ++i)
        LayoutLine(i);
    if (forceScrollRange || rowsBefore != m_TotalRows)
    {
        m_TopLine = std::min(m_TopLine, count - 1);
        m_TopRow = std::min(m_TopRow, Line(m_TopLine).RowCount() - 1);
    }
    ClampPositions();
    Redraw();
}

void CFxEdit::OnResize()
{
    m_LayoutWidth = m_Host.TextAreaWidth();
    // Positions survive the new wrapping as character offsets.
    const SFxCharPosition caret = ToCharPosition(m_Caret);
    const SFxCharPosition anchor = ToCharPosition(m_Anchor);
    const SFxCharPosition pending = ToCharPosition(m_PendingPosition);
    for (auto& line : m_Lines)
        line->ClearLayout();
    m_TotalRows = 0;
    RelayoutRange(0, -1, true);
    SetCaretChars(caret, anchor);
    m_PendingPosition = FromCharPosition(pending);
    if (m_Mode == ModeAutoHeight)
        NotifyTextChanged(m_Modified);
}

int32_t CFxEdit::RowHeightOf(const COneLineInfo& line, int32_t row) const
{
    if (m_Mode != ModeRich)
        return std::max(1, m_Host.FixedRowHeight());
    return line.RowHeight(row);
}

int32_t CFxEdit::TotalHeight() const
{
    if (m_Mode != ModeRich)
        return m_TotalRows * std::max(1, m_Host.FixedRowHeight());
    int32_t height = 0;
    for (const auto& line : m_Lines)
        height += line->Height();
    return height;
}

// ---- positions

SFxPosition CFxEdit::ClampPosition(SFxPosition position) const
{
    position.line = std::clamp(position.line, 0, LineCount() - 1);
    position.pos = std::clamp(position.pos, 0, Line(position.line).LastLayoutPosition());
    return position;
}

void CFxEdit::ClampPositions()
{
    m_Caret = ClampPosition(m_Caret);
    m_Anchor = ClampPosition(m_Anchor);
}

SFxCharPosition CFxEdit::ToCharPosition(SFxPosition position) const
{
    position = ClampPosition(position);
    return {position.line, Line(position.line).LayoutToOffset(position.pos)};
}

SFxPosition CFxEdit::FromCharPosition(SFxCharPosition position) const
{
    const int32_t line = std::clamp(position.line, 0, LineCount() - 1);
    return {line, Line(line).OffsetToLayout(position.offset)};
}

void CFxEdit::SetCaretChars(SFxCharPosition caret, SFxCharPosition anchor)
{
    m_Caret = FromCharPosition(caret);
    m_Anchor = FromCharPosition(anchor);
}

void CFxEdit::SetSelection(SFxPosition anchor, SFxPosition caret)
{
    m_Anchor = ClampPosition(anchor);
    m_Caret = ClampPosition(caret);
    EnsureCaretVisible();
    Redraw();
}

void CFxEdit::SelectAll()
{
    const int32_t last = LineCount() - 1;
    m_Caret = {0, 0};
    m_Anchor = {last, Line(last).LastLayoutPosition()};
    Redraw();
}

void CFxEdit::SelectAnchorLine()
{
    m_Caret = {m_Anchor.line, 0};
    m_Anchor = {m_Anchor.line, Line(m_Anchor.line).LastLayoutPosition()};
    Redraw();
}

CRichTextDocument CFxEdit::GetSelection() const
{
    CRichTextDocument document;
    const SFxCharPosition from = ToCharPosition(SelectionStart());
    const SFxCharPosition to = ToCharPosition(SelectionEnd());
    for (int32_t i = from.line; i <= to.line; ++i)
    {
        const COneLineInfo& line = Line(i);
        const int32_t start = i == from.line ? from.offset : 0;
        const int32_t end = i == to.line ? to.offset : line.Length();
        if (start == 0 && end == line.Length())
            document.AppendLine(line.Paragraph());
        else
            document.AppendLine(CopyLinePart(line, start, end));
    }
    return document;
}

std::u16string CFxEdit::GetSelectedPlainText() const
{
    const SFxCharPosition from = ToCharPosition(SelectionStart());
    const SFxCharPosition to = ToCharPosition(SelectionEnd());
    std::u16string text;
    for (int32_t i = from.line; i <= to.line; ++i)
    {
        const std::u16string& lineText = Line(i).Text();
        const int32_t start = i == from.line ? from.offset : 0;
        const int32_t end = i == to.line ? to.offset : static_cast<int32_t>(lineText.size());
        if (i > from.line)
            text += u"\r\n";
        text.append(lineText, static_cast<size_t>(start), static_cast<size_t>(end - start));
    }
    return text;
}

// ---- notification and undo

void CFxEdit::NotifyTextChanged(bool modified)
{
    m_Modified = modified;
    m_Host.PostOwnerMessage(FxEditTextChangedMessage, modified ? 1 : 0);
    if (m_Mode != ModeAutoHeight)
        return;
    const int32_t needed = TotalHeight();
    if (needed != m_LastNeededHeight && needed != m_Host.TextAreaHeight())
        m_Host.PostOwnerMessage(FxEditHeightChangedMessage, needed);
    m_LastNeededHeight = needed;
}

bool CFxEdit::Undo()
{
    if (m_ReadOnly)
        return false;
    return m_UndoRedo.Undo();
}

bool CFxEdit::Redo()
{
    if (m_ReadOnly)
        return false;
    return m_UndoRedo.Redo();
}

bool CFxEdit::CanUndo(std::u16string* text) const
{
    return m_UndoRedo.CanUndo(text) && !m_ReadOnly;
}

bool CFxEdit::CanRedo(std::u16string* text) const
{
    return m_UndoRedo.CanRedo(text) && !m_ReadOnly;
}
