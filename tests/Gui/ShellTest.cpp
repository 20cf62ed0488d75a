// The main window's commands driven as a user drives them: folders and notes made, renamed,
// formatted, moved, marked and deleted, files opened, created and saved under another name,
// protected files, and everything found again after the program started anew.
#include "Document/DefaultFolders.h"
#include "Document/ItemRecords.h"
#include "Document/NoteBase.h"
#include "Gui/FolderCardView.h"
#include "Gui/FxEditWidget.h"
#include "Gui/QtText.h"
#include "Gui/SaveTimers.h"
#include "Gui/ToolbarDialog.h"
#include "GuiSession.h"
#include "Prefs/Preferences.h"
#include "Shared/Base/TextConv.h"
#include "Shared/LanguagesMgr/LanguageModule.h"
#include "Shared/RichText/RichTextDocument.h"

#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QStackedWidget>
#include <QStatusBar>
#include <QSystemTrayIcon>
#include <QToolBar>

#include <fstream>

namespace
{
CFolderBase& Folder(CItem* item)
{
    auto* folder = dynamic_cast<CFolderBase*>(item);
    EXPECT_NE(folder, nullptr);
    return *folder;
}

CFolderBase& DefaultFolder(CQuillGuiApp& app, int kind)
{
    CFolderBase& root = *app.Center()->GetRoot();
    for (size_t i = 0; i < root.GetChildCount(); ++i)
        if (auto* folder = dynamic_cast<CFolderBase*>(root.GetChild(i));
            folder && folder->GetDefaultFolderKind() == kind)
            return *folder;
    ADD_FAILURE() << "no default folder " << kind;
    return root;
}
} // namespace

TEST_F(GuiSession, AFolderAndAFormattedNoteMadeInTheWindowAreThereAfterARestart)
{
    CRichTextDocument typed;
    {
        auto app = Start(u"");
        CMainWindow& window = *app->MainWindow();
        window.SelectItem(DefaultFolder(*app, 0));
        Trigger(window, "ItemNewFolder");
        CItem* folder = window.CurrentItem();
        ASSERT_NE(folder, nullptr);
        EXPECT_EQ(folder->GetParent(), &DefaultFolder(*app, 0));
        // Renaming in place: the edited entry text becomes the caption.
        window.Tree()->currentItem()->setText(0, QStringLiteral("  Recipes "));
        EXPECT_EQ(folder->GetCaption(), u"Recipes");
        EXPECT_EQ(window.Tree()->currentItem()->text(0), QStringLiteral("Recipes"));

        Trigger(window, "ItemNewNote");
        CItem* note = window.CurrentItem();
        ASSERT_NE(note, nullptr);
        EXPECT_EQ(note->GetParent(), folder);
        EXPECT_TRUE(window.RenameItem(*note, QStringLiteral("Pancakes")));
        CFxEditWidget* editor = window.Editor();
        ASSERT_FALSE(editor->Edit().IsReadOnly());
        Type(editor, QStringLiteral("Flour and eggs"));
        // Bold for what is typed next, then a typed word taken back.
        editor->Edit().ToggleBold();
        Type(editor, QStringLiteral(" Milk"));
        Type(editor, QStringLiteral("x"));
        Trigger(window, "EditUndo");
        EXPECT_EQ(editor->Edit().GetPlainText(), u"Flour and eggs Milk");
        typed = editor->Edit().GetDocument();
        Trigger(window, "FileSave");
        EXPECT_FALSE(app->Center()->HasPendingChanges());
        EXPECT_FALSE(editor->Edit().IsModified());
        Trigger(window, "FileExit");
        app->Shutdown();
    }
    auto app = Start(u"");
    CItem* folder = ChildNamed(DefaultFolder(*app, 0), u"Recipes");
    ASSERT_NE(folder, nullptr);
    CItem* note = ChildNamed(Folder(folder), u"Pancakes");
    ASSERT_NE(note, nullptr);
    app->MainWindow()->SelectItem(*note);
    EXPECT_EQ(app->MainWindow()->Editor()->Edit().GetPlainText(), u"Flour and eggs Milk");
    // The bold run survived: it starts at " Milk" and nothing before it is bold.
    const CRichTextDocument& loaded = app->MainWindow()->Editor()->Edit().GetDocument();
    ASSERT_EQ(loaded.LineCount(), 1u);
    int32_t boldFrom = -1;
    for (const CRtfTextBlockInfo& block : loaded.Line(0).Blocks())
        if (block.Font() && block.Font()->weight >= SFontDescription::BoldWeight && boldFrom < 0)
            boldFrom = block.Start();
    EXPECT_EQ(boldFrom, 14);
    EXPECT_EQ(loaded.Line(0).Blocks().size(), typed.Line(0).Blocks().size());
}

