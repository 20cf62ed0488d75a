#include "Gui/DialogCommands.h"

#include "Document/DBFolder.h"
#include "Document/DataCenter.h"
#include "Document/ItemExtendedData.h"
#include "Document/NoteBase.h"
#include "Gui/AlarmEditorDlg.h"
#include "Gui/AlarmReminderDlg.h"
#include "Gui/DialogText.h"
#include "Gui/FilePropertiesDlg.h"
#include "Gui/FxEditWidget.h"
#include "Gui/GlobalSearchDlg.h"
#include "Gui/ItemPropertiesDlg.h"
#include "Gui/ItemTreeView.h"
#include "Gui/MainWindow.h"
#include "Gui/PasswordGeneratorDlg.h"
#include "Gui/PreferencesDlg.h"
#include "Gui/TrayIcon.h"
#include "Prefs/Preferences.h"

#include <QAction>
#include <QKeySequence>
#include <QTreeWidgetItem>

#include <functional>
#include <set>

CDialogCommands::CDialogCommands(CMainWindow& window, const std::u16string& applicationFolder,
                                 const IClock& clock)
    : QObject(&window), m_Window(window), m_ApplicationFolder(applicationFolder), m_Clock(clock),
      m_Alarms(clock, nullptr),
      m_Reminder(new CAlarmReminderDlg(
          m_Alarms, m_AlarmSource, window.Language(),
          [this](const CUInt128& id) -> QString
          {
              CDataCenter* center = m_Window.Center();
              CItem* item = center && center->GetRoot() ? FindItemById(*center->GetRoot(), id) : nullptr;
              return item ? ToQString(item->GetCaption()) : QString();
          },
          &window))
{
    if (m_Window.Editor())
        m_Window.Editor()->SetPreferences(m_Window.Preferences());
    AddActions();
    connect(&m_Window, &CMainWindow::DocumentShown, this, &CDialogCommands::OnDocumentShown);
    connect(m_Reminder, &CAlarmReminderDlg::OpenItem, this,
            [this](const CUInt128& id)
            {
                CDataCenter* center = m_Window.Center();
                if (CItem* item =
                        center && center->GetRoot() ? FindItemById(*center->GetRoot(), id) : nullptr)
                {
                    m_Window.BringToFront();
                    m_Window.SelectItem(*item);
                }
            });
    // Snoozing and dismissing change the alarms' stored fields.
    connect(m_Reminder, &CAlarmReminderDlg::AlarmsChanged, this,
            [this]
            {
                if (CDataCenter* center = m_Window.Center())
                    center->Save();
            });
    connect(m_Reminder, &CAlarmReminderDlg::RemindersDue, this,
            [this](const QString& message) {
                m_Window.Tray()->ShowMessage(LanguageText(m_Window.Language(), u"ALARMREMINDDLG_CAPTION"),
                                             message);
            });
    OnDocumentShown();
    m_Reminder->StartWatching();
}

CDialogCommands::~CDialogCommands() = default;

void CDialogCommands::AddActions()
{
    const CLanguageModule* language = m_Window.Language();
    const auto add = [this, language](const char16_t* menu, const char* name, const char16_t* key,
                                      void (CDialogCommands::*run)(), const QKeySequence& shortcut = {})
    {
        m_Window.AddAction(
            menu, QString::fromLatin1(name), LanguageText(language, key), [this, run] { (this->*run)(); },
            shortcut);
    };
    add(u"MENU_FILE", "FileProperties", u"MENU_FILE_PROPERTIES", &CDialogCommands::RunFileProperties);
    add(u"MENU_ITEM", "ItemAlarms", u"MENU_ITEM_ALARMS", &CDialogCommands::RunItemAlarms);
    add(u"MENU_ITEM", "ItemProperties", u"MENU_ITEM_PROPERTIES", &CDialogCommands::RunItemProperties,
        QKeySequence(Qt::ALT | Qt::Key_Return));
    add(u"MENU_TOOLS", "ToolsGlobalSearch", u"MENU_TOOLS_GLOBAL_SEARCH", &CDialogCommands::RunGlobalSearch,
        QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_F));
    add(u"MENU_TOOLS", "ToolsPasswordGenerator", u"MENU_TOOLS_PWD_GENERATOR",
        &CDialogCommands::RunPasswordGenerator);
    add(u"MENU_TOOLS", "ToolsPreferences", u"MENU_TOOLS_PREFERENCES", &CDialogCommands::RunPreferences);
    add(u"MENU_VIEW", "ViewShowAllItems", u"MENU_VIEW_SHOW_ALL_ITEMS", &CDialogCommands::ClearTreeFilter);
}

void CDialogCommands::OnDocumentShown()
{
    m_Filtered = false;
    CDataCenter* center = m_Window.Center();
    m_AlarmSource.SetRoot(center ? center->GetRoot() : nullptr);
    m_Alarms.SetTree(center && center->GetRoot() ? &m_AlarmSource : nullptr);
    // Alarms that fell due while no document was shown are offered at once.
    m_Reminder->CheckNow();
}

