#include "Gui/FxEditWidget.h"

#include "Gui/QtText.h"
#include "Shared/Base/File.h"
#include "Shared/Base/OleDate.h"
#include "Shared/FxEdit/LineLayout.h"

#include <QApplication>
#include <QClipboard>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QKeyEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QUrl>

#include <algorithm>

namespace
{
// The clipboard format name under which the editor's own rich text travels.
const QString kRichTextMime = QStringLiteral("Korimsen Rich Text Format");

QColor FromColourRef(RichTextColour colour)
{
    return QColor(static_cast<int>(colour & 0xFF), static_cast<int>((colour >> 8) & 0xFF),
                  static_cast<int>((colour >> 16) & 0xFF));
}

bool IsSetColour(const std::optional<RichTextColour>& colour)
{
    return colour.has_value() && *colour != DefaultRichTextColour;
}

EFxKey ToFxKey(int key)
{
    switch (key)
    {
    case Qt::Key_Home:
        return EFxKey::Home;
    case Qt::Key_End:
        return EFxKey::End;
    case Qt::Key_Left:
        return EFxKey::Left;
    case Qt::Key_Right:
        return EFxKey::Right;
    case Qt::Key_Up:
        return EFxKey::Up;
    case Qt::Key_Down:
        return EFxKey::Down;
    case Qt::Key_PageUp:
        return EFxKey::PageUp;
    case Qt::Key_PageDown:
        return EFxKey::PageDown;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return EFxKey::Tab;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return EFxKey::Enter;
    case Qt::Key_Backspace:
        return EFxKey::Backspace;
    case Qt::Key_Delete:
        return EFxKey::Delete;
    default:
        return EFxKey::Other;
    }
}

bool IsTypedCharacter(QChar c)
{
    return c.unicode() >= 0x20 && c.unicode() != 0x7F;
}
} // namespace

// One screen row of one paragraph, with what painting it needs to know.
struct CFxEditWidget::SRowPaint
{
    int32_t lineIndex = 0;
    int32_t row = 0;
    int32_t top = 0;
};

CFxEditWidget::CFxEditWidget(const CLanguageModule* language, QWidget* parent)
    : QWidget(parent), m_Language(language), m_Edit(*this, CFxEdit::ModeRich, true)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setCursor(Qt::IBeamCursor);
    setAutoFillBackground(false);
    m_CaretTimer.setInterval(QApplication::cursorFlashTime() > 0 ? QApplication::cursorFlashTime() / 2 : 500);
    connect(&m_CaretTimer, &QTimer::timeout, this,
            [this]
            {
                m_CaretShown = !m_CaretShown;
                update();
            });
}

QFont CFxEditWidget::ToQFont(const SFontDescription& font)
{
    QFont result;
    if (!font.FaceNameView().empty())
        result.setFamily(ToQString(font.FaceNameView()));
    result.setPointSize(static_cast<int>(std::clamp<int64_t>(font.PointSize(), 1, 1000)));
    result.setBold(font.IsBold());
    result.setItalic(font.IsItalic());
    result.setUnderline(font.IsUnderlined());
    result.setStrikeOut(font.strikeOut != 0);
    return result;
}

const QFontMetrics& CFxEditWidget::Metrics(const SFontDescription& font)
{
    auto found = m_Metrics.find(font);
    if (found == m_Metrics.end())
        found = m_Metrics.emplace(font, QFontMetrics(ToQFont(font), this)).first;
    return found->second;
}

void CFxEditWidget::SetDocument(const CRichTextDocument& document)
{
    m_Edit.SetDocument(document);
    m_Edit.SetModified(false);
    update();
}

void CFxEditWidget::RunAction(int32_t action)
{
    m_Edit.DoAction(action);
    AfterEditing();
}

// ---- IFxEditHost ----

SFxExtent CFxEditWidget::MeasureText(std::u16string_view text, const SFontDescription& font)
{
    const QFontMetrics& metrics = Metrics(font);
    return SFxExtent{metrics.horizontalAdvance(ToQString(text)), metrics.height()};
}

int32_t CFxEditWidget::TextAreaWidth()
{
    return std::max(1, width() - 2 * Margin);
}