TEST_F(GuiSession, DeletingGoesThroughTheRecycleBinAndDefaultFoldersStay)
{
    auto app = Start(u"");
    CMainWindow& window = *app->MainWindow();
    CFolderBase& notes = DefaultFolder(*app, 0);
    CFolderBase& bin = DefaultFolder(*app, RecycleBinFolderKind);
    window.SelectItem(notes);
    CItem* note = window.NewNote();
    ASSERT_NE(note, nullptr);
    EXPECT_TRUE(window.DeleteItem(*note));
    EXPECT_EQ(note->GetParent(), &bin);
    EXPECT_NE(window.Tree()->FindEntry(*note), nullptr) << "the tree shows the bin's new child";
    // Deleting inside the bin is for good (here without the question).
    EXPECT_TRUE(window.DeleteItem(*note, false));
    EXPECT_EQ(bin.GetChildCount(), 0u);

    const QString refusal = ToQString(app->LanguageModule()->GetString(u"ERR_CANNOT_DELETE_DEFAULT_FOLDERS"));
    {
        CExpectDialogs dialogs(1);
        EXPECT_FALSE(window.DeleteItem(notes));
        EXPECT_EQ(dialogs.seen, QStringList{refusal});
    }
    EXPECT_EQ(notes.GetParent(), app->Center()->GetRoot());
    // Dropping a default folder elsewhere is refused as cutting it is.
    {
        CExpectDialogs dialogs(1);
        EXPECT_FALSE(window.MoveItem(notes, bin, SIZE_MAX));
        EXPECT_EQ(dialogs.seen.size(), 1);
    }
    EXPECT_EQ(notes.GetParent(), app->Center()->GetRoot());
}

