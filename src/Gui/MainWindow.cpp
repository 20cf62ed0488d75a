#include "Gui/MainWindow.h"

#include "App/AppIdentity.h"
#include "App/RunningInstance.h"
#include "Document/DBFolder.h"
#include "Document/DBNote.h"
#include "Document/DataCenter.h"
#include "Document/DefaultFolders.h"
#include "Document/ItemRecordFormat.h"
#include "Document/NoteBase.h"
#include "Gui/FolderCardView.h"
#include "Gui/FxEditWidget.h"
#include "Gui/ItemTreeView.h"
#include "Gui/QtText.h"
#include "Gui/ToolbarDialog.h"
#include "Gui/TrayIcon.h"
#include "Gui/WindowPlacement.h"
#include "Prefs/Preferences.h"
#include "Shared/Base/MessageBox.h"
#include "Shared/LanguagesMgr/LanguageModule.h"

#include <QActionGroup>
#include <QCloseEvent>
#include <QColorDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QStyle>
#include <QSystemTrayIcon>
#include <QTimer>
#include <QToolBar>
#include <QWindowStateChangeEvent>

namespace
{
uint32_t ToColourRef(const QColor& colour)
{
    return static_cast<uint32_t>(colour.red()) | (static_cast<uint32_t>(colour.green()) << 8) |
           (static_cast<uint32_t>(colour.blue()) << 16);
}

QColor FromColourRef(uint32_t colour)
{
    return QColor(static_cast<int>(colour & 0xFF), static_cast<int>((colour >> 8) & 0xFF),
                  static_cast<int>((colour >> 16) & 0xFF));
}

constexpr int PriorityLevels = 5;
constexpr int ChoosableIconCount = 12;
} // namespace

CMainWindow::CMainWindow(const CLanguageModule* language, CPreferences* preferences, QWidget* parent)
    : QMainWindow(parent), m_Language(language), m_Preferences(preferences), m_Tree(new CItemTreeView),
      m_Pane(new QStackedWidget), m_Editor(new CFxEditWidget(language)), m_Cards(new CFolderCardView)
{
    // Running copies know each other by this name.
    setObjectName(ToQString(kMainWindowClassName));
    setWindowIcon(style()->standardIcon(QStyle::SP_FileDialogDetailedView));
    m_Editor->Edit().SetReadOnly(true);
    m_Pane->addWidget(m_Editor);
    m_Pane->addWidget(m_Cards);

    auto* splitter = new QSplitter;
    splitter->addWidget(m_Tree);
    splitter->addWidget(m_Pane);
    splitter->setStretchFactor(1, 3);
    const int treeWidth = m_Preferences ? m_Preferences->Layout().mainWndTreeWidth : 250;
    splitter->setSizes({treeWidth, 1040 - treeWidth});
    if (m_Preferences)
    {
        m_Cards->SetCardSize(m_Preferences->Layout().folderListCardWidth,
                             m_Preferences->Layout().folderListCardHeight);
        connect(splitter, &QSplitter::splitterMoved, this,
                [this, splitter] { m_Preferences->Layout().mainWndTreeWidth = splitter->sizes().value(0); });
    }
    setCentralWidget(splitter);

    m_StatusCounts = new QLabel;
    statusBar()->addPermanentWidget(m_StatusCounts);
    BuildMenus();
    BuildToolbar();
    m_Tray = new CTrayIcon(*this);
    if (m_Preferences)
    {
        m_Tray->Update(m_Preferences->SysTray().show);
        SetAlwaysOnTop(m_Preferences->SysTray().alwaysOnTop);
    }

    connect(m_Tree, &QTreeWidget::currentItemChanged, this,
            [this](QTreeWidgetItem* current, QTreeWidgetItem*) { ShowItem(CItemTreeView::ItemOf(current)); });
    connect(m_Tree, &CItemTreeView::RenameRequested, this,
            [this](CItem* item, const QString& caption) { RenameItem(*item, caption); });
    connect(m_Tree, &CItemTreeView::MoveRequested, this,
            [this](CItem* item, CFolderBase* target, size_t index) { MoveItem(*item, *target, index); });
    connect(m_Cards, &CFolderCardView::ItemActivated, this, [this](CItem* item) { SelectItem(*item); });
    // The item menu is the tree's context menu too, for the item under the mouse.
    m_Tree->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_Tree, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& at)
            {
                if (QTreeWidgetItem* entry = m_Tree->itemAt(at))
                    m_Tree->setCurrentItem(entry);
                UpdateActions();
                Menu(u"MENU_ITEM")->exec(m_Tree->viewport()->mapToGlobal(at));
            });
    connect(m_Editor, &CFxEditWidget::StatusTextChanged, this,
            [this](const QString& text) { statusBar()->showMessage(text); });
    resize(1040, 680);
    RestoreWindowPlacement(*this, m_Preferences, u"MainWnd");
    ShowDocument(nullptr);
}

