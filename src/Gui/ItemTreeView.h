#pragma once
// The folder and note tree of the open document. Entries are made when their folder is first
// shown open, so a document of any size starts as fast as a small one. An entry shows its item's
// icon, text and background colours and the priority, task and read-only marks of its extended
// data. Renaming in place and dropping entries onto folders are handed to the window as requests:
// the window changes the document and the tree follows.
#include <QTreeWidget>

class CFolderBase;
class CItem;

class CItemTreeView : public QTreeWidget
{
    Q_OBJECT

public:
    explicit CItemTreeView(QWidget* parent = nullptr);

    // Shows the children of `root` (null: an empty tree).
    void ShowRoot(CFolderBase* root);

    static CItem* ItemOf(const QTreeWidgetItem* entry);
    CItem* CurrentItem() const { return ItemOf(currentItem()); }
    // The entry of `item` among those made so far, or null.
    QTreeWidgetItem* FindEntry(const CItem& item) const;
    // The entry of `item`, making the entries of its folders and opening them on the way.
    QTreeWidgetItem* Reveal(const CItem& item);
    void SelectItem(const CItem& item);

    // Redraws the entry of `item` after its caption or marks changed.
    void RefreshItem(const CItem& item);
    // Rebuilds the child entries of `folder` after children were added, removed or moved,
    // keeping the open state of the entries that stay.
    void RefreshChildren(const CFolderBase& folder);

    // The icon of an item as the tree draws it, also used by the card view.
    static QIcon ItemIcon(const CItem& item, const QStyle* style);
    // The icon of a folder or note with this extended data (null: none).
    static QIcon ItemIconFor(bool folder, const class CItemExtendedData* data, bool recycleBin,
                             const QStyle* style);

    // Where `dragged` goes when dropped at `at` (viewport coordinates): into the folder whose
    // row's middle is there, else before or after the row's item, else at the end of the top
    // level. `index` counts without the dragged item; false when it cannot go there.
    bool PlanDrop(const CItem& dragged, const QPoint& at, CFolderBase*& target, size_t& index) const;

signals:
    void RenameRequested(CItem* item, const QString& caption);
    // `index` is the position among the target's children, SIZE_MAX to append.
    void MoveRequested(CItem* item, CFolderBase* target, size_t index);

protected:
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    QTreeWidgetItem* MakeEntry(CItem& item);
    void Decorate(QTreeWidgetItem* entry, const CItem& item);
    void FillChildren(QTreeWidgetItem* entry, CFolderBase& folder);
    bool DropPlace(const QPoint& at, CFolderBase*& target, size_t& index) const;
    void OnEntryChanged(QTreeWidgetItem* entry);

    CFolderBase* m_Root = nullptr;
    bool m_Decorating = false;
};