int32_t CFxEditWidget::TextAreaHeight()
{
    return std::max(1, height() - 2 * Margin);
}

int32_t CFxEditWidget::FixedRowHeight()
{
    return fontMetrics().height();
}

void CFxEditWidget::PostOwnerMessage(uint32_t message, int32_t value)
{
    if (message == FxEditTextChangedMessage && value != 0)
        emit TextModified();
}

void CFxEditWidget::SetStatusText(std::u16string_view text)
{
    emit StatusTextChanged(ToQString(text));
}

bool CFxEditWidget::SetClipboard(const SFxClipboardData& data)
{
    auto* mime = new QMimeData;
    mime->setText(ToQString(data.plainText));
    if (!data.richText.empty())
        mime->setData(kRichTextMime, QByteArray(reinterpret_cast<const char*>(data.richText.data()),
                                                static_cast<qsizetype>(data.richText.size())));
    QApplication::clipboard()->setMimeData(mime);
    return true;
}

bool CFxEditWidget::GetClipboard(SFxClipboardData& data)
{
    const QMimeData* mime = QApplication::clipboard()->mimeData();
    if (!mime)
        return false;
    data.plainText = ToU16(mime->text());
    const QByteArray rich = mime->data(kRichTextMime);
    data.richText.assign(rich.begin(), rich.end());
    return true;
}

EMsgResult CFxEditWidget::ShowMessage(const std::u16string& text, EMsgIcon icon)
{
    const QString message = ToQString(text);
    switch (icon)
    {
    case EMsgIcon::Error:
        QMessageBox::critical(this, QString(), message);
        break;
    case EMsgIcon::Warning:
        QMessageBox::warning(this, QString(), message);
        break;
    default:
        QMessageBox::information(this, QString(), message);
        break;
    }
    return EMsgResult::Ok;
}

int32_t CFxEditWidget::TranslateKey(EFxKey key, int32_t platformKey, bool ctrl, bool shift, bool alt)
{
    if (!ctrl || alt || key != EFxKey::Other)
        return 0;
    switch (platformKey)
    {
    case Qt::Key_Z:
        return shift ? CFxEdit::ActionRedo : CFxEdit::ActionUndo;
    case Qt::Key_Y:
        return CFxEdit::ActionRedo;
    case Qt::Key_X:
        return CFxEdit::ActionCut;
    case Qt::Key_C:
        return CFxEdit::ActionCopy;
    case Qt::Key_V:
        return CFxEdit::ActionPaste;
    case Qt::Key_A:
        return CFxEdit::ActionSelectAll;
    default:
        return 0;
    }
}

bool CFxEditWidget::RunFindReplaceDialog(SFxFindReplaceRequest& request)
{
    // The find and replace dialog is not part of the window yet: the request stays cancelled.
    request.result = SFxFindReplaceRequest::Cancelled;
    return false;
}

bool CFxEditWidget::AskFileName(bool save, std::u16string_view, const std::u16string& caption,
                                std::u16string& path)
{
    const QString chosen = save ? QFileDialog::getSaveFileName(this, ToQString(caption), ToQString(path))
                                : QFileDialog::getOpenFileName(this, ToQString(caption), ToQString(path));
    if (chosen.isEmpty())
        return false;
    path = ToU16(chosen);
    return true;
}

IFileSystem& CFxEditWidget::FileSystem()
{
    return DiskFileSystem();
}

std::u16string CFxEditWidget::TempFolder()
{
    return ToU16(QDir::tempPath() + u'/');
}

bool CFxEditWidget::ShellOpen(const std::u16string& path)
{
    return QDesktopServices::openUrl(QUrl::fromLocalFile(ToQString(path)));
}

const IClock& CFxEditWidget::Clock()
{
    return SystemClock();
}

// ---- painting ----

void CFxEditWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    if (m_Edit.LineCount() == 0)
        return;
    SRowPaint row{m_Edit.TopLine(), m_Edit.TopRow(), Margin};
    while (row.top < height() && row.lineIndex < m_Edit.LineCount())
    {
        const COneLineInfo& line = m_Edit.Line(row.lineIndex);
        PaintRow(painter, row);
        row.top += line.RowHeight(row.row);
        if (++row.row >= line.RowCount())
        {
            ++row.lineIndex;
            row.row = 0;
        }
    }
}