CMainWindow::~CMainWindow() = default;

QString CMainWindow::Text(std::u16string_view key) const
{
    return m_Language ? ToQString(m_Language->GetString(key)) : QString();
}

// Menus and named actions

QMenu* CMainWindow::Menu(std::u16string_view key) const
{
    const auto found = m_Menus.find(key);
    return found == m_Menus.end() ? nullptr : found->second;
}

QAction* CMainWindow::AddAction(std::u16string_view menuKey, const QString& name, const QString& text,
                                std::function<void()> run, const QKeySequence& shortcut)
{
    if (m_Actions.count(name) != 0)
        return nullptr;
    auto* action = new QAction(text, this);
    action->setObjectName(name);
    if (!shortcut.isEmpty())
        action->setShortcut(shortcut);
    connect(action, &QAction::triggered, this, [run = std::move(run)] { run(); });
    if (QMenu* menu = Menu(menuKey))
        menu->addAction(action);
    else
        addAction(action); // shortcuts of commands outside the menus still work
    m_Actions[name] = action;
    m_ActionOrder.push_back(action);
    if (m_Toolbar && m_ToolbarWanted.contains(name))
        RebuildToolbar();
    return action;
}

QAction* CMainWindow::FindAction(const QString& name) const
{
    const auto found = m_Actions.find(name);
    return found == m_Actions.end() ? nullptr : found->second;
}

void CMainWindow::BuildMenus()
{
    const auto topMenu = [this](const char16_t* key)
    {
        QMenu* menu = menuBar()->addMenu(Text(key));
        m_Menus.emplace(key, menu);
    };
    for (const char16_t* key :
         {u"MENU_FILE", u"MENU_EIDT", u"MENU_ITEM", u"MENU_VIEW", u"MENU_TOOLS", u"MENU_HELP"})
        topMenu(key);
    BuildFileMenu();
    BuildEditMenu();
    BuildItemMenu();
    BuildViewMenu();
    AddAction(u"MENU_HELP", QStringLiteral("HelpAbout"), Text(u"MENU_HELP_ABOUT"),
              [this]
              {
                  QString text = Text(u"ABOUT_DLG_TEXT");
                  text.replace(QStringLiteral("^version"), ToQString(AppVersionText()));
                  QMessageBox::about(this, QStringLiteral("Quillarium Organizer"), text);
              });
}

void CMainWindow::BuildFileMenu()
{
    AddAction(
        u"MENU_FILE", QStringLiteral("FileNew"), Text(u"MENU_FILE_NEW"), [this] { emit NewFileRequested(); },
        QKeySequence::New);
    AddAction(
        u"MENU_FILE", QStringLiteral("FileOpen"), Text(u"MENU_FILE_OPEN"),
        [this] { emit OpenFileRequested(QString()); }, QKeySequence::Open);
    AddAction(
        u"MENU_FILE", QStringLiteral("FileSave"), Text(u"MENU_FILE_SAVE"), [this] { SaveAll(); },
        QKeySequence::Save);
    AddAction(
        u"MENU_FILE", QStringLiteral("FileSaveAs"), Text(u"MENU_FILE_SAVEAS"),
        [this] { emit SaveAsRequested(); }, QKeySequence::SaveAs);
    AddAction(u"MENU_FILE", QStringLiteral("FileBackupNow"), Text(u"MENU_FILE_BACKUP_NOW"),
              [this] { emit BackupRequested(); });
    QMenu* file = Menu(u"MENU_FILE");
    file->addSeparator();
    m_RecentMenu = file->addMenu(Text(u"MENU_FILE_RECENT"));
    m_Menus.emplace(u"MENU_FILE_RECENT", m_RecentMenu);
    connect(m_RecentMenu, &QMenu::aboutToShow, this, &CMainWindow::FillRecentFilesMenu);
    FillRecentFilesMenu();
    file->addSeparator();
    AddAction(
        u"MENU_FILE", QStringLiteral("FileExit"), Text(u"MENU_FILE_EXIT"), [this] { Exit(); },
        QKeySequence(Qt::CTRL | Qt::Key_Q));
}

void CMainWindow::FillRecentFilesMenu()
{
    m_RecentMenu->clear();
    if (!m_Preferences || m_Preferences->ShellState().recentFiles.Items().empty())
    {
        m_RecentMenu->addAction(Text(u"MENU_FILE_RECENT_EMPTY"))->setEnabled(false);
        return;
    }
    int number = 1;
    for (const std::u16string& path : m_Preferences->ShellState().recentFiles.Items())
    {
        const QString shown = QStringLiteral("&%1 %2").arg(number++).arg(ToQString(path));
        const QString qpath = ToQString(path);
        m_RecentMenu->addAction(shown, this, [this, qpath] { emit OpenFileRequested(qpath); });
    }
}

