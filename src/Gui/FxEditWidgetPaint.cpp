// The editor's painting: the visible rows with their fonts and colours, the selection, links,
// bullets, pictures, attachment icons, the caret, the input method's unfinished text and the
// place a drop would go.
#include "Gui/FxEditWidget.h"
#include "Gui/GuiPictures.h"
#include "Gui/QtText.h"
#include "Shared/Clipboard/LinkDetection.h"
#include "Shared/FxEdit/LineLayout.h"

#include <QFileInfo>
#include <QMimeDatabase>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>

#include <algorithm>

namespace
{
// A link may begin anywhere in a word but never crosses white space, so a row's links are found
// by scanning from the start of the word the row begins in. Words longer than this are scanned
// from this far back only: a link that starts earlier is not underlined on the later rows.
constexpr int32_t LinkLookBehind = 2048;
// At most this many decoded pictures are kept between paints.
constexpr size_t PictureCacheSize = 64;

QColor FromColourRef(RichTextColour colour)
{
    return QColor(static_cast<int>(colour & 0xFF), static_cast<int>((colour >> 8) & 0xFF),
                  static_cast<int>((colour >> 16) & 0xFF));
}

bool IsSetColour(const std::optional<RichTextColour>& colour)
{
    return colour.has_value() && *colour != DefaultRichTextColour;
}

bool EndsLink(char16_t c)
{
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

// The links that touch [from, to) of `text`, as [start, end) ranges in order.
std::vector<std::pair<int32_t, int32_t>> LinksIn(std::u16string_view text, int32_t from, int32_t to)
{
    std::vector<std::pair<int32_t, int32_t>> links;
    int32_t at = from;
    const int32_t limit = std::max(0, from - LinkLookBehind);
    while (at > limit && !EndsLink(text[static_cast<size_t>(at - 1)]))
        --at;
    while (at < to)
    {
        if (const size_t length = LinkLength(text, static_cast<size_t>(at)))
        {
            const auto end = at + static_cast<int32_t>(length);
            if (end > from)
                links.emplace_back(at, end);
            at = end;
        }
        else
            ++at;
    }
    return links;
}
} // namespace

// One screen row of one paragraph, with what painting it needs to know.
struct CFxEditWidget::SRowPaint
{
    int32_t lineIndex = 0;
    int32_t row = 0;
    int32_t top = 0;
};

SLineLayoutContext CFxEditWidget::LayoutContext() const
{
    SLineLayoutContext context;
    context.host = const_cast<CFxEditWidget*>(this); // measuring only fills the font cache
    context.defaultFont = &m_Edit.Settings().defaultFont;
    context.tabStopWidth =
        std::max(1, Fonts(m_Edit.Settings().defaultFont).metrics.horizontalAdvance(QLatin1Char(' ')) *
                        std::clamp(m_Edit.Settings().spacesPerTab, 1, 99));
    return context;
}

int32_t CFxEditWidget::XOf(int32_t lineIndex, int32_t row, int32_t offset) const
{
    const COneLineInfo& line = m_Edit.Line(lineIndex);
    const auto& indents = line.Layout().rowIndents;
    const int32_t indent = static_cast<size_t>(row) < indents.size() ? indents[static_cast<size_t>(row)] : 0;
    return Margin + indent + RowTextWidth(line, LayoutContext(), line.RowStart(row), offset);
}

bool CFxEditWidget::RowAtY(int32_t y, int32_t& line, int32_t& row, int32_t& top) const
{
    if (m_Edit.LineCount() == 0)
        return false;
    line = m_Edit.TopLine();
    row = m_Edit.TopRow();
    top = Margin;
    while (true)
    {
        const int32_t height = m_Edit.Line(line).RowHeight(row);
        if (y < top + height)
            return true;
        top += height;
        if (++row >= m_Edit.Line(line).RowCount())
        {
            if (++line >= m_Edit.LineCount())
                return false;
            row = 0;
        }
    }
}

QRect CFxEditWidget::RowRect(int32_t lineIndex, int32_t rowIndex) const
{
    if (m_Edit.LineCount() == 0 ||
        SFxPosition{lineIndex, rowIndex} < SFxPosition{m_Edit.TopLine(), m_Edit.TopRow()})
        return {};
    int32_t line = m_Edit.TopLine();
    int32_t row = m_Edit.TopRow();
    int32_t top = Margin;
    while (top < height() && line < m_Edit.LineCount())
    {
        const int32_t rowHeight = m_Edit.Line(line).RowHeight(row);
        if (line == lineIndex && row == rowIndex)
            return QRect(0, top, width() - m_VScroll->width(), rowHeight);
        top += rowHeight;
        if (++row >= m_Edit.Line(line).RowCount())
        {
            ++line;
            row = 0;
        }
    }
    return {};
}

QRect CFxEditWidget::CaretRect() const
{
    if (m_Edit.LineCount() == 0)
        return {};
    const SFxPosition caret = m_Edit.Caret();
    const QRect row = RowRect(caret.line, m_Edit.Line(caret.line).RowOfLayoutPosition(caret.pos));
    if (row.isEmpty())
        return {};
    return QRect(Margin + m_Edit.CaretX(), row.top(), 2, row.height());
}

int32_t CFxEditWidget::CharacterAt(const QPoint& point, int32_t& lineIndex) const
{
    int32_t row = 0;
    int32_t top = 0;
    if (!RowAtY(point.y(), lineIndex, row, top))
        return -1;
    const COneLineInfo& line = m_Edit.Line(lineIndex);
    int32_t low = line.RowStart(row);
    int32_t high = line.RowEnd(row);
    if (low >= high || point.x() < XOf(lineIndex, row, low) || point.x() >= XOf(lineIndex, row, high))
        return -1;
    // The last character whose left edge is not right of the point.
    while (high - low > 1)
    {
        const int32_t mid = (low + high) / 2;
        if (XOf(lineIndex, row, mid) <= point.x())
            low = mid;
        else
            high = mid;
    }
    return low;
}

std::u16string CFxEditWidget::LinkAt(const QPoint& point) const
{
    int32_t line = 0;
    const int32_t offset = CharacterAt(point, line);
    if (offset < 0)
        return {};
    const std::u16string& text = m_Edit.Line(line).Text();
    for (const auto& [start, end] : LinksIn(text, offset, offset + 1))
        if (start <= offset && offset < end)
            return text.substr(static_cast<size_t>(start), static_cast<size_t>(end - start));
    return {};
}

// ---- painting

void CFxEditWidget::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    painter.fillRect(event->rect(), palette().base());
    if (m_Edit.LineCount() == 0)
        return;
    const QRect dirty = event->rect();
    SRowPaint row{m_Edit.TopLine(), m_Edit.TopRow(), Margin};
    while (row.top < std::min(height(), dirty.bottom() + 1) && row.lineIndex < m_Edit.LineCount())
    {
        const COneLineInfo& line = m_Edit.Line(row.lineIndex);
        const int32_t rowHeight = line.RowHeight(row.row);
        if (row.top + rowHeight > dirty.top())
            PaintRow(painter, row);
        row.top += rowHeight;
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
    const SFontDescription& defaultFont = m_Edit.Settings().defaultFont;
    const std::u16string& text = line.Text();
    const SLineLayoutContext context = LayoutContext();
    const auto& indents = line.Layout().rowIndents;
    const int32_t indent =
        static_cast<size_t>(row.row) < indents.size() ? indents[static_cast<size_t>(row.row)] : 0;
    // Widths measured along the row, as the layout measured them.
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
    const std::vector<std::pair<int32_t, int32_t>> links = LinksIn(text, rowStart, rowEnd);
    size_t nextLink = 0;
    const auto linkAt = [&](int32_t offset)
    {
        while (nextLink < links.size() && links[nextLink].second <= offset)
            ++nextLink;
        return nextLink < links.size() && links[nextLink].first <= offset;
    };
    // A bulleted paragraph starts with the bullet character and a tab; the bullet is drawn as a
    // dot of the text's size rather than as the (often tiny) character.
    const bool bulleted =
        row.row == 0 && text.size() >= 2 && text[0] == m_Edit.Settings().bulletCharacter && text[1] == u'\t';

    // Pieces of equal format, selection and link state; tabs, objects and bullets stand alone.
    struct SPiece
    {
        int32_t start;
        int32_t end;
        bool link;
    };
    std::vector<SPiece> pieces;
    for (int32_t at = rowStart; at < rowEnd;)
    {
        int32_t end = at + 1;
        const char16_t first = text[static_cast<size_t>(at)];
        const bool link = linkAt(at);
        if (first != u'\t' && first != CRtfObjectInfo::ObjectCharacter && !(bulleted && at == 0))
        {
            const auto font = line.EffectiveFont(at);
            const auto colour = line.EffectiveTextColour(at);
            const auto back = line.EffectiveBackColour(at);
            const bool selected = isSelected(at);
            while (end < rowEnd && text[static_cast<size_t>(end)] != u'\t' &&
                   text[static_cast<size_t>(end)] != CRtfObjectInfo::ObjectCharacter &&
                   isSelected(end) == selected && linkAt(end) == link && line.EffectiveFont(end) == font &&
                   line.EffectiveTextColour(end) == colour && line.EffectiveBackColour(end) == back)
                ++end;
        }
        pieces.push_back({at, end, link});
        at = end;
    }

    int32_t descent = Fonts(defaultFont).metrics.descent();
    for (const SPiece& piece : pieces)
        descent =
            std::max(descent, Fonts(line.EffectiveFont(piece.start).value_or(defaultFont)).metrics.descent());
    const int32_t baseline = row.top + rowHeight - descent;

    for (const SPiece& piece : pieces)
    {
        const int32_t x0 = xOf(piece.start);
        const int32_t x1 = xOf(piece.end);
        const QRect cell(x0, row.top, std::max(1, x1 - x0), rowHeight);
        const bool selected = isSelected(piece.start);
        const auto back = line.EffectiveBackColour(piece.start);
        const char16_t first = text[static_cast<size_t>(piece.start)];
        if (first == CRtfObjectInfo::ObjectCharacter)
        {
            if (const CRtfObjectInfo* object = line.FindObject(piece.start))
                PaintObject(painter, *object, cell, row.top + rowHeight);
            if (selected)
            {
                QColor veil = palette().highlight().color();
                veil.setAlpha(96);
                painter.fillRect(cell, veil);
            }
            continue;
        }
        if (selected)
            painter.fillRect(cell, palette().highlight());
        else if (IsSetColour(back))
            painter.fillRect(cell, FromColourRef(*back));
        if (first == u'\t')
            continue;
        const SFontDescription& font = line.EffectiveFont(piece.start).value_or(defaultFont);
        const auto colour = line.EffectiveTextColour(piece.start);
        const QColor pen = selected              ? palette().highlightedText().color()
                           : piece.link          ? palette().link().color()
                           : IsSetColour(colour) ? FromColourRef(*colour)
                                                 : palette().text().color();
        if (bulleted && piece.start == 0)
        {
            const QFontMetrics& metrics = Fonts(font).metrics;
            const int radius = std::max(2, metrics.ascent() / 5);
            const QPoint centre(x0 + std::max(radius, (x1 - x0) / 2), baseline - metrics.ascent() / 3);
            painter.setPen(Qt::NoPen);
            painter.setBrush(pen);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.drawEllipse(centre, radius, radius);
            painter.setRenderHint(QPainter::Antialiasing, false);
            painter.setBrush(Qt::NoBrush);
            continue;
        }
        painter.setPen(pen);
        if (piece.link && !font.IsUnderlined())
        {
            QFont underlined = Fonts(font).font;
            underlined.setUnderline(true);
            painter.setFont(underlined);
        }
        else
            painter.setFont(Fonts(font).font);
        painter.drawText(QPoint(x0, baseline), ToQString(std::u16string_view(text).substr(
                                                   static_cast<size_t>(piece.start),
                                                   static_cast<size_t>(piece.end - piece.start))));
    }

    const SFxPosition caret = m_Edit.Caret();
    const bool caretRow = caret.line == row.lineIndex && line.RowOfLayoutPosition(caret.pos) == row.row;
    if (caretRow && !m_Preedit.isEmpty())
    {
        // The input method's unfinished text stands at the caret, underlined, until it is
        // committed.
        const QFont& font = Fonts(line.EffectiveFont(std::max(0, rowStart)).value_or(defaultFont)).font;
        const int32_t x = Margin + m_Edit.CaretX();
        const QRect box(x, row.top, QFontMetrics(font, this).horizontalAdvance(m_Preedit), rowHeight);
        painter.fillRect(box, palette().base());
        QFont underlined = font;
        underlined.setUnderline(true);
        painter.setFont(underlined);
        painter.setPen(palette().text().color());
        painter.drawText(QPoint(x, baseline), m_Preedit);
    }
    if (caretRow && m_CaretShown && hasFocus() && m_Preedit.isEmpty())
        painter.fillRect(QRect(Margin + m_Edit.CaretX(), row.top, 1, rowHeight), palette().text());
    if (m_DropCaret && m_DropCaret->line == row.lineIndex &&
        line.RowOfLayoutPosition(m_DropCaret->pos) == row.row)
    {
        const int32_t offset = std::clamp(m_DropCaret->pos - row.row, rowStart, rowEnd);
        painter.fillRect(QRect(xOf(offset), row.top, 2, rowHeight), palette().text());
    }
}

void CFxEditWidget::PaintObject(QPainter& painter, const CRtfObjectInfo& object, const QRect& cell,
                                int32_t bottom)
{
    const SFxExtent extent = ObjectExtent(object);
    const QRect box(cell.left(), bottom - extent.height, extent.width, extent.height);
    if (object.IsPicture())
    {
        const QImage image = PictureImage(object);
        if (image.isNull())
        {
            painter.setPen(palette().mid().color());
            painter.drawRect(box.adjusted(0, 0, -1, -1));
            return;
        }
        painter.setRenderHint(QPainter::SmoothPixmapTransform, image.size() != box.size());
        painter.drawImage(box, image);
        return;
    }
    // Attachments show the icon the desktop gives files of their kind, the plain file icon when
    // the desktop has none (no icon theme), and their name as a tooltip.
    const QString suffix = QFileInfo(ToQString(object.FileName())).suffix().toLower();
    auto found = m_AttachmentIcons.find(suffix);
    if (found == m_AttachmentIcons.end())
    {
        const QString iconName =
            QMimeDatabase()
                .mimeTypeForFile(QStringLiteral("a.") + suffix, QMimeDatabase::MatchExtension)
                .iconName();
        QPixmap pixmap = QIcon::fromTheme(iconName).pixmap(box.size());
        if (pixmap.isNull())
            pixmap = style()->standardIcon(QStyle::SP_FileIcon).pixmap(box.size());
        found = m_AttachmentIcons.emplace(suffix, pixmap).first;
    }
    painter.drawPixmap(box, found->second);
}

QImage CFxEditWidget::PictureImage(const CRtfObjectInfo& object)
{
    if (!object.Picture())
        return {};
    const std::vector<uint8_t>& packed = object.Picture()->Packed();
    const size_t key = qHashBits(packed.data(), packed.size());
    if (const auto found = m_Pictures.find(key); found != m_Pictures.end())
        return found->second;
    if (m_Pictures.size() >= PictureCacheSize)
        m_Pictures.clear();
    return m_Pictures.emplace(key, BitmapToImage(*object.Picture())).first->second;
}
