#pragma once
// The cards of a folder's children: one card per folder or note with its icon, caption and, for
// a note, the beginning of its text. Shown in place of the editor while a folder is selected;
// opening a card selects its item in the tree.
#include <QListWidget>

class CFolderBase;
class CItem;

class CFolderCardView : public QListWidget
{
    Q_OBJECT

public:
    explicit CFolderCardView(QWidget* parent = nullptr);

    // Card size in pixels ("FolderListCardWidth", "FolderListCardHeight").
    void SetCardSize(int width, int height);
    void ShowFolder(CFolderBase* folder);
    CFolderBase* Folder() const { return m_Folder; }
    static CItem* ItemOf(const QListWidgetItem* card);

signals:
    void ItemActivated(CItem* item);

private:
    // The first lines of a note's text, as much as a card shows.
    static QString Preview(CItem& item);

    CFolderBase* m_Folder = nullptr;
    QSize m_CardSize{200, 150};
};
