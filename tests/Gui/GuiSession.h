#pragma once
// The desktop program started as the user starts it, in a home, documents, runtime and program
// folder of its own, so nothing of the user's is read or written. The first-launch wizard and
// the password question are answered by the test instead of a person.
#include "Document/DBFolder.h"
#include "Document/DataCenter.h"
#include "Gui/ItemTreeView.h"
#include "Gui/MainWindow.h"
#include "Gui/QuillGuiApp.h"
#include "GuiTestModal.h"
#include "Support/TempFolder.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMessageBox>
#include <QStringList>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

class CTestGuiApp : public CQuillGuiApp
{
public:
    using CQuillGuiApp::CQuillGuiApp;

    int wizardRuns = 0;
    // Answers to the password question in turn; when they run out the user cancels.
    std::vector<std::u16string> passwords;
    std::vector<std::u16string> askedPaths;

protected:
    bool AskPassword(const std::u16string& path, std::u16string& password) override
    {
        askedPaths.push_back(path);
        if (passwords.empty())
            return false;
        password = passwords.front();
        passwords.erase(passwords.begin());
        return true;
    }
    void RunFirstLaunchWizard() override { ++wizardRuns; }
    bool AskFilePath(bool, const char16_t*, std::u16string&) override { return false; }
};

// Up to `count` modal windows are expected while the object lives: each is closed (a question
// answered no) and its text kept (a message box's text, else the window title).
class CExpectDialogs
{
public:
    explicit CExpectDialogs(int count)
        : m_Left(count), m_Expect(
                             [this](QWidget* modal)
                             {
                                 if (m_Left <= 0)
                                     return false;
                                 --m_Left;
                                 auto* box = qobject_cast<QMessageBox*>(modal);
                                 seen << (box ? box->text() : modal->windowTitle());
                                 modal->close();
                                 return true;
                             })
    {
    }

    QStringList seen;

private:
    int m_Left;
    CExpectModal m_Expect;
};

class GuiSession : public ::testing::Test
{
protected:
    GuiSession()
    {
        setenv("HOME", m_Home.Path().c_str(), 1);
        setenv("XDG_CONFIG_HOME", (m_Home.Path() + "/config").c_str(), 1);
        setenv("XDG_STATE_HOME", (m_Home.Path() + "/state").c_str(), 1);
        setenv("XDG_RUNTIME_DIR", m_Runtime.Path().c_str(), 1);
        std::filesystem::permissions(m_Runtime.Path(), std::filesystem::perms::owner_all,
                                     std::filesystem::perm_options::replace);
        std::filesystem::create_directories(m_Home.Path() + "/Documents");
    }

    std::unique_ptr<CTestGuiApp> Launch(const std::u16string& commandLine)
    {
        return std::make_unique<CTestGuiApp>(m_Program.Path16() + u"/", commandLine);
    }

    std::unique_ptr<CTestGuiApp> Start(const std::u16string& commandLine)
    {
        auto app = Launch(commandLine);
        EXPECT_TRUE(app->Start());
        return app;
    }

    std::u16string DefaultFile() const { return m_Home.File16("Documents/Quillarium Documents.ddb"); }

    static QTreeWidgetItem* TopLevel(CMainWindow& window, const QString& caption)
    {
        for (int i = 0; i < window.Tree()->topLevelItemCount(); ++i)
            if (window.Tree()->topLevelItem(i)->text(0) == caption)
                return window.Tree()->topLevelItem(i);
        return nullptr;
    }

    static CItem* ChildNamed(CFolderBase& folder, std::u16string_view caption)
    {
        folder.LoadChildren(EChildKind::Any);
        for (size_t i = 0; i < folder.GetChildCount(); ++i)
            if (folder.GetChild(i)->GetCaption() == caption)
                return folder.GetChild(i);
        return nullptr;
    }

    static CFolderBase& AsFolder(CItem& item)
    {
        auto* folder = dynamic_cast<CFolderBase*>(&item);
        EXPECT_NE(folder, nullptr);
        return *folder;
    }

    static void Press(QWidget* widget, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
                      const QString& text = QString())
    {
        QKeyEvent press(QEvent::KeyPress, key, modifiers, text);
        QApplication::sendEvent(widget, &press);
    }

    static void Type(QWidget* widget, const QString& text)
    {
        for (QChar c : text)
            Press(widget, c.isLetter() ? Qt::Key_A + (c.toUpper().unicode() - u'A') : Qt::Key_Space,
                  c.isUpper() ? Qt::ShiftModifier : Qt::NoModifier, QString(c));
    }

    static void Trigger(CMainWindow& window, const char* action)
    {
        QAction* found = window.FindAction(QLatin1String(action));
        ASSERT_NE(found, nullptr) << action;
        found->trigger();
    }

    // A data file holding two notes at the top of its tree, made without the program.
    std::u16string MakeFileWithTwoNotes(const std::string& name = "two notes.ddb")
    {
        const std::u16string path = m_Home.File16(name);
        CDataCenter center;
        EXPECT_TRUE(center.CreateDocument(path));
        EXPECT_NE(center.AddNote(*center.GetRoot(), u"First", u"one"), nullptr);
        EXPECT_NE(center.AddNote(*center.GetRoot(), u"Second", u"two"), nullptr);
        center.CloseDocument();
        return path;
    }

    CTempFolder m_Home;
    CTempFolder m_Runtime;
    CTempFolder m_Program;
};