TEST_F(GuiSession, MovesAndMarksAreWrittenAndTheTreeFollows)
{
    const std::u16string path = MakeFileWithTwoNotes();
    {
        auto app = Start(path);
        CMainWindow& window = *app->MainWindow();
        CFolderBase& root = *app->Center()->GetRoot();
        window.SelectItem(*ChildNamed(root, u"Second"));
        CItem* folder = window.NewFolder();
        ASSERT_NE(folder, nullptr);
        window.RenameItem(*folder, QStringLiteral("Box"));
        // Into the folder, then the second note before the first inside the root.
        EXPECT_TRUE(window.MoveItem(*ChildNamed(root, u"First"), Folder(folder), SIZE_MAX));
        EXPECT_TRUE(window.MoveItem(*ChildNamed(root, u"Second"), root, 0));
        // The tree shows the document's order.
        ASSERT_EQ(static_cast<size_t>(window.Tree()->topLevelItemCount()), root.GetChildCount());
        for (size_t i = 0; i < root.GetChildCount(); ++i)
            EXPECT_EQ(window.Tree()->topLevelItem(static_cast<int>(i))->text(0),
                      ToQString(root.GetChild(i)->GetCaption()));
        EXPECT_EQ(window.Tree()->topLevelItem(0)->text(0), QStringLiteral("Second"));
        QTreeWidgetItem* boxEntry = window.Tree()->FindEntry(*folder);
        ASSERT_NE(boxEntry, nullptr);
        ASSERT_EQ(boxEntry->childCount(), 1);
        EXPECT_EQ(boxEntry->child(0)->text(0), QStringLiteral("First"));
        // A folder cannot go into itself.
        EXPECT_FALSE(folder->MoveTo(Folder(folder)));

        CItem* second = ChildNamed(root, u"Second");
        window.SelectItem(*second);
        const QImage plainIcon = window.Tree()->currentItem()->icon(0).pixmap(16, 16).toImage();
        Trigger(window, "ItemPriority3");
        Trigger(window, "ItemReadOnly");
        Trigger(window, "ItemTask");
        EXPECT_TRUE(window.Editor()->Edit().IsReadOnly());
        EXPECT_NE(window.Tree()->currentItem()->icon(0).pixmap(16, 16).toImage(), plainIcon);
        app->Shutdown();
    }
    auto app = Start(path);
    CFolderBase& root = *app->Center()->GetRoot();
    EXPECT_EQ(root.GetChild(0)->GetCaption(), u"Second");
    EXPECT_EQ(ChildNamed(root, u"First"), nullptr);
    CItem* box = ChildNamed(root, u"Box");
    ASSERT_NE(box, nullptr);
    EXPECT_NE(ChildNamed(Folder(box), u"First"), nullptr);
    const CItemExtendedData* data = root.GetChild(0)->FindExtendedData();
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->Priority(), 3);
    EXPECT_TRUE(data->IsReadOnly());
    EXPECT_EQ(data->TaskState(), 1);
    app->MainWindow()->SelectItem(*root.GetChild(0));
    EXPECT_TRUE(app->MainWindow()->Editor()->Edit().IsReadOnly()) << "a read-only note is not editable";
    // Selecting a folder shows its children as cards.
    app->MainWindow()->SelectItem(*box);
    EXPECT_EQ(app->MainWindow()->Cards()->Folder(), box);
    EXPECT_TRUE(app->MainWindow()->Cards()->isVisibleTo(app->MainWindow()));
    EXPECT_EQ(app->MainWindow()->Cards()->count(), 1);
}

TEST_F(GuiSession, NewOpenAndSaveAsSwitchTheShownFileAndRememberIt)
{
    const std::u16string first = MakeFileWithTwoNotes();
    auto app = Start(first);
    CMainWindow& window = *app->MainWindow();
    const std::u16string created = m_Home.File16("created.ddb");
    ASSERT_TRUE(app->NewFile(created));
    EXPECT_EQ(app->DataFilePath(), created);
    EXPECT_TRUE(window.windowTitle().startsWith(QStringLiteral("created.ddb")));
    EXPECT_NE(TopLevel(window, ToQString(app->LanguageModule()->GetString(u"FOLDER_NOTES"))), nullptr);

    const std::u16string copy = m_Home.File16("copy.ddb");
    ASSERT_TRUE(app->SaveFileAs(copy));
    EXPECT_EQ(app->Center()->GetFilePath(), copy);
    EXPECT_EQ(app->DataFilePath(), copy);
    ASSERT_TRUE(app->OpenFile(first));
    EXPECT_NE(TopLevel(window, QStringLiteral("First")), nullptr);
    // A file that cannot be opened leaves the shown one in place.
    {
        CExpectDialogs dialogs(1);
        EXPECT_FALSE(app->OpenFile(m_Home.File16("missing.ddb")));
    }
    EXPECT_EQ(app->DataFilePath(), first);
    EXPECT_NE(TopLevel(window, QStringLiteral("First")), nullptr);

    const auto& recent = app->Preferences()->ShellState().recentFiles.Items();
    ASSERT_GE(recent.size(), 3u);
    EXPECT_EQ(recent[0], first);
    EXPECT_EQ(recent[1], copy);
    EXPECT_EQ(recent[2], created);
    app->Shutdown();
    app.reset();
    auto again = Start(u"");
    EXPECT_EQ(again->DataFilePath(), first) << "the next start opens the file shown last";
}

