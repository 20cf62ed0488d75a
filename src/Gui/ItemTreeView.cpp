#include "Gui/ItemTreeView.h"

#include "Document/DefaultFolders.h"
#include "Document/FolderBase.h"
#include "Document/Item.h"
#include "Gui/QtText.h"

#include <QDropEvent>
#include <QHeaderView>
#include <QPainter>
#include <QStyle>

#include <array>
#include <functional>
#include <vector>

namespace
{
constexpr int ItemRole = Qt::UserRole;
constexpr int FilledRole = Qt::UserRole + 1;

QColor FromColourRef(uint32_t colour)
{
    return QColor(static_cast<int>(colour & 0xFF), static_cast<int>((colour >> 8) & 0xFF),
                  static_cast<int>((colour >> 16) & 0xFF));
}

// The icons an item may choose by its extended data's icon index (0 keeps the kind's own).
constexpr std::array kChoosableIcons = {
    QStyle::SP_DirIcon,           QStyle::SP_FileIcon,           QStyle::SP_MessageBoxInformation,
    QStyle::SP_MessageBoxWarning, QStyle::SP_MessageBoxQuestion, QStyle::SP_DialogApplyButton,
    QStyle::SP_DriveHDIcon,       QStyle::SP_ComputerIcon,       QStyle::SP_TrashIcon,
    QStyle::SP_DialogHelpButton,  QStyle::SP_MediaPlay,          QStyle::SP_BrowserReload,
};

// Priority, task and read-only marks drawn over the item's icon, so the tree keeps one column.
// Drawn on a 16-pixel grid and scaled, so the card view's large icons carry them too.
QPixmap MarkedPixmap(const QIcon& base, const CItemExtendedData& data, int size)
{
    QPixmap pixmap = base.pixmap(size, size);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 16.0, size / 16.0);
    constexpr double Size = 16;
    if (data.Priority() > 0)
    {
        // A red badge with the priority number in the top-right corner.
        const QRectF badge(Size - 9, 0, 9, 9);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(200, 30, 30));
        painter.drawEllipse(badge);
        QFont font = painter.font();
        font.setPixelSize(7);
        font.setBold(true);
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(badge, Qt::AlignCenter, QString::number(std::min(data.Priority(), 9)));
    }
    if (data.TaskState() != 0)
    {
        // A check box in the bottom-left corner, ticked when the task is done.
        const QRectF box(0.5, Size - 7.5, 7, 7);
        painter.setPen(QPen(QColor(20, 110, 20), 1.2));
        painter.setBrush(Qt::white);
        painter.drawRect(box);
        if (data.TaskState() > 1)
            painter.drawPolyline(
                QPolygonF({QPointF(1.5, Size - 4.5), QPointF(3.5, Size - 2), QPointF(7, Size - 7.5)}));
    }
    if (data.IsReadOnly())
    {
        // A small padlock in the bottom-right corner.
        painter.setPen(QPen(QColor(90, 90, 90), 1.2));
        painter.setBrush(Qt::NoBrush);
        painter.drawArc(QRectF(Size - 6.5, Size - 9, 4, 5), 0, 180 * 16);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(200, 150, 20));
        painter.drawRect(QRectF(Size - 7.5, Size - 6.5, 6, 5));
    }
    painter.end();
    return pixmap;
}

QIcon WithMarks(const QIcon& base, const CItemExtendedData& data)
{
    QIcon icon;
    for (int size : {16, 32, 48})
        icon.addPixmap(MarkedPixmap(base, data, size));
    return icon;
}
} // namespace

CItemTreeView::CItemTreeView(QWidget* parent) : QTreeWidget(parent)
{
    setHeaderHidden(true);
    setColumnCount(1);
    setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
    setDragDropMode(QAbstractItemView::InternalMove);
    setDefaultDropAction(Qt::MoveAction);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setUniformRowHeights(true);
    connect(this, &QTreeWidget::itemExpanded, this,
            [this](QTreeWidgetItem* entry)
            {
                if (auto* folder = dynamic_cast<CFolderBase*>(ItemOf(entry)))
                    FillChildren(entry, *folder);
            });
    connect(this, &QTreeWidget::itemChanged, this, &CItemTreeView::OnEntryChanged);
}

