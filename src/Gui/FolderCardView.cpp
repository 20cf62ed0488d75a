#include "Gui/FolderCardView.h"

#include "Document/FolderBase.h"
#include "Document/NoteBase.h"
#include "Gui/ItemTreeView.h"
#include "Gui/QtText.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyledItemDelegate>

namespace
{
constexpr int ItemRole = Qt::UserRole;
constexpr int CaptionRole = Qt::UserRole + 1;
constexpr int PreviewRole = Qt::UserRole + 2;
constexpr int Padding = 8;
constexpr int IconSize = 24;
// Enough text to fill a large card; the rest would only cost time on big notes.
constexpr qsizetype PreviewLength = 400;

// A card: a rounded panel with the item's icon and caption in bold on top and as much of the
// note's text below as fits.
class CCardDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const QRectF card = QRectF(option.rect).adjusted(2.5, 2.5, -2.5, -2.5);
        const bool selected = option.state & QStyle::State_Selected;
        const QPalette& palette = option.palette;
        QPainterPath outline;
        outline.addRoundedRect(card, 6, 6);
        painter->fillPath(outline,
                          selected ? palette.highlight().color().lighter(180) : palette.base().color());
        painter->setPen(
            QPen(selected ? palette.highlight().color() : palette.mid().color(), selected ? 2 : 1));
        painter->drawPath(outline);

        const QRect inner = option.rect.adjusted(Padding, Padding, -Padding, -Padding);
        const QIcon icon = index.data(Qt::DecorationRole).value<QIcon>();
        icon.paint(painter, QRect(inner.topLeft(), QSize(IconSize, IconSize)));
        QFont bold = option.font;
        bold.setBold(true);
        painter->setFont(bold);
        painter->setPen(palette.text().color());
        const QRect captionRect(inner.left() + IconSize + 6, inner.top(), inner.width() - IconSize - 6,
                                IconSize);
        painter->drawText(captionRect, Qt::AlignVCenter | Qt::AlignLeft,
                          QFontMetrics(bold).elidedText(index.data(CaptionRole).toString(), Qt::ElideRight,
                                                        captionRect.width()));

        const QRect textRect = inner.adjusted(0, IconSize + 6, 0, 0);
        painter->setFont(option.font);
        painter->setPen(palette.placeholderText().color());
        painter->setClipRect(textRect);
        painter->drawText(textRect, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap,
                          index.data(PreviewRole).toString());
        painter->restore();
    }

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const override
    {
        return index.data(Qt::SizeHintRole).toSize();
    }
};
} // namespace

CFolderCardView::CFolderCardView(QWidget* parent) : QListWidget(parent)
{
    setViewMode(QListView::IconMode);
    setResizeMode(QListView::Adjust);
    setMovement(QListView::Static);
    setWordWrap(true);
    setSpacing(8);
    setUniformItemSizes(true);
    setIconSize(QSize(IconSize, IconSize));
    setItemDelegate(new CCardDelegate(this));
    setTextElideMode(Qt::ElideRight);
    setSelectionMode(QAbstractItemView::SingleSelection);
    SetCardSize(m_CardSize.width(), m_CardSize.height());
    connect(this, &QListWidget::itemActivated, this,
            [this](QListWidgetItem* card)
            {
                if (CItem* item = ItemOf(card))
                    emit ItemActivated(item);
            });
}

void CFolderCardView::SetCardSize(int width, int height)
{
    m_CardSize = QSize(width, height);
    setGridSize(m_CardSize + QSize(8, 8));
    for (int i = 0; i < count(); ++i)
        item(i)->setSizeHint(m_CardSize);
}

CItem* CFolderCardView::ItemOf(const QListWidgetItem* card)
{
    return card ? reinterpret_cast<CItem*>(card->data(ItemRole).value<quintptr>()) : nullptr;
}

QString CFolderCardView::Preview(CItem& item)
{
    auto* note = dynamic_cast<CNoteBase*>(&item);
    std::u16string text;
    if (!note || !note->GetPlainText(text))
        return {};
    QString preview = ToQString(std::u16string_view(text).substr(0, PreviewLength));
    preview.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return preview.trimmed();
}

void CFolderCardView::ShowFolder(CFolderBase* folder)
{
    clear();
    m_Folder = folder;
    if (!folder || !folder->LoadChildren(EChildKind::Any))
        return;
    for (size_t i = 0; i < folder->GetChildCount(); ++i)
    {
        CItem& child = *folder->GetChild(i);
        const QString caption = ToQString(child.GetCaption());
        auto* card = new QListWidgetItem(CItemTreeView::ItemIcon(child, style()), caption, this);
        card->setData(ItemRole, QVariant::fromValue(reinterpret_cast<quintptr>(&child)));
        card->setData(CaptionRole, caption);
        card->setData(PreviewRole, Preview(child));
        card->setSizeHint(m_CardSize);
        card->setToolTip(caption);
    }
}