TEST_F(GuiSession, AProtectedFileOpensOnlyWithItsPassword)
{
    const std::u16string path = MakeFileWithTwoNotes();
    {
        CDataCenter center;
        ASSERT_TRUE(center.OpenDocument(path));
        ASSERT_TRUE(center.GetRecords().SetPassword(u"", u"secret"));
    }
    {
        auto app = Launch(path);
        app->passwords = {u"wrong", u"", u"Secret"};
        CExpectDialogs dialogs(3);
        EXPECT_FALSE(app->Start());
        EXPECT_EQ(dialogs.seen.size(), 3);
        EXPECT_EQ(app->MainWindow(), nullptr);
    }
    {
        auto app = Launch(path);
        EXPECT_FALSE(app->Start()) << "cancelled";
        EXPECT_EQ(app->askedPaths, std::vector<std::u16string>{path});
    }
    auto app = Launch(path);
    app->passwords = {u"secret"};
    ASSERT_TRUE(app->Start());
    EXPECT_NE(TopLevel(*app->MainWindow(), QStringLiteral("First")), nullptr);
}

TEST_F(GuiSession, AMissingCommandLineFileEndsStartUpWithItsMessage)
{
    auto app = Launch(m_Home.File16("nowhere.ddb"));
    CExpectDialogs dialogs(1);
    EXPECT_FALSE(app->Start());
    const QStringList seen = dialogs.seen;
    ASSERT_EQ(seen.size(), 1);
    EXPECT_TRUE(seen[0].contains(QStringLiteral("nowhere.ddb")));
    EXPECT_EQ(app->MainWindow(), nullptr);
}

TEST_F(GuiSession, EveryMenuTextComesFromTheLanguageModuleAndNamedCommandsAreUnique)
{
    auto app = Start(MakeFileWithTwoNotes());
    CMainWindow& window = *app->MainWindow();
    for (const char16_t* key : {u"MENU_FILE", u"MENU_EIDT", u"MENU_ITEM", u"MENU_VIEW", u"MENU_TOOLS",
                                u"MENU_HELP", u"MENU_EIDT_INSERT", u"MENU_ITEM_PRIORITY"})
    {
        ASSERT_NE(window.Menu(key), nullptr);
        EXPECT_EQ(window.Menu(key)->title(), ToQString(app->LanguageModule()->GetString(key)));
        EXPECT_FALSE(window.Menu(key)->title().isEmpty());
    }
    for (QAction* action : window.NamedActions())
        EXPECT_FALSE(action->text().isEmpty()) << action->objectName().toStdString();
    int runs = 0;
    const qsizetype toolsBefore = window.Menu(u"MENU_TOOLS")->actions().size();
    EXPECT_NE(window.AddAction(u"MENU_TOOLS", QStringLiteral("ToolsSample"), QStringLiteral("Sample"),
                               [&] { ++runs; }),
              nullptr);
    EXPECT_EQ(window.AddAction(u"MENU_TOOLS", QStringLiteral("ToolsSample"), QStringLiteral("Again"), [] {}),
              nullptr);
    EXPECT_EQ(window.Menu(u"MENU_TOOLS")->actions().size(), toolsBefore + 1);
    Trigger(window, "ToolsSample");
    EXPECT_EQ(runs, 1);
    // The toolbar takes named commands and separators and leaves unknown names out.
    window.SetToolbarButtons({QStringLiteral("ToolsSample"), QString(), QStringLiteral("NoSuchCommand"),
                              QStringLiteral("FileSave")});
    EXPECT_EQ(window.ToolbarButtons(),
              (QStringList{QStringLiteral("ToolsSample"), QString(), QStringLiteral("FileSave")}));
}

