#pragma once
// The main window: the folder and note tree of the open document on the left; on the right the
// editor of the selected note, or the cards of the selected folder's children. Menus and the
// toolbar carry texts from the language module. Every command lives in a named action
// (FindAction), and other parts of the program add theirs with AddAction, so menus, toolbar
// and tests reach all commands the same way.
//
// A note's edited text is written when another item is selected, on autosave and when the
// window closes; captions, moves and deletions are written at once.
#include <QMainWindow>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

class CDataCenter;
class CFolderBase;
class CFolderCardView;
class CFxEditWidget;
class CItem;
class CItemTreeView;
class CLanguageModule;
class CNoteBase;
class CPreferences;
class CTrayIcon;
class QLabel;
class QStackedWidget;
class QToolBar;

class CMainWindow : public QMainWindow
{
    Q_OBJECT

public:
    // `preferences` may be null (tests of the window alone): the window then keeps its
    // settings to itself. Both objects outlive the window.
    CMainWindow(const CLanguageModule* language, CPreferences* preferences, QWidget* parent = nullptr);
    ~CMainWindow() override;

    // Shows the document of `center` (null: none), after writing the shown note back.
    void ShowDocument(CDataCenter* center);
    CDataCenter* Center() const { return m_Center; }
    const CLanguageModule* Language() const { return m_Language; }
    CPreferences* Preferences() const { return m_Preferences; }

    CItemTreeView* Tree() const { return m_Tree; }
    CFxEditWidget* Editor() const { return m_Editor; }
    CFolderCardView* Cards() const { return m_Cards; }
    CTrayIcon* Tray() const { return m_Tray; }
    CItem* CurrentItem() const;
    void SelectItem(const CItem& item);

    // Menus by their language key: "MENU_FILE", "MENU_EIDT", "MENU_ITEM", "MENU_VIEW",
    // "MENU_TOOLS", "MENU_HELP".
    QMenu* Menu(std::u16string_view key) const;
    // Adds a command to the menu `menuKey` (null: no menu) under a unique `name`; the toolbar's
    // customisation offers every named command. Returns null when the name is taken.
    QAction* AddAction(std::u16string_view menuKey, const QString& name, const QString& text,
                       std::function<void()> run, const QKeySequence& shortcut = {});
    QAction* FindAction(const QString& name) const;
    // The named commands in the order they were added.
    const std::vector<QAction*>& NamedActions() const { return m_ActionOrder; }
    // The language module's text for `key`.
    QString Text(std::u16string_view key) const;

    // Item commands as the menus run them; each is written to the file at once.
    CItem* NewFolder();
    CItem* NewNote();
    bool RenameItem(CItem& item, const QString& caption);
    bool MoveItem(CItem& item, CFolderBase& target, size_t index);
    // Moves the item into the recycle bin; inside the bin, deletes it after asking.
    bool DeleteItem(CItem& item, bool ask = true);

    // Writes the shown note's text back when it was edited; false when the save failed.
    bool SaveCurrentNote();
    // Writes everything pending: the shown note and any other changed field.
    bool SaveAll();

    // Another copy's question whether this window shows the file; on 1 it comes to the front.
    int AnswerRunningInstanceQuery(uint32_t messageKind, const std::string& payload);
    // Shows the window restored from the tray or from minimised, and in front.
    void BringToFront();
    void SetAlwaysOnTop(bool onTop);
    bool IsAlwaysOnTop() const;
    // Ends the program, past the close-to-tray preference.
    void Exit();

    // The toolbar's commands by name, an empty name for a separator, kept in the preferences;
    // names of commands that do not exist (yet) are left off the toolbar.
    void SetToolbarButtons(const QStringList& names);
    const QStringList& ToolbarButtons() const { return m_ToolbarButtons; }
    static QStringList DefaultToolbarButtons();

    // Takes changed preferences into use (tray icon, always on top, card size) and announces
    // them with PreferencesApplied; a preferences window calls it after writing them.
    void ApplyPreferences();

    // The status bar's permanent text: the document's note and folder counts, read-only state.
    void UpdateStatus();

signals:
    void OpenFileRequested(const QString& path); // empty: ask for the file
    void NewFileRequested();
    void SaveAsRequested();
    void BackupRequested();
    void CurrentItemChanged(CItem* item);
    void PreferencesApplied();
    // ShowDocument ended: the window shows `center`'s tree (null: no document).
    void DocumentShown(CDataCenter* center);
    // The window closed for good (not to the tray): the program ends.
    void Closed();

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void BuildMenus();
    void BuildFileMenu();
    void BuildEditMenu();
    void BuildItemMenu();
    void BuildViewMenu();
    void BuildToolbar();
    void RebuildToolbar();
    void FillRecentFilesMenu();
    void UpdateActions();
    void ShowItem(CItem* item);
    CFolderBase* TargetFolderForNew() const;
    CFolderBase* RecycleBin() const;
    bool IsInRecycleBin(const CItem& item) const;
    void ApplyExtendedData(const std::function<void(class CItemExtendedData&)>& change);
    void AfterTreeChange(CFolderBase* changedFolder);
    QString NewCaption(std::u16string_view key) const;

    const CLanguageModule* m_Language;
    CPreferences* m_Preferences;
    CDataCenter* m_Center = nullptr;
    CItemTreeView* m_Tree;
    QStackedWidget* m_Pane;
    CFxEditWidget* m_Editor;
    CFolderCardView* m_Cards;
    QToolBar* m_Toolbar = nullptr;
    QLabel* m_StatusCounts = nullptr;
    CTrayIcon* m_Tray = nullptr;
    CNoteBase* m_CurrentNote = nullptr;
    std::map<std::u16string, QMenu*, std::less<>> m_Menus;
    std::map<QString, QAction*> m_Actions;
    std::vector<QAction*> m_ActionOrder;
    QMenu* m_RecentMenu = nullptr;
    QStringList m_ToolbarButtons;
    QStringList m_ToolbarWanted;
    bool m_Exiting = false;
};