void CMainWindow::BuildEditMenu()
{
    QMenu* edit = Menu(u"MENU_EIDT");
    const auto editorAction = [this](std::u16string_view menu, const QString& name, const char16_t* key,
                                     int32_t action, const QKeySequence& shortcut = {})
    {
        QAction* added = AddAction(menu, name, Text(key), [this, action] { m_Editor->RunAction(action); });
        // The editor's key bindings run these keys; the menu only shows them.
        if (added && !shortcut.isEmpty())
            added->setText(added->text() + QLatin1Char('\t') + shortcut.toString(QKeySequence::NativeText));
    };
    editorAction(u"MENU_EIDT", QStringLiteral("EditUndo"), u"EDITCTL_UNDO", CFxEdit::ActionUndo,
                 QKeySequence::Undo);
    editorAction(u"MENU_EIDT", QStringLiteral("EditRedo"), u"EDITCTL_REDO", CFxEdit::ActionRedo,
                 QKeySequence::Redo);
    edit->addSeparator();
    editorAction(u"MENU_EIDT", QStringLiteral("EditCut"), u"EDITCTL_CUT", CFxEdit::ActionCut,
                 QKeySequence::Cut);
    editorAction(u"MENU_EIDT", QStringLiteral("EditCopy"), u"EDITCTL_COPY", CFxEdit::ActionCopy,
                 QKeySequence::Copy);
    editorAction(u"MENU_EIDT", QStringLiteral("EditPaste"), u"EDITCTL_PASTE", CFxEdit::ActionPaste,
                 QKeySequence::Paste);
    editorAction(u"MENU_EIDT", QStringLiteral("EditSelectAll"), u"EDITCTL_SELECTALL",
                 CFxEdit::ActionSelectAll, QKeySequence::SelectAll);
    edit->addSeparator();
    editorAction(u"MENU_EIDT", QStringLiteral("EditFind"), u"MENU_EIDT_FIND", CFxEdit::ActionFind);
    editorAction(u"MENU_EIDT", QStringLiteral("EditFindNext"), u"MENU_EIDT_FIND_NEXT",
                 CFxEdit::ActionFindNext);
    editorAction(u"MENU_EIDT", QStringLiteral("EditReplace"), u"MENU_EIDT_REPLACE", CFxEdit::ActionReplace);
    edit->addSeparator();
    for (const char16_t* key : {u"MENU_EIDT_ADVANCED", u"MENU_EIDT_CHANGE_CASE", u"MENU_EIDT_INSERT"})
        m_Menus.emplace(key, edit->addMenu(Text(key)));
    editorAction(u"MENU_EIDT_ADVANCED", QStringLiteral("EditLineUp"), u"MENU_EIDT_ADVANCED_LINEUP",
                 CFxEdit::ActionLineUp);
    editorAction(u"MENU_EIDT_ADVANCED", QStringLiteral("EditLineDown"), u"MENU_EIDT_ADVANCED_LINEDOWN",
                 CFxEdit::ActionLineDown);
    editorAction(u"MENU_EIDT_CHANGE_CASE", QStringLiteral("EditUpperCase"), u"MENU_EIDT_CHANGE_CASE_UPPER",
                 CFxEdit::ActionUpperCase);
    editorAction(u"MENU_EIDT_CHANGE_CASE", QStringLiteral("EditMixedCase"), u"MENU_EIDT_CHANGE_CASE_MIXED",
                 CFxEdit::ActionMixedCase);
    editorAction(u"MENU_EIDT_CHANGE_CASE", QStringLiteral("EditLowerCase"), u"MENU_EIDT_CHANGE_CASE_LOWER",
                 CFxEdit::ActionLowerCase);
    editorAction(u"MENU_EIDT_INSERT", QStringLiteral("EditDateStamp"), u"MENU_EIDT_STAMP_DATE",
                 CFxEdit::ActionDateStamp);
    editorAction(u"MENU_EIDT_INSERT", QStringLiteral("EditTimeStamp"), u"MENU_EIDT_STAMP_TIME",
                 CFxEdit::ActionTimeStamp);
}

