#include "Shared/FxEdit/FxEditUndoRedo.h"

#include "Shared/FxEdit/FxEdit.h"

#include <algorithm>
#include <stdexcept>

namespace
{
uint64_t BytesOf(const CRtfTextLine* line)
{
    return line == nullptr ? 0 : CFxEditUndoRedo::LineBytes(*line);
}

std::unique_ptr<CRtfTextLine> CopyOf(const CRtfTextLine& line)
{
    return std::make_unique<CRtfTextLine>(line);
}

std::unique_ptr<CRtfTextLine> Take(CRtfTextLine&& line)
{
    return std::make_unique<CRtfTextLine>(std::move(line));
}
} // namespace

uint64_t CFxEditUndoRedo::LineBytes(const CRtfTextLine& line)
{
    uint64_t bytes = sizeof(CRtfTextLine) + line.Text().size() * sizeof(char16_t) +
                     line.Blocks().size() * sizeof(CRtfTextBlockInfo);
    for (const CRtfObjectInfo& object : line.Objects())
    {
        bytes += sizeof(CRtfObjectInfo) + object.DataSize() + object.FileName().size() * sizeof(char16_t);
        if (object.Picture())
            bytes += object.Picture()->Packed().size();
    }
    return bytes;
}

void CFxEditUndoRedo::BeginUndoQuant(const std::u16string& label)
{
    ++m_Current;
    m_Open = true;
    // Quanta after the new one are the redo list, which any new change cuts.
    for (size_t i = static_cast<size_t>(m_Current); i < m_Quanta.size(); ++i)
        m_Bytes -= m_Quanta[i].bytes;
    m_Quanta.resize(static_cast<size_t>(m_Current) + 1);
    COneUndoQuant& quant = m_Quanta.back();
    quant = COneUndoQuant();
    quant.caretBefore = m_Owner.ToCharPosition(m_Owner.Caret());
    quant.anchorBefore = m_Owner.ToCharPosition(m_Owner.Anchor());
    quant.label = label;
}

void CFxEditUndoRedo::AddStep(int32_t line, int32_t kind, std::unique_ptr<CRtfTextLine> before,
                              std::unique_ptr<CRtfTextLine> after)
{
    if (!m_Open || m_Current < 0)
        throw std::invalid_argument("undo step recorded outside a quantum");
    COneUndoQuant& quant = m_Quanta[static_cast<size_t>(m_Current)];
    const uint64_t bytes = BytesOf(before.get()) + BytesOf(after.get()) + sizeof(SOneUndoStep);
    quant.steps.push_back(SOneUndoStep{line, kind, std::move(before), std::move(after)});
    quant.bytes += bytes;
    m_Bytes += bytes;
}

void CFxEditUndoRedo::AddLineChanged(int32_t line, CRtfTextLine before, CRtfTextLine after)
{
    AddStep(line, LineChanged, Take(std::move(before)), Take(std::move(after)));
}

void CFxEditUndoRedo::AddLineDeleted(int32_t line)
{
    AddStep(line, LineDeleted, CopyOf(m_Owner.Line(line).Paragraph()), nullptr);
}

void CFxEditUndoRedo::AddLineInserted(int32_t line, CRtfTextLine inserted)
{
    AddStep(line, LineInserted, nullptr, Take(std::move(inserted)));
}

void CFxEditUndoRedo::EndUndoQuant()
{
    if (m_Current < 0)
        return;
    COneUndoQuant& quant = m_Quanta[static_cast<size_t>(m_Current)];
    if (quant.steps.empty())
    {
        // An operation that changed nothing leaves no trace.
        m_Bytes -= quant.bytes;
        --m_Current;
        m_Quanta.resize(static_cast<size_t>(m_Current + 1));
    }
    else
    {
        quant.caretAfter = m_Owner.ToCharPosition(m_Owner.Caret());
        quant.anchorAfter = m_Owner.ToCharPosition(m_Owner.Anchor());
    }
    m_Open = false;
    DropOldestWhileOverLimit();
}

