// The editor's mouse: clicks, drags and double and triple clicks select by characters, words
// and lines; Ctrl+click follows links; the wheel and the scroll bar scroll by rows; the
// selection can be dragged out and text and files dropped in; the right button opens the
// context menu.
#include "Gui/FxEditWidget.h"
#include "Gui/GuiClipboard.h"
#include "Gui/QtText.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDesktopServices>
#include <QDrag>
#include <QMenu>
#include <QMetaMethod>
#include <QMimeData>
#include <QScrollBar>
#include <QStyleHints>
#include <QUrl>
#include <QWheelEvent>

#include <algorithm>

namespace
{
bool IsObjectAt(const CFxEdit& edit, SFxPosition position)
{
    const SFxCharPosition at = edit.ToCharPosition(position);
    const COneLineInfo& line = edit.Line(at.line);
    return at.offset < line.Length() &&
           line.Text()[static_cast<size_t>(at.offset)] == CRtfObjectInfo::ObjectCharacter &&
           line.FindObject(at.offset) != nullptr;
}
} // namespace

SFxPosition CFxEditWidget::PositionAt(const QPoint& point) const
{
    if (m_Edit.LineCount() == 0)
        return {};
    return m_Edit.HitTest(point.x() - Margin, std::max(0, point.y() - Margin));
}

// A click on a picture or an attachment selects it, so that the context menu and the keys act
// on it. `position` is the place a click put the caret, before or after the object.
void CFxEditWidget::SelectObjectAt(SFxPosition position)
{
    m_Edit.SetSelection(m_Edit.FromCharPosition({m_Edit.ToCharPosition(position).line,
                                                 m_Edit.ToCharPosition(position).offset + 1}),
                        position);
}

void CFxEditWidget::mousePressEvent(QMouseEvent* event)
{
    if (m_Edit.LineCount() == 0 || (event->button() != Qt::LeftButton && event->button() != Qt::RightButton))
        return QWidget::mousePressEvent(event);
    const QPoint point = event->position().toPoint();
    m_LastMouse = point;
    SFxPosition at = PositionAt(point);
    if (event->button() == Qt::RightButton)
    {
        // The context menu acts on what was clicked: the caret moves there unless the click was
        // inside the selection.
        if (at < m_Edit.SelectionStart() || at > m_Edit.SelectionEnd() || m_Edit.IsSelectionEmpty())
        {
            int32_t line = 0;
            const int32_t offset = CharacterAt(point, line);
            if (offset >= 0 && IsObjectAt(m_Edit, m_Edit.FromCharPosition({line, offset})))
                SelectObjectAt(m_Edit.FromCharPosition({line, offset}));
            else
                m_Edit.SetCaret(at);
            RestartCaretBlink();
            update();
        }
        return;
    }

    const bool shift = event->modifiers().testFlag(Qt::ShiftModifier);
    const bool tripleClick = m_SinceDoubleClick.isValid() &&
                             m_SinceDoubleClick.elapsed() < QApplication::doubleClickInterval() &&
                             (point - m_DoubleClickAt).manhattanLength() < QApplication::startDragDistance();
    m_SinceDoubleClick.invalidate();
    if (tripleClick)
    {
        m_Edit.SetCaret(at);
        m_Edit.SelectAnchorLine();
        m_ClickUnit = EClickUnit::Line;
        m_GestureStart = m_Edit.SelectionStart();
        m_GestureEnd = m_Edit.SelectionEnd();
        m_Selecting = true;
        update();
        return;
    }
    if (event->modifiers().testFlag(Qt::ControlModifier))
    {
        if (const std::u16string link = LinkAt(point); !link.empty())
        {
            OpenLink(link);
            return;
        }
    }
    if (!shift && !m_Edit.IsSelectionEmpty() && at >= m_Edit.SelectionStart() && at <= m_Edit.SelectionEnd())
    {
        // Perhaps the start of dragging the selection; a release without moving places the caret.
        m_DragFrom = point;
        return;
    }
    int32_t line = 0;
    const int32_t offset = CharacterAt(point, line);
    m_ClickUnit = EClickUnit::Character;
    if (!shift && offset >= 0 && IsObjectAt(m_Edit, m_Edit.FromCharPosition({line, offset})))
        SelectObjectAt(m_Edit.FromCharPosition({line, offset}));
    else
        m_Edit.SetSelection(shift ? m_Edit.Anchor() : at, at);
    m_GestureStart = m_GestureEnd = m_Edit.Anchor();
    m_Selecting = true;
    RestartCaretBlink();
    update();
}

void CFxEditWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || m_Edit.LineCount() == 0)
        return QWidget::mouseDoubleClickEvent(event);
    const QPoint point = event->position().toPoint();
    int32_t line = 0;
    const int32_t offset = CharacterAt(point, line);
    if (offset >= 0 && IsObjectAt(m_Edit, m_Edit.FromCharPosition({line, offset})))
    {
        const SFxPosition object = m_Edit.FromCharPosition({line, offset});
        if (const CRtfObjectInfo* info = m_Edit.Line(line).FindObject(offset); info && info->IsAttachment())
            m_Edit.OpenAttachment(object);
        return;
    }
    m_Edit.SetCaret(PositionAt(point));
    m_Edit.SelectWordAtCaret();
    m_ClickUnit = EClickUnit::Word;
    m_GestureStart = m_Edit.SelectionStart();
    m_GestureEnd = m_Edit.SelectionEnd();
    m_Selecting = true;
    m_DragFrom.reset();
    m_SinceDoubleClick.start();
    m_DoubleClickAt = point;
    RestartCaretBlink();
    update();
}

void CFxEditWidget::ExtendMouseSelection(const QPoint& point)
{
    const SFxPosition at = PositionAt(point);
    switch (m_ClickUnit)
    {
    case EClickUnit::Character:
        m_Edit.SetSelection(m_GestureStart, at);
        break;
    case EClickUnit::Word:
    {
        m_Edit.SetCaret(at);
        m_Edit.SelectWordAtCaret();
        const SFxPosition wordStart = m_Edit.SelectionStart();
        const SFxPosition wordEnd = m_Edit.SelectionEnd();
        if (wordStart < m_GestureStart)
            m_Edit.SetSelection(m_GestureEnd, wordStart);
        else
            m_Edit.SetSelection(m_GestureStart, std::max(wordEnd, m_GestureEnd));
        break;
    }
    case EClickUnit::Line:
        if (at.line < m_GestureStart.line)
            m_Edit.SetSelection(m_GestureEnd, {at.line, 0});
        else
            m_Edit.SetSelection(
                m_GestureStart,
                std::max(m_GestureEnd, SFxPosition{at.line, m_Edit.Line(at.line).LastLayoutPosition()}));
        break;
    }
    m_Edit.EnsureCaretVisible();
    SyncScrollBar();
    update();
}

void CFxEditWidget::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint point = event->position().toPoint();
    m_LastMouse = point;
    if (m_Edit.LineCount() == 0)
        return QWidget::mouseMoveEvent(event);
    if (m_DragFrom && (event->buttons() & Qt::LeftButton))
    {
        if ((point - *m_DragFrom).manhattanLength() < QApplication::startDragDistance())
            return;
        m_DragFrom.reset();
        auto* drag = new QDrag(this);
        drag->setMimeData(MakeRichTextMimeData(m_Edit.GetSelection(), m_Edit.GetSelectedPlainText(),
                                               m_Edit.Settings().defaultFont)
                              .release());
        m_DraggingOut = true;
        const Qt::DropAction done = drag->exec(
            m_Edit.IsReadOnly() ? Qt::CopyAction : Qt::CopyAction | Qt::MoveAction, Qt::MoveAction);
        // A move into another window takes the text away from here; a move within this editor
        // was made by the drop itself, which cleared the flag.
        if (done == Qt::MoveAction && m_DraggingOut && !m_Edit.IsReadOnly())
        {
            m_Edit.DeleteSelection();
            AfterEditing();
        }
        m_DraggingOut = false;
        return;
    }
    if (m_Selecting && (event->buttons() & Qt::LeftButton))
    {
        ExtendMouseSelection(point);
        // Outside the text area the view keeps scrolling towards the mouse while it stays there.
        if (point.y() < 0 || point.y() >= height())
        {
            if (!m_AutoScroll.isActive())
                m_AutoScroll.start();
        }
        else
            m_AutoScroll.stop();
        return;
    }
    const bool overLink = event->modifiers().testFlag(Qt::ControlModifier) && !LinkAt(point).empty();
    setCursor(overLink ? Qt::PointingHandCursor : Qt::IBeamCursor);
}

void CFxEditWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (m_DragFrom && event->button() == Qt::LeftButton)
    {
        m_Edit.SetCaret(PositionAt(event->position().toPoint()));
        RestartCaretBlink();
        update();
    }
    m_DragFrom.reset();
    m_Selecting = false;
    m_AutoScroll.stop();
    QWidget::mouseReleaseEvent(event);
}

void CFxEditWidget::AutoScrollStep()
{
    if (!m_Selecting)
        return m_AutoScroll.stop();
    ScrollByRows(m_LastMouse.y() < 0 ? -1 : 1);
    ExtendMouseSelection(QPoint(m_LastMouse.x(), std::clamp(m_LastMouse.y(), 0, height() - 1)));
}

void CFxEditWidget::OpenLink(const std::u16string& link)
{
    QString address = ToQString(link);
    // The prefixes without a scheme name the usual one.
    if (address.startsWith(QLatin1String("www."), Qt::CaseInsensitive))
        address.prepend(QLatin1String("http://"));
    else if (address.startsWith(QLatin1String("ftp."), Qt::CaseInsensitive))
        address.prepend(QLatin1String("ftp://"));
    if (isSignalConnected(QMetaMethod::fromSignal(&CFxEditWidget::LinkActivated)))
        emit LinkActivated(address);
    else
        QDesktopServices::openUrl(QUrl(address));
}

// ---- scrolling

int32_t CFxEditWidget::AbsoluteTopRow() const
{
    int32_t rows = 0;
    for (int32_t line = 0; line < m_Edit.TopLine(); ++line)
        rows += m_Edit.Line(line).RowCount();
    return rows + m_Edit.TopRow();
}

void CFxEditWidget::ScrollToAbsoluteRow(int32_t target)
{
    if (m_Edit.LineCount() == 0)
        return;
    int32_t line = 0;
    while (line + 1 < m_Edit.LineCount() && target >= m_Edit.Line(line).RowCount())
        target -= m_Edit.Line(line++).RowCount();
    m_Edit.ScrollToRow(line, target);
    update();
}

void CFxEditWidget::ScrollByRows(int32_t rows)
{
    if (m_Edit.LineCount() == 0)
        return;
    m_VScroll->setValue(std::clamp(AbsoluteTopRow() + rows, 0, m_VScroll->maximum()));
}

void CFxEditWidget::SyncScrollBar()
{
    if (m_Edit.LineCount() == 0)
    {
        m_VScroll->setRange(0, 0);
        return;
    }
    // The last top row that still fills the view: walk up from the end by one view's height.
    int32_t line = m_Edit.LineCount() - 1;
    int32_t row = m_Edit.Line(line).RowCount() - 1;
    int32_t height = m_Edit.Line(line).RowHeight(row);
    int32_t fromEnd = 0;
    const int32_t area = TextAreaHeight();
    while (true)
    {
        int32_t upLine = line;
        int32_t upRow = row - 1;
        if (upRow < 0)
        {
            if (--upLine < 0)
                break;
            upRow = m_Edit.Line(upLine).RowCount() - 1;
        }
        const int32_t upHeight = m_Edit.Line(upLine).RowHeight(upRow);
        if (height + upHeight > area)
            break;
        height += upHeight;
        line = upLine;
        row = upRow;
        ++fromEnd;
    }
    const int32_t total = std::max(1, m_Edit.TotalRows());
    const int32_t maximum = std::max(0, total - 1 - fromEnd);
    const QSignalBlocker block(m_VScroll);
    m_VScroll->setRange(0, maximum);
    m_VScroll->setPageStep(fromEnd + 1);
    m_VScroll->setSingleStep(1);
    m_VScroll->setValue(AbsoluteTopRow());
}