void CMainWindow::BuildItemMenu()
{
    AddAction(
        u"MENU_ITEM", QStringLiteral("ItemNewFolder"), Text(u"MENU_ITEM_NEW_FOLDER"), [this] { NewFolder(); },
        QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N));
    AddAction(
        u"MENU_ITEM", QStringLiteral("ItemNewNote"), Text(u"MENU_ITEM_NEW_NOTE"), [this] { NewNote(); },
        QKeySequence(Qt::CTRL | Qt::Key_T));
    AddAction(
        u"MENU_ITEM", QStringLiteral("ItemRename"), Text(u"MENU_ITEM_RENAME"),
        [this]
        {
            if (QTreeWidgetItem* entry = m_Tree->currentItem())
                m_Tree->editItem(entry);
        },
        QKeySequence(Qt::Key_F2));
    AddAction(u"MENU_ITEM", QStringLiteral("ItemDelete"), Text(u"MENU_ITEM_DELETE"),
              [this]
              {
                  if (CItem* item = CurrentItem())
                      DeleteItem(*item);
              });
    // Delete works in the tree only: in the editor the key deletes text.
    auto* deleteKey = new QAction(m_Tree);
    deleteKey->setShortcut(QKeySequence::Delete);
    deleteKey->setShortcutContext(Qt::WidgetShortcut);
    connect(deleteKey, &QAction::triggered, FindAction(QStringLiteral("ItemDelete")), &QAction::trigger);
    m_Tree->addAction(deleteKey);
    Menu(u"MENU_ITEM")->addSeparator();

    QMenu* item = Menu(u"MENU_ITEM");
    QMenu* colour = item->addMenu(Text(u"MENU_ITEM_COLOR"));
    m_Menus.emplace(u"MENU_ITEM_COLOR", colour);
    AddAction(u"MENU_ITEM_COLOR", QStringLiteral("ItemColourText"),
              Text(u"MENU_ITEM_COLOR") + QStringLiteral("..."),
              [this]
              {
                  CItem* current = CurrentItem();
                  const CItemExtendedData* data = current ? current->FindExtendedData() : nullptr;
                  const QColor initial =
                      data && data->TextColour() ? FromColourRef(*data->TextColour()) : QColor(Qt::black);
                  const QColor chosen = QColorDialog::getColor(initial, this);
                  if (chosen.isValid())
                      ApplyExtendedData([&](CItemExtendedData& d) { d.SetTextColour(ToColourRef(chosen)); });
              });
    AddAction(u"MENU_ITEM_COLOR", QStringLiteral("ItemColourNone"), Text(u"MENU_ITEM_NONE"),
              [this] { ApplyExtendedData([](CItemExtendedData& d) { d.SetTextColour(std::nullopt); }); });

    QMenu* icon = item->addMenu(Text(u"MENU_ITEM_ICON"));
    m_Menus.emplace(u"MENU_ITEM_ICON", icon);
    AddAction(u"MENU_ITEM_ICON", QStringLiteral("ItemIcon0"), Text(u"MENU_ITEM_NONE"),
              [this] { ApplyExtendedData([](CItemExtendedData& d) { d.SetIcon(0); }); });
    for (int index = 1; index <= ChoosableIconCount; ++index)
    {
        QAction* action = AddAction(
            u"MENU_ITEM_ICON", QStringLiteral("ItemIcon%1").arg(index), QString(),
            [this, index] { ApplyExtendedData([index](CItemExtendedData& d) { d.SetIcon(index); }); });
        // A note with this icon index shows how the choice looks.
        CItemExtendedData sample;
        sample.SetIcon(index);
        action->setIcon(CItemTreeView::ItemIconFor(false, &sample, false, style()));
        action->setText(QString::number(index));
    }

    QMenu* priority = item->addMenu(Text(u"MENU_ITEM_PRIORITY"));
    m_Menus.emplace(u"MENU_ITEM_PRIORITY", priority);
    for (int level = 0; level <= PriorityLevels; ++level)
        AddAction(u"MENU_ITEM_PRIORITY", QStringLiteral("ItemPriority%1").arg(level),
                  level == 0 ? Text(u"MENU_ITEM_NONE") : QString::number(level),
                  [this, level]
                  { ApplyExtendedData([level](CItemExtendedData& d) { d.SetPriority(level); }); });

    QAction* task = AddAction(u"MENU_ITEM", QStringLiteral("ItemTask"), Text(u"MENU_ITEM_TASK"),
                              [this]
                              {
                                  // Not a task, then an open task, then a done task, then no task again.
                                  ApplyExtendedData([](CItemExtendedData& d)
                                                    { d.SetTaskState((d.TaskState() + 1) % 3); });
                              });
    task->setCheckable(true);
    QAction* readOnly = AddAction(
        u"MENU_ITEM", QStringLiteral("ItemReadOnly"), Text(u"MENU_ITEM_READ_ONLY"),
        [this] { ApplyExtendedData([](CItemExtendedData& d) { d.SetReadOnly(!d.IsReadOnly()); }); });
    readOnly->setCheckable(true);
    connect(item, &QMenu::aboutToShow, this, &CMainWindow::UpdateActions);
}