void CItemTreeView::ShowRoot(CFolderBase* root)
{
    clear();
    m_Root = root;
    invisibleRootItem()->setData(0, FilledRole, false);
    if (root)
        FillChildren(invisibleRootItem(), *root);
}

CItem* CItemTreeView::ItemOf(const QTreeWidgetItem* entry)
{
    return entry ? reinterpret_cast<CItem*>(entry->data(0, ItemRole).value<quintptr>()) : nullptr;
}

QIcon CItemTreeView::ItemIcon(const CItem& item, const QStyle* style)
{
    const auto* folder = dynamic_cast<const CFolderBase*>(&item);
    return ItemIconFor(folder != nullptr, item.FindExtendedData(),
                       folder && folder->GetDefaultFolderKind() == RecycleBinFolderKind, style);
}

namespace
{
// An item with alarms shows a small clock in the top-left corner of its icon (the other corners
// carry priority, task and read-only marks).
QIcon WithAlarmMark(const QIcon& base)
{
    QIcon marked;
    for (int size : {16, 32})
    {
        QPixmap pixmap = base.pixmap(size, size);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(size / 16.0, size / 16.0);
        painter.setPen(QPen(QColor(90, 60, 0), 1));
        painter.setBrush(QColor(255, 205, 40));
        painter.drawEllipse(QRectF(0.5, 0.5, 7, 7));
        painter.drawLine(QPointF(4, 4), QPointF(4, 1.8));
        painter.drawLine(QPointF(4, 4), QPointF(5.8, 4));
        painter.end();
        marked.addPixmap(pixmap);
    }
    return marked;
}

bool HasEnabledAlarm(const CItem& item)
{
    const CAlarmsArray* alarms = item.FindAlarms();
    if (!alarms)
        return false;
    for (const CAlarmInfo& alarm : *alarms)
        if (alarm.enabled)
            return true;
    return false;
}
} // namespace

QIcon CItemTreeView::ItemIconFor(bool folder, const CItemExtendedData* data, bool recycleBin,
                                 const QStyle* style)
{
    QStyle::StandardPixmap kind = folder ? QStyle::SP_DirIcon : QStyle::SP_FileIcon;
    if (data && data->Icon() > 0)
        kind = kChoosableIcons[static_cast<size_t>(data->Icon() - 1) % kChoosableIcons.size()];
    if (recycleBin)
        kind = QStyle::SP_TrashIcon;
    const QIcon base = style->standardIcon(kind);
    if (!data || (data->Priority() <= 0 && data->TaskState() == 0 && !data->IsReadOnly()))
        return base;
    return WithMarks(base, *data);
}

void CItemTreeView::Decorate(QTreeWidgetItem* entry, const CItem& item)
{
    m_Decorating = true;
    entry->setText(0, ToQString(item.GetCaption()));
    entry->setIcon(0,
                   HasEnabledAlarm(item) ? WithAlarmMark(ItemIcon(item, style())) : ItemIcon(item, style()));
    const CItemExtendedData* data = item.FindExtendedData();
    const auto text = data ? data->TextColour() : std::nullopt;
    const auto back = data ? data->BackColour() : std::nullopt;
    entry->setForeground(0,
                         text && *text != CItem::DefaultTextColour ? QBrush(FromColourRef(*text)) : QBrush());
    entry->setBackground(0, back ? QBrush(FromColourRef(*back)) : QBrush());
    Qt::ItemFlags flags =
        Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable | Qt::ItemIsDragEnabled;
    if (item.IsKind(EItemKind::Folder))
        flags |= Qt::ItemIsDropEnabled;
    entry->setFlags(flags);
    m_Decorating = false;
}

