// The desktop program driven as a user drives it, on the offscreen platform: first start on an
// empty documents folder, typing into notes, switching between them and starting again.
#include "Gui/MainWindow.h"
#include "Document/DBFolder.h"
#include "Document/DBNote.h"
#include "Document/DataCenter.h"
#include "Document/DefaultFolders.h"
#include "Gui/FxEditWidget.h"
#include "Gui/QtText.h"
#include "Gui/QuillGuiApp.h"
#include "GuiSession.h"
#include "Shared/Base/TextConv.h"
#include "Shared/LanguagesMgr/LanguageModule.h"
#include "Shared/RichText/RichTextDocument.h"

#include <QApplication>
#include <QImage>
#include <QKeyEvent>
#include <QMenuBar>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace
{
std::u16string StoredText(const std::u16string& path, std::u16string_view caption)
{
    CDataCenter center;
    EXPECT_TRUE(center.OpenDocument(path));
    CDBFolder& root = *center.GetRoot();
    root.LoadChildren(EChildKind::Any);
    for (size_t i = 0; i < root.GetChildCount(); ++i)
        if (auto* note = dynamic_cast<CNoteBase*>(root.GetChild(i)); note && note->GetCaption() == caption)
        {
            std::u16string text;
            EXPECT_TRUE(note->GetPlainText(text));
            return text;
        }
    ADD_FAILURE() << "no note " << Utf16ToUtf8(caption);
    return {};
}

// The text stored in the running program's open file for the top-level note `caption`
// (the file itself stays locked while the program has it open).
std::u16string StoredTextWhileOpen(CQuillGuiApp& app, std::u16string_view caption)
{
    CDBFolder& root = *app.Center()->GetRoot();
    for (size_t i = 0; i < root.GetChildCount(); ++i)
        if (root.GetChild(i)->GetCaption() == caption)
        {
            std::u16string text;
            EXPECT_TRUE(app.Center()->GetRecords().LoadPlainText(root.GetChild(i)->GetId(), text));
            return text;
        }
    ADD_FAILURE() << "no note " << Utf16ToUtf8(caption);
    return {};
}
} // namespace

TEST_F(GuiSession, FirstStartCreatesTheDefaultFileAndTheTreeShowsTheDefaultFolders)
{
    auto app = Start(u"");
    ASSERT_NE(app->MainWindow(), nullptr);
    CMainWindow& window = *app->MainWindow();
    EXPECT_EQ(window.objectName(), QStringLiteral("Quillarium Organizer Main Window #ZW#"));
    EXPECT_TRUE(std::filesystem::exists(m_Home.Path() + "/Documents/Quillarium Documents.ddb"));
    EXPECT_EQ(app->wizardRuns, 1);
    for (int kind = 0; kind < DefaultFolderKindCount; ++kind)
    {
        const QString caption = ToQString(app->LanguageModule()->GetString(DefaultFolderCaptionKey(kind)));
        ASSERT_FALSE(caption.isEmpty());
        EXPECT_NE(TopLevel(window, caption), nullptr) << caption.toStdString();
    }
    // Menus carry the language module's texts, not keys.
    ASSERT_FALSE(window.menuBar()->actions().isEmpty());
    EXPECT_EQ(window.menuBar()->actions().first()->text(), QStringLiteral("File"));

    // A folder's children appear when it is opened; selecting a folder leaves nothing to edit.
    QTreeWidgetItem* notes = TopLevel(window, ToQString(app->LanguageModule()->GetString(u"FOLDER_NOTES")));
    ASSERT_NE(notes, nullptr);
    notes->setExpanded(true);
    EXPECT_GT(notes->childCount(), 0);
    window.Tree()->setCurrentItem(notes);
    EXPECT_TRUE(window.Editor()->Edit().IsReadOnly());

    // The second start opens the same file instead of making another.
    app->Shutdown();
    app.reset();
    auto again = Start(u"");
    EXPECT_EQ(again->wizardRuns, 0) << "the wizard runs on the first start only";
    EXPECT_NE(TopLevel(*again->MainWindow(), ToQString(again->LanguageModule()->GetString(u"FOLDER_TASKS"))),
              nullptr);
}