void CMainWindow::BuildViewMenu()
{
    QAction* toolbar =
        AddAction(u"MENU_VIEW", QStringLiteral("ViewToolbar"), Text(u"MENU_VIEW_TOOLBAR"),
                  [this] { m_Toolbar->setVisible(FindAction(QStringLiteral("ViewToolbar"))->isChecked()); });
    toolbar->setCheckable(true);
    toolbar->setChecked(true);
    QAction* status = AddAction(
        u"MENU_VIEW", QStringLiteral("ViewStatusBar"), Text(u"MENU_VIEW_STATUSBAR"),
        [this] { statusBar()->setVisible(FindAction(QStringLiteral("ViewStatusBar"))->isChecked()); });
    status->setCheckable(true);
    status->setChecked(true);
    AddAction(u"MENU_VIEW", QStringLiteral("ViewCustomizeToolbar"), Text(u"MENU_VIEW_CUSTOMIZE_TOOLBAR"),
              [this]
              {
                  CToolbarDialog dialog(
                      NamedActions(), ToolbarButtons(), DefaultToolbarButtons(),
                      [this](const char16_t* key) { return Text(key); }, this);
                  if (dialog.exec() == QDialog::Accepted)
                      SetToolbarButtons(dialog.Buttons());
              });
    Menu(u"MENU_VIEW")->addSeparator();
    QAction* onTop =
        AddAction(u"MENU_VIEW", QStringLiteral("ViewAlwaysOnTop"), Text(u"MENU_VIEW_ALWAYS_ON_TOP"),
                  [this] { SetAlwaysOnTop(FindAction(QStringLiteral("ViewAlwaysOnTop"))->isChecked()); });
    onTop->setCheckable(true);
}

// The toolbar holds named commands; an empty name stands for a separator.
void CMainWindow::BuildToolbar()
{
    m_Toolbar = addToolBar(QString());
    m_Toolbar->setObjectName(QStringLiteral("MainToolbar"));
    m_Toolbar->setMovable(false);
    m_Toolbar->setIconSize(QSize(20, 20));
    const std::pair<const char*, QStyle::StandardPixmap> icons[] = {
        {"FileNew", QStyle::SP_FileIcon},
        {"FileOpen", QStyle::SP_DialogOpenButton},
        {"FileSave", QStyle::SP_DialogSaveButton},
        {"ItemNewFolder", QStyle::SP_FileDialogNewFolder},
        {"ItemNewNote", QStyle::SP_FileDialogDetailedView},
        {"ItemDelete", QStyle::SP_TrashIcon},
        {"EditUndo", QStyle::SP_ArrowBack},
        {"EditRedo", QStyle::SP_ArrowForward},
        {"EditFind", QStyle::SP_FileDialogContentsView},
        {"ViewAlwaysOnTop", QStyle::SP_TitleBarShadeButton},
        {"HelpAbout", QStyle::SP_MessageBoxInformation}};
    for (const auto& [name, pixmap] : icons)
        if (QAction* action = FindAction(QLatin1String(name)))
            action->setIcon(style()->standardIcon(pixmap));
    m_ToolbarWanted = m_Preferences
                          ? ToolbarButtonsFromText(ToQString(m_Preferences->Layout().mainWndToolbarButtons),
                                                   DefaultToolbarButtons())
                          : DefaultToolbarButtons();
    RebuildToolbar();
}

QStringList CMainWindow::DefaultToolbarButtons()
{
    return {QStringLiteral("FileNew"),       QStringLiteral("FileOpen"),
            QStringLiteral("FileSave"),      QString(),
            QStringLiteral("ItemNewFolder"), QStringLiteral("ItemNewNote"),
            QStringLiteral("ItemDelete"),    QString(),
            QStringLiteral("EditUndo"),      QStringLiteral("EditRedo"),
            QStringLiteral("EditFind")};
}

void CMainWindow::SetToolbarButtons(const QStringList& names)
{
    m_ToolbarWanted = names;
    if (m_Preferences)
        m_Preferences->Layout().mainWndToolbarButtons =
            names == DefaultToolbarButtons() ? std::u16string() : ToU16(ToolbarButtonsToText(names));
    RebuildToolbar();
}

// Names of commands not added yet are kept in the wanted list: they appear once they exist.
void CMainWindow::RebuildToolbar()
{
    m_Toolbar->clear();
    m_ToolbarButtons.clear();
    for (const QString& name : m_ToolbarWanted)
    {
        if (name.isEmpty())
        {
            m_Toolbar->addSeparator();
            m_ToolbarButtons << name;
        }
        else if (QAction* action = FindAction(name))
        {
            m_Toolbar->addAction(action);
            m_ToolbarButtons << name;
        }
    }
}