void CFxEditWidget::wheelEvent(QWheelEvent* event)
{
    // A notch scrolls the system's number of rows; finer devices add up until a row is due.
    const int unit = std::max(1, 120 / std::max(1, QApplication::wheelScrollLines()));
    m_WheelRemainder += event->angleDelta().y();
    const int rows = m_WheelRemainder / unit;
    m_WheelRemainder -= rows * unit;
    if (rows != 0)
        ScrollByRows(-rows);
    event->accept();
}

// ---- context menu

void CFxEditWidget::contextMenuEvent(QContextMenuEvent* event)
{
    if (m_Edit.LineCount() == 0)
        return;
    if (event->reason() != QContextMenuEvent::Mouse)
        m_Edit.EnsureCaretVisible();
    const std::unique_ptr<QMenu> menu = CreateContextMenu();
    menu->exec(event->reason() == QContextMenuEvent::Mouse ? event->globalPos()
                                                           : mapToGlobal(CaretRect().bottomLeft()));
    event->accept();
}

// ---- drag and drop

void CFxEditWidget::dragEnterEvent(QDragEnterEvent* event)
{
    if (m_Edit.IsReadOnly() || m_Edit.LineCount() == 0)
        return event->ignore();
    const QMimeData* mime = event->mimeData();
    if (!mime->hasText() && !mime->hasUrls() && !mime->hasImage() && !mime->hasHtml() &&
        mime->data(ToQString(ClipboardFormatName(EClipboardFormat::KorimsenRichText))).isEmpty())
        return event->ignore();
    event->acceptProposedAction();
}

void CFxEditWidget::dragMoveEvent(QDragMoveEvent* event)
{
    const QPoint point = event->position().toPoint();
    const SFxPosition at = PositionAt(point);
    // Dropping the selection onto itself does nothing.
    if (event->source() == this && !m_Edit.IsSelectionEmpty() && at > m_Edit.SelectionStart() &&
        at < m_Edit.SelectionEnd())
    {
        m_DropCaret.reset();
        event->ignore();
    }
    else
    {
        m_DropCaret = at;
        event->acceptProposedAction();
    }
    update();
}

void CFxEditWidget::dragLeaveEvent(QDragLeaveEvent*)
{
    m_DropCaret.reset();
    update();
}

void CFxEditWidget::dropEvent(QDropEvent* event)
{
    m_DropCaret.reset();
    const SFxPosition at = PositionAt(event->position().toPoint());
    const bool moveOwn = event->source() == this && event->dropAction() == Qt::MoveAction;
    if (DropMimeData(*event->mimeData(), at, moveOwn))
    {
        if (moveOwn)
            m_DraggingOut = false;
        event->acceptProposedAction();
    }
    else
        event->ignore();
    setFocus();
    update();
}

bool CFxEditWidget::MoveSelectionTo(SFxPosition at)
{
    if (m_Edit.IsReadOnly() || m_Edit.IsSelectionEmpty() ||
        (at > m_Edit.SelectionStart() && at < m_Edit.SelectionEnd()))
        return false;
    const CRichTextDocument moved = m_Edit.GetSelection();
    const SFxCharPosition start = m_Edit.ToCharPosition(m_Edit.SelectionStart());
    const SFxCharPosition end = m_Edit.ToCharPosition(m_Edit.SelectionEnd());
    SFxCharPosition target = m_Edit.ToCharPosition(at);
    // Taking the selection out first moves a target behind it by what it held.
    if (target.line > end.line || (target.line == end.line && target.offset >= end.offset))
        target = target.line == end.line
                     ? SFxCharPosition{start.line, start.offset + target.offset - end.offset}
                     : SFxCharPosition{target.line - (end.line - start.line), target.offset};
    m_Edit.DeleteSelection();
    m_Edit.SetCaret(m_Edit.FromCharPosition(target));
    m_Edit.InsertDocument(moved);
    m_Edit.SetSelection(m_Edit.FromCharPosition(target), m_Edit.Caret());
    AfterEditing();
    return true;
}

bool CFxEditWidget::DropMimeData(const QMimeData& mime, SFxPosition at, bool moveOwnSelection)
{
    if (m_Edit.IsReadOnly())
        return false;
    if (moveOwnSelection && !m_Edit.IsSelectionEmpty())
        return MoveSelectionTo(at);
    m_Edit.SetCaret(at);
    return InsertMimeData(mime);
}
