#pragma once
// The main window: the folder and note tree of the open document on the left, the editor of the
// selected note on the right, menus with texts from the language module. A note's edited text
// is written back when another item is selected and when the window closes.
#include <QMainWindow>

class CDataCenter;
class CFolderBase;
class CFxEditWidget;
class CItem;
class CLanguageModule;
class CNoteBase;
class QTreeWidget;
class QTreeWidgetItem;

class CMainWindow : public QMainWindow
{
    Q_OBJECT

public:
    CMainWindow(CDataCenter& center, const CLanguageModule* language, QWidget* parent = nullptr);

    QTreeWidget* Tree() const { return m_Tree; }
    CFxEditWidget* Editor() const { return m_Editor; }
    // Writes the shown note's text back when it was edited; false when the save failed.
    bool SaveCurrentNote();
    // The tree entry showing `item`, among those created so far.
    QTreeWidgetItem* FindTreeItem(const CItem& item) const;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QString Text(const char16_t* key) const;
    void BuildMenus();
    void FillChildren(QTreeWidgetItem* parent, CFolderBase& folder);
    QTreeWidgetItem* MakeTreeItem(CItem& item);
    void OnItemExpanded(QTreeWidgetItem* treeItem);
    void OnCurrentItemChanged(QTreeWidgetItem* current);

    CDataCenter& m_Center;
    const CLanguageModule* m_Language;
    QTreeWidget* m_Tree;
    CFxEditWidget* m_Editor;
    CNoteBase* m_CurrentNote = nullptr;
};