// The document

void CMainWindow::ShowDocument(CDataCenter* center)
{
    SaveCurrentNote();
    m_CurrentNote = nullptr;
    m_Editor->SetDocument(CRichTextDocument());
    m_Editor->Edit().SetReadOnly(true);
    m_Cards->ShowFolder(nullptr);
    m_Center = center;
    m_Tree->ShowRoot(center ? center->GetRoot() : nullptr);
    QString title = QStringLiteral("Quillarium Organizer");
    if (center)
    {
        title = QFileInfo(ToQString(center->GetFilePath())).fileName() + QStringLiteral(" - ") + title;
        center->SetStatusTextSink([this](const std::u16string& text)
                                  { statusBar()->showMessage(ToQString(text)); });
    }
    setWindowTitle(title);
    m_Pane->setCurrentWidget(m_Editor);
    UpdateStatus();
    UpdateActions();
    emit DocumentShown(center);
}

CItem* CMainWindow::CurrentItem() const
{
    return m_Tree->CurrentItem();
}

void CMainWindow::SelectItem(const CItem& item)
{
    m_Tree->SelectItem(item);
}

void CMainWindow::ShowItem(CItem* item)
{
    SaveCurrentNote();
    m_CurrentNote = dynamic_cast<CNoteBase*>(item);
    if (auto* folder = dynamic_cast<CFolderBase*>(item))
    {
        m_Cards->ShowFolder(folder);
        m_Pane->setCurrentWidget(m_Cards);
    }
    else
    {
        const CRichTextDocument* text = m_CurrentNote ? m_CurrentNote->GetRichText() : nullptr;
        // A note whose text cannot be read stays read-only, so that nothing overwrites the stored one.
        m_Editor->SetDocument(text ? *text : CRichTextDocument());
        const CItemExtendedData* data = item ? item->FindExtendedData() : nullptr;
        const bool markedReadOnly = data && data->IsReadOnly();
        m_Editor->Edit().SetReadOnly(text == nullptr || markedReadOnly || !m_Center ||
                                     m_Center->IsReadOnly());
        if (!text)
            m_CurrentNote = nullptr;
        m_Pane->setCurrentWidget(m_Editor);
    }
    UpdateActions();
    emit CurrentItemChanged(item);
}

bool CMainWindow::SaveCurrentNote()
{
    if (!m_Center || !m_CurrentNote || !m_Editor->Edit().IsModified())
        return true;
    CRichTextDocument* text = m_CurrentNote->GetRichText();
    if (!text)
        return false;
    *text = m_Editor->Edit().GetDocument();
    m_Center->MarkChanged(*m_CurrentNote, ItemRecordFormat::RichTextField);
    if (!m_Center->Save())
        return false;
    m_Editor->Edit().SetModified(false);
    return true;
}

bool CMainWindow::SaveAll()
{
    if (!m_Center)
        return true;
    const bool pending = m_Center->HasPendingChanges() || (m_CurrentNote && m_Editor->Edit().IsModified());
    if (pending)
    {
        // Drawn at once: the save runs before the event loop would draw it.
        statusBar()->showMessage(Text(u"MAIN_WND_STATUS_SAVING"));
        statusBar()->repaint();
    }
    const bool noteSaved = SaveCurrentNote();
    const bool saved = m_Center->Save() && noteSaved;
    if (pending)
        statusBar()->showMessage(Text(u"MAIN_WND_STATUS_READY"));
    return saved;
}

QString CMainWindow::NewCaption(std::u16string_view key) const
{
    return Text(key);
}

// New items go into the selected folder, or beside the selected note.
CFolderBase* CMainWindow::TargetFolderForNew() const
{
    CItem* current = CurrentItem();
    if (auto* folder = dynamic_cast<CFolderBase*>(current))
        return folder;
    if (current && current->GetParent())
        return current->GetParent();
    return m_Center ? m_Center->GetRoot() : nullptr;
}

CItem* CMainWindow::NewFolder()
{
    CFolderBase* parent = TargetFolderForNew();
    if (!m_Center || !parent || m_Center->IsReadOnly() || !parent->LoadChildren(EChildKind::Any))
        return nullptr;
    CItem* added = m_Center->AddFolder(*parent, ToU16(NewCaption(u"ITEM_NEW_FOLDER_CAPTION")));
    if (!added)
        return nullptr;
    if (m_Preferences)
        ++m_Preferences->DocumentState().folderCounter;
    AfterTreeChange(parent);
    SelectItem(*added);
    return added;
}