void CFxEditWidget::PaintRow(QPainter& painter, const SRowPaint& row)
{
    const COneLineInfo& line = m_Edit.Line(row.lineIndex);
    const int32_t rowHeight = line.RowHeight(row.row);
    const int32_t rowStart = line.RowStart(row.row);
    const int32_t rowEnd = line.RowEnd(row.row);
    const auto& indents = line.Layout().rowIndents;
    const int32_t indent =
        static_cast<size_t>(row.row) < indents.size() ? indents[static_cast<size_t>(row.row)] : 0;
    const SFontDescription& defaultFont = m_Edit.Settings().defaultFont;

    SLineLayoutContext context;
    context.host = this;
    context.defaultFont = &defaultFont;
    context.tabStopWidth =
        std::max(1, MeasureText(u" ", defaultFont).width * std::clamp(m_Edit.Settings().spacesPerTab, 1, 99));
    const auto xOf = [&](int32_t offset)
    { return Margin + indent + RowTextWidth(line, context, rowStart, offset); };

    // Character offsets of the selection within this paragraph (layout position = offset + row).
    const SFxPosition selStart = m_Edit.SelectionStart();
    const SFxPosition selEnd = m_Edit.SelectionEnd();
    const auto isSelected = [&](int32_t offset)
    {
        const SFxPosition at{row.lineIndex, offset + row.row};
        return at >= selStart && at < selEnd;
    };

    // Pieces of equal format and selection state; tabs and objects stand alone.
    struct SPiece
    {
        int32_t start;
        int32_t end;
    };
    std::vector<SPiece> pieces;
    const std::u16string& text = line.Text();
    for (int32_t at = rowStart; at < rowEnd;)
    {
        int32_t end = at + 1;
        const char16_t first = text[static_cast<size_t>(at)];
        if (first != u'\t' && first != CRtfObjectInfo::ObjectCharacter)
        {
            const auto font = line.EffectiveFont(at);
            const auto colour = line.EffectiveTextColour(at);
            const auto back = line.EffectiveBackColour(at);
            while (end < rowEnd && text[static_cast<size_t>(end)] != u'\t' &&
                   text[static_cast<size_t>(end)] != CRtfObjectInfo::ObjectCharacter &&
                   isSelected(end) == isSelected(at) && line.EffectiveFont(end) == font &&
                   line.EffectiveTextColour(end) == colour && line.EffectiveBackColour(end) == back)
                ++end;
        }
        pieces.push_back({at, end});
        at = end;
    }

    int32_t descent = Metrics(defaultFont).descent();
    for (const SPiece& piece : pieces)
        descent = std::max(descent, Metrics(line.EffectiveFont(piece.start).value_or(defaultFont)).descent());
    const int32_t baseline = row.top + rowHeight - descent;

    for (const SPiece& piece : pieces)
    {
        const int32_t x0 = xOf(piece.start);
        const int32_t x1 = xOf(piece.end);
        const QRect cell(x0, row.top, std::max(1, x1 - x0), rowHeight);
        const bool selected = isSelected(piece.start);
        const auto back = line.EffectiveBackColour(piece.start);
        if (selected)
            painter.fillRect(cell, palette().highlight());
        else if (IsSetColour(back))
            painter.fillRect(cell, FromColourRef(*back));
        const char16_t first = text[static_cast<size_t>(piece.start)];
        if (first == u'\t')
            continue;
        if (first == CRtfObjectInfo::ObjectCharacter)
        {
            // Pictures and attachment icons are drawn as their frames until the images are decoded.
            painter.setPen(palette().mid().color());
            painter.drawRect(cell.adjusted(0, 0, -1, -1));
            continue;
        }
        const auto colour = line.EffectiveTextColour(piece.start);
        painter.setPen(selected              ? palette().highlightedText().color()
                       : IsSetColour(colour) ? FromColourRef(*colour)
                                             : palette().text().color());
        painter.setFont(ToQFont(line.EffectiveFont(piece.start).value_or(defaultFont)));
        painter.drawText(QPoint(x0, baseline), ToQString(std::u16string_view(text).substr(
                                                   static_cast<size_t>(piece.start),
                                                   static_cast<size_t>(piece.end - piece.start))));
    }

    const SFxPosition caret = m_Edit.Caret();
    if (m_CaretShown && hasFocus() && caret.line == row.lineIndex &&
        line.RowOfLayoutPosition(caret.pos) == row.row)
    {
        const int32_t x = Margin + m_Edit.CaretX();
        painter.fillRect(QRect(x, row.top, 1, rowHeight), palette().text());
    }
}