TEST_F(GuiSession, TheCustomisedToolbarIsKeptInThePreferences)
{
    const std::u16string path = MakeFileWithTwoNotes();
    {
        auto app = Start(path);
        CMainWindow& window = *app->MainWindow();
        EXPECT_EQ(window.ToolbarButtons(), CMainWindow::DefaultToolbarButtons());
        CToolbarDialog dialog(window.NamedActions(), window.ToolbarButtons(),
                              CMainWindow::DefaultToolbarButtons(),
                              [&](const char16_t* key) { return window.Text(key); });
        // The available list starts with the separator, then the commands not on the toolbar.
        ASSERT_GT(dialog.Available()->count(), 1);
        EXPECT_EQ(dialog.Shown()->count(), CMainWindow::DefaultToolbarButtons().size());
        dialog.Shown()->setCurrentRow(0);
        dialog.RemoveSelected(); // FileNew goes back to the available commands
        dialog.MoveSelected(1);  // FileOpen after FileSave
        const int available = dialog.Available()->count();
        dialog.Available()->setCurrentRow(0);
        dialog.AddSelected(); // a second separator after FileOpen; the separator stays available
        EXPECT_EQ(dialog.Available()->count(), available);
        dialog.Available()->setCurrentRow(available - 1);
        const QString last = dialog.Available()->currentItem()->data(Qt::UserRole).toString();
        dialog.AddSelected();
        EXPECT_EQ(dialog.Available()->count(), available - 1);
        const QStringList chosen = dialog.Buttons();
        EXPECT_EQ(chosen.mid(0, 4),
                  (QStringList{QStringLiteral("FileSave"), QStringLiteral("FileOpen"), QString(), last}));
        window.SetToolbarButtons(chosen);
        EXPECT_EQ(window.ToolbarButtons(), chosen);
        dialog.Reset();
        EXPECT_EQ(dialog.Buttons(), CMainWindow::DefaultToolbarButtons());
        app->Shutdown();
        app.reset();

        auto again = Start(path);
        EXPECT_EQ(again->MainWindow()->ToolbarButtons(), chosen);
        // A command another part of the program adds later takes its kept place.
        again->MainWindow()->SetToolbarButtons({QStringLiteral("ToolsLater"), QStringLiteral("FileSave")});
        EXPECT_EQ(again->MainWindow()->ToolbarButtons(), QStringList{QStringLiteral("FileSave")});
        again->MainWindow()->AddAction(u"MENU_TOOLS", QStringLiteral("ToolsLater"), QStringLiteral("Later"),
                                       [] {});
        EXPECT_EQ(again->MainWindow()->ToolbarButtons(),
                  (QStringList{QStringLiteral("ToolsLater"), QStringLiteral("FileSave")}));
    }
    // The text form: separators, an empty toolbar and the program's choice.
    EXPECT_EQ(ToolbarButtonsToText({QStringLiteral("A"), QString(), QStringLiteral("B")}),
              QStringLiteral("A,-,B"));
    EXPECT_EQ(ToolbarButtonsFromText(QStringLiteral("A,-,B"), {}),
              (QStringList{QStringLiteral("A"), QString(), QStringLiteral("B")}));
    EXPECT_EQ(ToolbarButtonsFromText(ToolbarButtonsToText({}), {QStringLiteral("D")}), QStringList());
    EXPECT_EQ(ToolbarButtonsFromText(QString(), {QStringLiteral("D")}), QStringList{QStringLiteral("D")});
}