QTreeWidgetItem* CItemTreeView::MakeEntry(CItem& item)
{
    auto* entry = new QTreeWidgetItem;
    entry->setData(0, ItemRole, QVariant::fromValue(reinterpret_cast<quintptr>(&item)));
    Decorate(entry, item);
    if (item.IsKind(EItemKind::Folder) &&
        item.GetChildState(EChildKind::Any, false) != EChildState::NoChildren)
        entry->setChildIndicatorPolicy(QTreeWidgetItem::ShowIndicator);
    return entry;
}

void CItemTreeView::FillChildren(QTreeWidgetItem* entry, CFolderBase& folder)
{
    if (entry->data(0, FilledRole).toBool())
        return;
    entry->setData(0, FilledRole, true);
    if (!folder.LoadChildren(EChildKind::Any))
        return;
    QList<QTreeWidgetItem*> children;
    children.reserve(static_cast<qsizetype>(folder.GetChildCount()));
    for (size_t i = 0; i < folder.GetChildCount(); ++i)
        children.append(MakeEntry(*folder.GetChild(i)));
    entry->addChildren(children);
    entry->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicatorWhenChildless);
}

QTreeWidgetItem* CItemTreeView::FindEntry(const CItem& item) const
{
    if (&item == m_Root)
        return invisibleRootItem();
    const CFolderBase* parent = item.GetParent();
    if (!parent)
        return nullptr;
    QTreeWidgetItem* parentEntry = FindEntry(*parent);
    if (!parentEntry)
        return nullptr;
    for (int i = 0; i < parentEntry->childCount(); ++i)
        if (ItemOf(parentEntry->child(i)) == &item)
            return parentEntry->child(i);
    return nullptr;
}

QTreeWidgetItem* CItemTreeView::Reveal(const CItem& item)
{
    std::vector<const CItem*> chain;
    for (const CItem* each = &item; each && each != m_Root; each = each->GetParent())
        chain.push_back(each);
    QTreeWidgetItem* entry = invisibleRootItem();
    for (auto it = chain.rbegin(); it != chain.rend(); ++it)
    {
        auto* folder = dynamic_cast<CFolderBase*>(ItemOf(entry));
        if (entry == invisibleRootItem())
            folder = m_Root;
        if (!folder)
            return nullptr;
        FillChildren(entry, *folder);
        if (entry != invisibleRootItem() && it != chain.rbegin())
            entry->setExpanded(true);
        QTreeWidgetItem* next = nullptr;
        for (int i = 0; i < entry->childCount() && !next; ++i)
            if (ItemOf(entry->child(i)) == *it)
                next = entry->child(i);
        if (!next)
            return nullptr;
        entry = next;
    }
    if (entry->parent())
        entry->parent()->setExpanded(true);
    return entry == invisibleRootItem() ? nullptr : entry;
}

void CItemTreeView::SelectItem(const CItem& item)
{
    if (QTreeWidgetItem* entry = Reveal(item))
    {
        setCurrentItem(entry);
        scrollToItem(entry);
    }
}

void CItemTreeView::RefreshItem(const CItem& item)
{
    if (QTreeWidgetItem* entry = FindEntry(item); entry && entry != invisibleRootItem())
        Decorate(entry, item);
}

