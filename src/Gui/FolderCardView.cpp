#include "Gui/FolderCardView.h"

#include "Document/FolderBase.h"
#include "Document/NoteBase.h"
#include "Gui/ItemTreeView.h"
#include "Gui/QtText.h"

namespace
{
constexpr int ItemRole = Qt::UserRole;
// Enough text to fill a large card; the rest would only cost time on big notes.
constexpr qsizetype PreviewLength = 400;
} // namespace

CFolderCardView::CFolderCardView(QWidget* parent) : QListWidget(parent)
{
    setViewMode(QListView::IconMode);
    setResizeMode(QListView::Adjust);
    setMovement(QListView::Static);
    setWordWrap(true);
    setSpacing(8);
    setUniformItemSizes(true);
    setIconSize(QSize(32, 32));
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
        QString text = ToQString(child.GetCaption());
        const QString preview = Preview(child);
        if (!preview.isEmpty())
            text += QStringLiteral("\n\n") + preview;
        auto* card = new QListWidgetItem(CItemTreeView::ItemIcon(child, style()), text, this);
        card->setData(ItemRole, QVariant::fromValue(reinterpret_cast<quintptr>(&child)));
        card->setSizeHint(m_CardSize);
        card->setTextAlignment(Qt::AlignLeft | Qt::AlignTop);
        card->setToolTip(ToQString(child.GetCaption()));
    }
}