TEST_F(GuiSession, TypedTextIsSavedOnSwitchingNotesAndOnExitAndUndoneTextIsNot)
{
    const std::u16string path = MakeFileWithTwoNotes();
    {
        auto app = Start(path);
        CMainWindow& window = *app->MainWindow();
        CFxEditWidget* editor = window.Editor();
        window.Tree()->setCurrentItem(TopLevel(window, QStringLiteral("First")));
        ASSERT_FALSE(editor->Edit().IsReadOnly());
        EXPECT_EQ(editor->Edit().GetPlainText(), u"one");
        Press(editor, Qt::Key_End);
        Type(editor, QStringLiteral(" Day"));
        Press(editor, Qt::Key_Return);
        Type(editor, QStringLiteral("x"));
        EXPECT_EQ(editor->Edit().GetPlainText(), u"one Day\r\nx");

        window.Tree()->setCurrentItem(TopLevel(window, QStringLiteral("Second")));
        EXPECT_EQ(StoredTextWhileOpen(*app, u"First"), u"one Day\r\nx");

        // Typing and taking it back with Ctrl+Z (one step per typed character) leaves the stored
        // text as it was; an edit made after that is written when the program ends.
        Type(editor, QStringLiteral("zz"));
        Press(editor, Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(editor->Edit().GetPlainText(), u"ztwo");
        Press(editor, Qt::Key_Z, Qt::ControlModifier);
        EXPECT_EQ(editor->Edit().GetPlainText(), u"two");
        Press(editor, Qt::Key_End);
        Press(editor, Qt::Key_Backspace);
        Type(editor, QStringLiteral("o"));
        Press(editor, Qt::Key_Left);
        Press(editor, Qt::Key_Delete);
        Type(editor, QStringLiteral("O"));
        EXPECT_EQ(editor->Edit().GetPlainText(), u"twO");
        app->Shutdown();
    }
    EXPECT_EQ(StoredText(path, u"First"), u"one Day\r\nx");
    EXPECT_EQ(StoredText(path, u"Second"), u"twO");

    auto app = Start(path);
    CMainWindow& window = *app->MainWindow();
    window.Tree()->setCurrentItem(TopLevel(window, QStringLiteral("First")));
    EXPECT_EQ(window.Editor()->Edit().GetPlainText(), u"one Day\r\nx");
}

TEST_F(GuiSession, TheEditorPaintsItsTextAndTheCaretFollowsAClick)
{
    const std::u16string path = MakeFileWithTwoNotes();
    auto app = Start(path);
    CMainWindow& window = *app->MainWindow();
    window.resize(1280, 800);
    window.Tree()->setCurrentItem(TopLevel(window, QStringLiteral("First")));
    CFxEditWidget* editor = window.Editor();
    editor->setFocus();
    Press(editor, Qt::Key_End);
    Type(editor, QStringLiteral(" WWWW WWWW"));

    const QImage image = window.grab().toImage();
    if (const char* shot = std::getenv("QUILL_GUI_SCREENSHOT"))
        image.save(QString::fromLocal8Bit(shot));
    // Dark text pixels inside the editor's area.
    const QRect area(editor->mapTo(&window, QPoint(0, 0)), editor->size());
    int dark = 0;
    for (int y = area.top(); y < area.top() + 40; ++y)
        for (int x = area.left(); x < area.left() + 300; ++x)
            dark += qGray(image.pixel(x, y)) < 100 ? 1 : 0;
    EXPECT_GT(dark, 20);

    // A click at the far right of the first row puts the caret at the row's end, one at the
    // left edge at its start.
    QMouseEvent farRight(QEvent::MouseButtonPress, QPointF(editor->width() - 10, 8), QPointF(),
                         Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(editor, &farRight);
    EXPECT_EQ(editor->Edit().Caret().pos, editor->Edit().Line(0).LastLayoutPosition());
    QMouseEvent left(QEvent::MouseButtonPress, QPointF(1, 8), QPointF(), Qt::LeftButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(editor, &left);
    EXPECT_EQ(editor->Edit().Caret(), (SFxPosition{0, 0}));
}