void CItemTreeView::RefreshChildren(const CFolderBase& folder)
{
    QTreeWidgetItem* entry = FindEntry(folder);
    if (!entry || !entry->data(0, FilledRole).toBool())
    {
        // Not shown yet: the entry only needs its expand box right.
        if (entry && entry != invisibleRootItem())
            entry->setChildIndicatorPolicy(folder.GetChildCount() > 0
                                               ? QTreeWidgetItem::ShowIndicator
                                               : QTreeWidgetItem::DontShowIndicatorWhenChildless);
        return;
    }
    // Entries of children that stay are moved over, with their own children and open state.
    std::vector<QTreeWidgetItem*> old;
    while (entry->childCount() > 0)
        old.push_back(entry->takeChild(0));
    QList<QTreeWidgetItem*> children;
    for (size_t i = 0; i < folder.GetChildCount(); ++i)
    {
        CItem* child = folder.GetChild(i);
        QTreeWidgetItem* kept = nullptr;
        for (QTreeWidgetItem*& candidate : old)
            if (candidate && ItemOf(candidate) == child)
            {
                kept = candidate;
                candidate = nullptr;
                break;
            }
        children.append(kept ? kept : MakeEntry(*child));
    }
    for (QTreeWidgetItem* gone : old)
        delete gone;
    entry->addChildren(children);
    for (QTreeWidgetItem* child : children)
        if (child->data(0, FilledRole).toBool() && folder.GetChildCount() > 0)
            if (auto* sub = dynamic_cast<CFolderBase*>(ItemOf(child)); sub && sub->IsOpen())
                child->setExpanded(true);
    if (entry != invisibleRootItem())
        entry->setChildIndicatorPolicy(QTreeWidgetItem::DontShowIndicatorWhenChildless);
}

void CItemTreeView::OnEntryChanged(QTreeWidgetItem* entry)
{
    if (m_Decorating)
        return;
    CItem* item = ItemOf(entry);
    if (!item || entry->text(0) == ToQString(item->GetCaption()))
        return;
    const QString caption = entry->text(0);
    // The entry shows the stored caption until the window has renamed the item.
    Decorate(entry, *item);
    emit RenameRequested(item, caption);
}

bool CItemTreeView::DropPlace(const QPoint& at, CFolderBase*& target, size_t& index) const
{
    QTreeWidgetItem* over = itemAt(at);
    CItem* overItem = ItemOf(over);
    index = SIZE_MAX;
    if (!over)
    {
        target = m_Root;
        return target != nullptr;
    }
    const QRect rect = visualItemRect(over);
    const int y = at.y();
    auto* overFolder = dynamic_cast<CFolderBase*>(overItem);
    // The middle of a folder's row drops into it; above or below a row drops beside it.
    const bool into =
        overFolder && y > rect.top() + rect.height() / 4 && y < rect.bottom() - rect.height() / 4;
    if (into)
    {
        target = overFolder;
        return true;
    }
    target = overItem->GetParent();
    if (!target)
        return false;
    index = target->IndexOf(*overItem);
    if (y >= rect.center().y())
        ++index;
    return true;
}

bool CItemTreeView::PlanDrop(const CItem& dragged, const QPoint& at, CFolderBase*& target,
                             size_t& index) const
{
    if (!DropPlace(at, target, index) || target == &dragged || target->IsDescendantOf(dragged))
        return false;
    // Within the same folder the item's own place does not count.
    if (target == dragged.GetParent() && index != SIZE_MAX && index > target->IndexOf(dragged))
        --index;
    return true;
}

void CItemTreeView::dragMoveEvent(QDragMoveEvent* event)
{
    QTreeWidget::dragMoveEvent(event);
    CFolderBase* target = nullptr;
    size_t index = 0;
    CItem* dragged = CurrentItem();
    if (event->source() == this && dragged && PlanDrop(*dragged, event->position().toPoint(), target, index))
        event->acceptProposedAction();
    else
        event->ignore();
}

void CItemTreeView::dropEvent(QDropEvent* event)
{
    CFolderBase* target = nullptr;
    size_t index = 0;
    CItem* dragged = CurrentItem();
    // The tree never moves its own entries: the window moves the item and the tree follows.
    event->setDropAction(Qt::IgnoreAction);
    event->accept();
    stopAutoScroll();
    setState(QAbstractItemView::NoState);
    if (event->source() == this && dragged && PlanDrop(*dragged, event->position().toPoint(), target, index))
        emit MoveRequested(dragged, target, index);
}