CItem* CMainWindow::NewNote()
{
    CFolderBase* parent = TargetFolderForNew();
    if (!m_Center || !parent || m_Center->IsReadOnly() || !parent->LoadChildren(EChildKind::Any))
        return nullptr;
    CItem* added = m_Center->AddNote(*parent, ToU16(NewCaption(u"ITEM_NEW_NOTE_CAPTION")), u"");
    if (!added)
        return nullptr;
    if (m_Preferences)
        ++m_Preferences->DocumentState().noteCounter;
    AfterTreeChange(parent);
    SelectItem(*added);
    return added;
}

bool CMainWindow::RenameItem(CItem& item, const QString& caption)
{
    const QString trimmed = caption.trimmed();
    if (!m_Center || m_Center->IsReadOnly() || trimmed.isEmpty())
        return false;
    item.SetCaption(ToU16(trimmed));
    m_Center->MarkChanged(item, ItemRecordFormat::CaptionField);
    const bool saved = m_Center->Save();
    m_Tree->RefreshItem(item);
    if (item.GetParent() && m_Cards->Folder() == item.GetParent())
        m_Cards->ShowFolder(item.GetParent());
    return saved;
}

bool CMainWindow::MoveItem(CItem& item, CFolderBase& target, size_t index)
{
    if (!m_Center || m_Center->IsReadOnly())
        return false;
    CFolderBase* from = item.GetParent();
    if (!from || !target.LoadChildren(EChildKind::Any))
        return false;
    // Default folders stay where they are, as they cannot be cut.
    if (auto* folder = dynamic_cast<CFolderBase*>(&item); folder && !folder->CanCut(true))
        return false;
    SaveCurrentNote();
    const bool moved = item.MoveTo(target, index) && m_Center->Save();
    AfterTreeChange(from);
    if (&target != from)
        AfterTreeChange(&target);
    SelectItem(item);
    return moved;
}

CFolderBase* CMainWindow::RecycleBin() const
{
    CFolderBase* root = m_Center ? m_Center->GetRoot() : nullptr;
    if (!root)
        return nullptr;
    for (size_t i = 0; i < root->GetChildCount(); ++i)
        if (auto* folder = dynamic_cast<CFolderBase*>(root->GetChild(i));
            folder && folder->GetDefaultFolderKind() == RecycleBinFolderKind)
            return folder;
    return nullptr;
}

bool CMainWindow::IsInRecycleBin(const CItem& item) const
{
    const CFolderBase* bin = RecycleBin();
    return bin && item.IsDescendantOf(*bin);
}

bool CMainWindow::DeleteItem(CItem& item, bool ask)
{
    if (!m_Center || m_Center->IsReadOnly() || !item.GetParent())
        return false;
    // Shows the default folders' message when the item is or holds one.
    if (!item.CanDelete(false, true))
        return false;
    CFolderBase* bin = RecycleBin();
    CFolderBase* from = item.GetParent();
    if (bin && !IsInRecycleBin(item))
        return MoveItem(item, *bin, SIZE_MAX);
    if (ask)
    {
        QString question = Text(u"MSG_DELETE_PERMANENTLY");
        question.replace(QStringLiteral("^caption"), ToQString(item.GetCaption()));
        if (QMessageBox::question(this, QStringLiteral("Quillarium Organizer"), question) != QMessageBox::Yes)
            return false;
    }
    if (m_CurrentNote && (m_CurrentNote == &item || m_CurrentNote->IsDescendantOf(item)))
    {
        m_CurrentNote = nullptr;
        m_Editor->SetDocument(CRichTextDocument());
        m_Editor->Edit().SetReadOnly(true);
    }
    if (m_Cards->Folder() && (m_Cards->Folder() == &item || m_Cards->Folder()->IsDescendantOf(item)))
        m_Cards->ShowFolder(nullptr);
    const bool deleted = m_Center->DeleteItem(item);
    AfterTreeChange(from);
    return deleted;
}

void CMainWindow::ApplyExtendedData(const std::function<void(CItemExtendedData&)>& change)
{
    CItem* item = CurrentItem();
    if (!m_Center || !item || m_Center->IsReadOnly())
        return;
    CItemExtendedData* data = item->GetExtendedData(true);
    if (!data)
        return;
    change(*data);
    item->NotifyChange(EItemChange::Content);
    m_Center->MarkChanged(*item, ItemRecordFormat::AttributesField);
    m_Center->Save();
    m_Tree->RefreshItem(*item);
    if (item == m_CurrentNote)
        m_Editor->Edit().SetReadOnly(data->IsReadOnly() || m_Center->IsReadOnly());
    UpdateActions();
}

void CMainWindow::AfterTreeChange(CFolderBase* changedFolder)
{
    if (changedFolder)
    {
        m_Tree->RefreshChildren(*changedFolder);
        if (m_Cards->Folder() == changedFolder)
            m_Cards->ShowFolder(changedFolder);
    }
    UpdateStatus();
}