void CDialogCommands::RunGlobalSearch()
{
    CDataCenter* center = m_Window.Center();
    if (!center || !center->GetRoot())
        return;
    // The note being edited is searched as the user sees it.
    m_Window.SaveCurrentNote();
    CGlobalSearchDlg dlg(*center->GetRoot(), m_Window.Preferences(), m_Window.Language(), &m_Window);
    connect(&dlg, &CGlobalSearchDlg::GoToItem, this, [this](CItem* item) { m_Window.SelectItem(*item); });
    connect(&dlg, &CGlobalSearchDlg::FilterTree, this,
            [this, &dlg](const std::vector<CItem*>& items)
            {
                FilterTree(items);
                dlg.accept();
            });
    dlg.exec();
}

void CDialogCommands::RunPasswordGenerator()
{
    CPreferences* prefs = m_Window.Preferences();
    if (!prefs)
        return;
    CFxEditWidget* editor = m_Window.Editor();
    CPasswordGeneratorDlg::SInsertTarget target{
        [editor] { return editor->isVisible() && editor->isEnabled() && !editor->Edit().IsReadOnly(); },
        [editor](const QString& password)
        {
            editor->Edit().InsertText(ToU16(password));
            editor->update();
        }};
    CPasswordGeneratorDlg dlg(*prefs, m_Window.Language(), target, nullptr, &m_Window);
    dlg.exec();
}

void CDialogCommands::RunPreferences()
{
    CPreferences* prefs = m_Window.Preferences();
    if (!prefs)
        return;
    CPreferencesDlg dlg(*prefs, m_Window.Language(), m_ApplicationFolder, &m_Window);
    // The window takes the new values into use and tells the program (timers, backups).
    connect(&dlg, &CPreferencesDlg::Applied, &m_Window, &CMainWindow::ApplyPreferences);
    dlg.exec();
}

void CDialogCommands::RunItemAlarms()
{
    CDataCenter* center = m_Window.Center();
    CItem* item = m_Window.CurrentItem();
    if (!center || !item)
        return;
    CAlarmEditorDlg dlg(*item, m_Clock, m_Window.Language(), &m_Window);
    if (dlg.exec() != QDialog::Accepted)
        return;
    center->Save();
    m_Window.Tree()->RefreshItem(*item);
    m_Reminder->CheckNow();
}

void CDialogCommands::RunItemProperties()
{
    CDataCenter* center = m_Window.Center();
    CItem* item = m_Window.CurrentItem();
    if (!center || !item)
        return;
    m_Window.SaveCurrentNote();
    CItemPropertiesDlg dlg(*item, center->IsReadOnly(), m_Window.Language(), &m_Window);
    if (dlg.exec() != QDialog::Accepted)
        return;
    center->Save();
    m_Window.Tree()->RefreshItem(*item);
    if (item == m_Window.CurrentItem())
    {
        const CItemExtendedData* data = item->FindExtendedData();
        if (dynamic_cast<CNoteBase*>(item))
            m_Window.Editor()->Edit().SetReadOnly(center->IsReadOnly() || (data && data->IsReadOnly()));
    }
    m_Window.UpdateStatus();
}

void CDialogCommands::RunFileProperties()
{
    CDataCenter* center = m_Window.Center();
    if (!center)
        return;
    m_Window.SaveAll();
    CFilePropertiesDlg dlg(*center, m_Window.Language(), &m_Window);
    dlg.exec();
}

void CDialogCommands::FilterTree(const std::vector<CItem*>& items)
{
    CItemTreeView* tree = m_Window.Tree();
    std::set<const CItem*> keep;
    for (CItem* item : items)
    {
        // Selecting an item makes the tree create its entry and those of the folders above it.
        tree->SelectItem(*item);
        for (const CItem* shown = item; shown; shown = shown->GetParent())
            keep.insert(shown);
    }
    const std::function<void(QTreeWidgetItem*)> filter = [&](QTreeWidgetItem* entry)
    {
        for (int i = 0; i < entry->childCount(); ++i)
        {
            QTreeWidgetItem* child = entry->child(i);
            child->setHidden(keep.count(CItemTreeView::ItemOf(child)) == 0);
            filter(child);
        }
    };
    filter(tree->invisibleRootItem());
    if (!items.empty())
        tree->SelectItem(*items.front());
    m_Filtered = true;
}

void CDialogCommands::ClearTreeFilter()
{
    const std::function<void(QTreeWidgetItem*)> show = [&](QTreeWidgetItem* entry)
    {
        for (int i = 0; i < entry->childCount(); ++i)
        {
            entry->child(i)->setHidden(false);
            show(entry->child(i));
        }
    };
    show(m_Window.Tree()->invisibleRootItem());
    m_Filtered = false;
}