TEST_F(GuiSession, AppliedPreferencesReachTheTimersTrayAndWindow)
{
    auto app = Start(MakeFileWithTwoNotes());
    CMainWindow& window = *app->MainWindow();
    CPreferences& prefs = *app->Preferences();
    prefs.SysTray().alwaysOnTop = true;
    prefs.Layout().folderListCardWidth = 300;
    window.ApplyPreferences();
    EXPECT_TRUE(window.IsAlwaysOnTop());
    EXPECT_TRUE(window.FindAction(QStringLiteral("ViewAlwaysOnTop"))->isChecked());
    EXPECT_EQ(window.Cards()->gridSize().width(), 308);
    Trigger(window, "ViewAlwaysOnTop");
    EXPECT_FALSE(window.IsAlwaysOnTop());
    EXPECT_FALSE(prefs.SysTray().alwaysOnTop);

    // Autosave and backup count down from the preferences; a year's interval does not overflow
    // the timer's milliseconds, and a tick before the moment does nothing.
    int saves = 0;
    int backups = 0;
    prefs.Other().autoSaveData = true;
    prefs.Other().autoSaveMinutes = 2;
    prefs.Backup().enableAutobackup = true;
    prefs.Backup().backupIntervalMinutes = 366 * 24 * 60;
    CSaveTimers timers(
        prefs, [&] { return ++saves > 0; }, [&] { return ++backups > 0; });
    EXPECT_GT(timers.AutoSaveDueMs(), 110000);
    EXPECT_LE(timers.AutoSaveDueMs(), 120000);
    EXPECT_GT(timers.BackupDueMs(), qint64(366) * 24 * 60 * 60 * 1000 - 10000);
    QApplication::processEvents();
    EXPECT_EQ(saves + backups, 0);
    prefs.Other().autoSaveData = false;
    prefs.Backup().enableAutobackup = false;
    timers.Restart();
    EXPECT_EQ(timers.AutoSaveDueMs(), -1);
    EXPECT_EQ(timers.BackupDueMs(), -1);
}