void CFxEditUndoRedo::DropOldestWhileOverLimit()
{
    size_t drop = 0;
    uint64_t bytes = m_Bytes;
    // The newest quantum always stays, so the last change can be undone whatever its size.
    while (bytes > m_MemoryLimit && static_cast<int32_t>(drop) < m_Current)
        bytes -= m_Quanta[drop++].bytes;
    if (drop == 0)
        return;
    m_Quanta.erase(m_Quanta.begin(), m_Quanta.begin() + static_cast<std::ptrdiff_t>(drop));
    m_Current -= static_cast<int32_t>(drop);
    m_Bytes = bytes;
    m_Dropped = true;
}

void CFxEditUndoRedo::ApplyStep(const SOneUndoStep& step, bool undo)
{
    const bool insertLine = undo ? step.kind == LineDeleted : step.kind == LineInserted;
    const bool removeLine = undo ? step.kind == LineInserted : step.kind == LineDeleted;
    if (insertLine)
        m_Owner.InsertLineAt(step.line, undo ? *step.before : *step.after);
    else if (removeLine)
        m_Owner.RemoveLineAt(step.line);
    else
        m_Owner.PutLine(step.line, undo ? *step.before : *step.after);
}

bool CFxEditUndoRedo::Undo()
{
    if (m_Current < 0 || m_Quanta[static_cast<size_t>(m_Current)].steps.empty())
        return false;
    const COneUndoQuant& quant = m_Quanta[static_cast<size_t>(m_Current)];
    int32_t lowest = quant.steps.front().line;
    int32_t highest = lowest;
    for (auto step = quant.steps.rbegin(); step != quant.steps.rend(); ++step)
    {
        lowest = std::min(lowest, step->line);
        highest = std::max(highest, step->line);
        ApplyStep(*step, true);
        if (step->kind == LineDeleted)
            ++highest;
    }
    highest = std::min(highest, m_Owner.LineCount() - 1);
    // The changed lines are laid out before the stored offsets become layout positions again.
    m_Owner.RelayoutRange(lowest, highest, true);
    m_Owner.SetCaretChars(quant.caretBefore, quant.anchorBefore);
    m_Owner.EnsureCaretVisible();
    --m_Current;
    m_Owner.NotifyTextChanged(m_Current >= 0 || m_Dropped);
    return true;
}

bool CFxEditUndoRedo::Redo()
{
    if (static_cast<size_t>(m_Current + 1) >= m_Quanta.size() ||
        m_Quanta[static_cast<size_t>(m_Current + 1)].steps.empty())
        return false;
    const COneUndoQuant& quant = m_Quanta[static_cast<size_t>(m_Current + 1)];
    int32_t lowest = quant.steps.front().line;
    int32_t highest = lowest;
    for (const SOneUndoStep& step : quant.steps)
    {
        lowest = std::min(lowest, step.line);
        highest = std::max(highest, step.line);
        ApplyStep(step, false);
        if (step.kind == LineInserted)
            ++highest;
    }
    highest = std::min(highest, m_Owner.LineCount() - 1);
    m_Owner.RelayoutRange(lowest, highest, true);
    m_Owner.SetCaretChars(quant.caretAfter, quant.anchorAfter);
    m_Owner.EnsureCaretVisible();
    ++m_Current;
    m_Owner.NotifyTextChanged(true);
    return true;
}

std::u16string CFxEditUndoRedo::MenuText(const char16_t* commandKey, const COneUndoQuant* quant) const
{
    return m_Owner.Translate(commandKey) + u" " +
           (quant != nullptr ? quant->label : m_Owner.Translate(u"EDITCTL_NO_UNDO"));
}

bool CFxEditUndoRedo::CanUndo(std::u16string* text) const
{
    const bool can = m_Current >= 0;
    if (text != nullptr)
        *text = MenuText(u"EDITCTL_UNDO", can ? &m_Quanta[static_cast<size_t>(m_Current)] : nullptr);
    return can;
}

bool CFxEditUndoRedo::CanRedo(std::u16string* text) const
{
    const bool can = static_cast<size_t>(m_Current + 1) < m_Quanta.size();
    if (text != nullptr)
        *text = MenuText(u"EDITCTL_REDO", can ? &m_Quanta[static_cast<size_t>(m_Current + 1)] : nullptr);
    return can;
}

void CFxEditUndoRedo::DropAll()
{
    Clear();
    m_Dropped = true;
}

void CFxEditUndoRedo::Clear()
{
    m_Quanta.clear();
    m_Current = -1;
    m_Open = false;
    m_Bytes = 0;
    m_Dropped = false;
}