// ---- input ----

void CFxEditWidget::keyPressEvent(QKeyEvent* event)
{
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    const bool ctrl = modifiers.testFlag(Qt::ControlModifier);
    const bool shift = modifiers.testFlag(Qt::ShiftModifier);
    const bool alt = modifiers.testFlag(Qt::AltModifier);
    const EFxKey key = ToFxKey(event->key());
    if (key != EFxKey::Other || ctrl || alt)
    {
        m_Edit.OnKeyDown(key, event->key(), ctrl, shift, alt);
        AfterEditing();
        event->accept();
        return;
    }
    const QString text = event->text();
    bool typed = false;
    for (QChar c : text)
        if (IsTypedCharacter(c))
        {
            m_Edit.OnChar(c.unicode(), shift);
            typed = true;
        }
    if (!typed)
    {
        QWidget::keyPressEvent(event);
        return;
    }
    AfterEditing();
    event->accept();
}

SFxPosition CFxEditWidget::PositionAt(const QPoint& point) const
{
    return m_Edit.HitTest(point.x() - Margin, point.y() - Margin);
}

void CFxEditWidget::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || m_Edit.LineCount() == 0)
        return QWidget::mousePressEvent(event);
    const SFxPosition at = PositionAt(event->position().toPoint());
    const bool extend = event->modifiers().testFlag(Qt::ShiftModifier);
    m_Edit.SetSelection(extend ? m_Edit.Anchor() : at, at);
    RestartCaretBlink();
    update();
}

void CFxEditWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (!(event->buttons() & Qt::LeftButton) || m_Edit.LineCount() == 0)
        return QWidget::mouseMoveEvent(event);
    m_Edit.SetSelection(m_Edit.Anchor(), PositionAt(event->position().toPoint()));
    m_Edit.EnsureCaretVisible();
    update();
}

void CFxEditWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || m_Edit.LineCount() == 0)
        return QWidget::mouseDoubleClickEvent(event);
    m_Edit.SetCaret(PositionAt(event->position().toPoint()));
    m_Edit.SelectWordAtCaret();
    update();
}

void CFxEditWidget::wheelEvent(QWheelEvent* event)
{
    const int steps = event->angleDelta().y() / 40; // three rows per notch
    if (steps != 0)
        ScrollByRows(-steps);
    event->accept();
}

void CFxEditWidget::ScrollByRows(int32_t rows)
{
    int32_t line = m_Edit.TopLine();
    int32_t row = m_Edit.TopRow();
    for (; rows > 0; --rows)
    {
        if (row + 1 < m_Edit.Line(line).RowCount())
            ++row;
        else if (line + 1 < m_Edit.LineCount())
        {
            ++line;
            row = 0;
        }
    }
    for (; rows < 0; ++rows)
    {
        if (row > 0)
            --row;
        else if (line > 0)
        {
            --line;
            row = m_Edit.Line(line).RowCount() - 1;
        }
    }
    m_Edit.ScrollToRow(line, row);
    update();
}

void CFxEditWidget::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    m_Edit.OnResize();
}

void CFxEditWidget::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    RestartCaretBlink();
}

void CFxEditWidget::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    m_CaretTimer.stop();
    update();
}

void CFxEditWidget::AfterEditing()
{
    m_Edit.EnsureCaretVisible();
    RestartCaretBlink();
    update();
}

void CFxEditWidget::RestartCaretBlink()
{
    m_CaretShown = true;
    m_CaretTimer.start();
}