TEST_F(GuiSession, AWriteProtectedFileIsShownButNothingChangesIt)
{
    const std::u16string path = MakeFileWithTwoNotes();
    const std::string native = Utf16ToUtf8(path);
    {
        // The file's own write protection (its header's read-only flag).
        CDataCenter center;
        ASSERT_TRUE(center.OpenDocument(path));
        ASSERT_TRUE(center.GetDatabase().GetDataFile().SetReadOnly(true));
    }
    const auto bytes = [&]
    {
        std::ifstream in(native, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    const std::string before = bytes();
    {
        CExpectDialogs dialogs(1); // the data center says the changes will not be saved
        auto app = Launch(path);
        ASSERT_TRUE(app->Start());
        EXPECT_EQ(dialogs.seen.size(), 1);
        CMainWindow& window = *app->MainWindow();
        ASSERT_TRUE(app->Center()->IsReadOnly());
        window.SelectItem(*ChildNamed(*app->Center()->GetRoot(), u"First"));
        EXPECT_TRUE(window.Editor()->Edit().IsReadOnly());
        for (const char* name : {"ItemNewFolder", "ItemNewNote", "ItemDelete", "ItemRename"})
            EXPECT_FALSE(window.FindAction(QLatin1String(name))->isEnabled()) << name;
        EXPECT_EQ(window.NewNote(), nullptr);
        EXPECT_FALSE(window.RenameItem(*window.CurrentItem(), QStringLiteral("Changed")));
        EXPECT_TRUE(window.statusBar()->findChildren<QLabel*>().size() > 0);
        bool shown = false;
        for (QLabel* label : window.statusBar()->findChildren<QLabel*>())
            shown |= label->text().contains(
                ToQString(app->LanguageModule()->GetString(u"MAIN_WND_STATUS_READ_ONLY")));
        EXPECT_TRUE(shown);
        app->Shutdown();
    }
    EXPECT_TRUE(bytes() == before) << "the file is left byte for byte as it was";
}

TEST_F(GuiSession, ADropPlacesTheItemIntoAFolderOrBesideARowAndNeverIntoItself)
{
    auto app = Start(MakeFileWithTwoNotes());
    CMainWindow& window = *app->MainWindow();
    window.resize(800, 600);
    window.show();
    CFolderBase& root = *app->Center()->GetRoot();
    window.SelectItem(*ChildNamed(root, u"Second"));
    CItem* box = window.NewFolder();
    ASSERT_NE(box, nullptr);
    window.SelectItem(*box);
    CItem* inner = window.NewFolder();
    ASSERT_NE(inner, nullptr);
    CItemTreeView& tree = *window.Tree();
    tree.SelectItem(*inner);
    QApplication::processEvents();
    CItem* first = ChildNamed(root, u"First");
    CItem* second = ChildNamed(root, u"Second");
    const QRect firstRow = tree.visualItemRect(tree.FindEntry(*first));
    const QRect secondRow = tree.visualItemRect(tree.FindEntry(*second));
    const QRect boxRow = tree.visualItemRect(tree.FindEntry(*box));
    const QRect innerRow = tree.visualItemRect(tree.FindEntry(*inner));
    ASSERT_FALSE(firstRow.isEmpty());
    const size_t firstIndex = root.IndexOf(*first);
    const size_t secondIndex = root.IndexOf(*second);
    ASSERT_EQ(secondIndex, firstIndex + 1);

    CFolderBase* target = nullptr;
    size_t index = 0;
    // The middle of a folder's row: into it, appended.
    ASSERT_TRUE(tree.PlanDrop(*first, boxRow.center(), target, index));
    EXPECT_EQ(target, box);
    EXPECT_EQ(index, SIZE_MAX);
    // The upper edge of a row: before its item; the lower edge: after it. The dragged item's
    // own place is not counted when it lies before the target place.
    ASSERT_TRUE(tree.PlanDrop(*box, QPoint(secondRow.center().x(), secondRow.top() + 1), target, index));
    EXPECT_EQ(target, &root);
    EXPECT_EQ(index, secondIndex);
    ASSERT_TRUE(tree.PlanDrop(*first, QPoint(secondRow.center().x(), secondRow.bottom() - 1), target, index));
    EXPECT_EQ(target, &root);
    EXPECT_EQ(index, secondIndex); // after Second, counted without First
    ASSERT_TRUE(tree.PlanDrop(*first, QPoint(firstRow.center().x(), firstRow.top() + 1), target, index));
    EXPECT_EQ(index, firstIndex); // its own place
    // A folder never goes into itself or below itself; below the last row is the top level.
    EXPECT_FALSE(tree.PlanDrop(*box, boxRow.center(), target, index));
    EXPECT_FALSE(tree.PlanDrop(*box, innerRow.center(), target, index));
    ASSERT_TRUE(tree.PlanDrop(*inner, QPoint(5, tree.viewport()->height() - 2), target, index));
    EXPECT_EQ(target, &root);
    EXPECT_EQ(index, SIZE_MAX);

    // Carried out as the tree asks, the order shows in the tree and in the document.
    ASSERT_TRUE(tree.PlanDrop(*first, QPoint(secondRow.center().x(), secondRow.bottom() - 1), target, index));
    EXPECT_TRUE(window.MoveItem(*first, *target, index));
    EXPECT_EQ(root.IndexOf(*second), firstIndex);
    EXPECT_EQ(root.IndexOf(*first), secondIndex);
    EXPECT_EQ(tree.topLevelItem(static_cast<int>(secondIndex))->text(0), QStringLiteral("First"));
}

TEST_F(GuiSession, TheWindowClosesForGoodWithoutATrayAndComesBackWhereItWas)
{
    const std::u16string path = MakeFileWithTwoNotes();
    {
        auto app = Start(path);
        CMainWindow& window = *app->MainWindow();
        // Closing to the tray needs a notification area; without one the window closes.
        app->Preferences()->SysTray().closeToTray = true;
        window.setGeometry(40, 60, 900, 640);
        bool closed = false;
        QObject::connect(&window, &CMainWindow::Closed, [&] { closed = true; });
        window.close();
        EXPECT_EQ(closed, !QSystemTrayIcon::isSystemTrayAvailable());
        app->Shutdown();
    }
    auto app = Start(path);
    EXPECT_EQ(app->MainWindow()->size(), QSize(900, 640));
}