void CMainWindow::UpdateActions()
{
    CItem* item = CurrentItem();
    const bool writable = m_Center && !m_Center->IsReadOnly();
    const CItemExtendedData* data = item ? item->FindExtendedData() : nullptr;
    for (const char* name : {"ItemNewFolder", "ItemNewNote"})
        FindAction(QLatin1String(name))->setEnabled(writable);
    for (const char* name : {"ItemRename", "ItemDelete", "ItemTask", "ItemReadOnly"})
        FindAction(QLatin1String(name))->setEnabled(writable && item);
    for (const char16_t* key : {u"MENU_ITEM_COLOR", u"MENU_ITEM_ICON", u"MENU_ITEM_PRIORITY"})
        Menu(key)->setEnabled(writable && item);
    FindAction(QStringLiteral("ItemTask"))->setChecked(data && data->TaskState() != 0);
    FindAction(QStringLiteral("ItemReadOnly"))->setChecked(data && data->IsReadOnly());
    for (const char* name : {"FileSave", "FileSaveAs", "FileBackupNow"})
        FindAction(QLatin1String(name))->setEnabled(m_Center != nullptr);
}

void CMainWindow::UpdateStatus()
{
    if (!m_Center || !m_Center->GetRoot())
    {
        m_StatusCounts->clear();
        return;
    }
    // Counted over what is loaded: a big document is not read whole for the status bar.
    size_t notes = 0;
    size_t folders = 0;
    m_Center->GetRoot()->CountItems(notes, folders, CountItemsDeep);
    QString counts = Text(u"MAIN_WND_STATUS_COUNTS");
    counts.replace(QStringLiteral("^n"), QString::number(notes))
        .replace(QStringLiteral("^f"), QString::number(folders));
    if (m_Center->IsReadOnly())
        counts += QStringLiteral("  |  ") + Text(u"MAIN_WND_STATUS_READ_ONLY");
    m_StatusCounts->setText(counts);
    if (statusBar()->currentMessage().isEmpty())
        statusBar()->showMessage(Text(u"MAIN_WND_STATUS_READY"));
}

// Running copies, tray and window state

int CMainWindow::AnswerRunningInstanceQuery(uint32_t messageKind, const std::string& payload)
{
    const std::u16string path = m_Center ? m_Center->GetFilePath() : std::u16string();
    const int answer = ::AnswerRunningInstanceQuery(messageKind, payload, path);
    if (answer == 1)
        BringToFront();
    return answer;
}

void CMainWindow::BringToFront()
{
    if (m_Tray->IsWindowHidden())
    {
        m_Tray->ShowWindow(); // comes back here once the tray state is cleared
        return;
    }
    if (isMinimized())
        showNormal();
    else if (!isVisible())
        show();
    raise();
    activateWindow();
}

void CMainWindow::ApplyPreferences()
{
    if (!m_Preferences)
        return;
    m_Tray->Update(m_Preferences->SysTray().show);
    if (IsAlwaysOnTop() != m_Preferences->SysTray().alwaysOnTop)
        SetAlwaysOnTop(m_Preferences->SysTray().alwaysOnTop);
    m_Cards->SetCardSize(m_Preferences->Layout().folderListCardWidth,
                         m_Preferences->Layout().folderListCardHeight);
    emit PreferencesApplied();
}

bool CMainWindow::IsAlwaysOnTop() const
{
    return windowFlags().testFlag(Qt::WindowStaysOnTopHint);
}

void CMainWindow::SetAlwaysOnTop(bool onTop)
{
    if (m_Preferences)
        m_Preferences->SysTray().alwaysOnTop = onTop;
    if (QAction* action = FindAction(QStringLiteral("ViewAlwaysOnTop")))
        action->setChecked(onTop);
    const bool shown = isVisible();
    setWindowFlag(Qt::WindowStaysOnTopHint, onTop);
    // Changing a window flag hides the window.
    if (shown)
        show();
}

void CMainWindow::Exit()
{
    m_Exiting = true;
    close();
}

void CMainWindow::closeEvent(QCloseEvent* event)
{
    if (!m_Exiting && m_Preferences && m_Preferences->SysTray().closeToTray &&
        QSystemTrayIcon::isSystemTrayAvailable())
    {
        SaveAll();
        m_Tray->HideWindow();
        event->ignore();
        return;
    }
    SaveAll();
    SaveWindowPlacement(*this, m_Preferences, u"MainWnd");
    QMainWindow::closeEvent(event);
    emit Closed();
}

void CMainWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && isMinimized() && m_Preferences &&
        m_Preferences->SysTray().minimizeToTray && QSystemTrayIcon::isSystemTrayAvailable())
        QTimer::singleShot(0, this, [this] { m_Tray->HideWindow(); });
}
