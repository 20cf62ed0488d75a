// The find and replace window, on its own and run by the editor's find and replace commands.
#include "Gui/FindReplaceDlg.h"

#include "DialogTestSupport.h"
#include "Gui/FxEditWidget.h"
#include "Gui/QtText.h"
#include "GuiTestModal.h"
#include "Prefs/WindowPlacements.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>

#include <gtest/gtest.h>

namespace
{
class FindReplaceDlgTest : public ::testing::Test
{
protected:
    SDialogTestEnv env;
    CPreferences prefs{env.Env()};
    CFxEditWidget editor{&env.english};
    QStringList messages;

    FindReplaceDlgTest()
    {
        editor.SetPreferences(&prefs);
        editor.resize(400, 300);
    }

    // Answers the find/replace window with `fill` and the message box that may follow.
    CExpectModal Answer(std::function<void(CFindReplaceDlg&)> fill)
    {
        return CExpectModal(
            [this, fill](QWidget* modal)
            {
                if (auto* dlg = qobject_cast<CFindReplaceDlg*>(modal))
                {
                    fill(*dlg);
                    return true;
                }
                if (auto* box = qobject_cast<QMessageBox*>(modal))
                {
                    messages << box->text();
                    box->accept();
                    return true;
                }
                return false;
            });
    }

    QString Lang(const char16_t* key) { return ToQString(env.english.GetString(key)); }
};

TEST_F(FindReplaceDlgTest, ReplaceAllReplacesEveryOccurrenceOnceAndReportsTheCount)
{
    editor.Edit().SetPlainText(u"a cat, a Cat\r\nno dog\r\ncatcat");
    CExpectModal expect = Answer(
        [](CFindReplaceDlg& dlg)
        {
            EXPECT_EQ(dlg.FindButton(), nullptr);
            dlg.FindEdit()->setText(QStringLiteral("cat"));
            dlg.ReplaceEdit()->setText(QStringLiteral("a cat"));
            dlg.WholeTextRadio()->setChecked(true);
            dlg.ReplaceAllButton()->click();
        });
    editor.RunAction(CFxEdit::ActionReplace);
    EXPECT_EQ(editor.Edit().GetPlainText(), u"a a cat, a a cat\r\nno dog\r\na cata cat");
    EXPECT_EQ(
        messages,
        QStringList{Lang(u"EDITCTL_REPLACEMENT_INFO").replace(QStringLiteral("^N"), QStringLiteral("4"))});

    // The lines and the choice are remembered, and the window's place under its mode's key.
    EXPECT_EQ(prefs.Search().findLine, u"cat");
    EXPECT_EQ(prefs.Search().replaceLine, u"a cat");
    EXPECT_FALSE(prefs.Search().findMatchCase);
    EXPECT_NE(FindWindowPlacement(prefs.ShellState().windowPlacements, u"ReplaceTxtDlg"), nullptr);
    EXPECT_EQ(FindWindowPlacement(prefs.ShellState().windowPlacements, u"FindTxtDlg"), nullptr);
}

TEST_F(FindReplaceDlgTest, MatchCaseAndSingleReplaceAndNotFound)
{
    editor.Edit().SetPlainText(u"Cat cat");
    {
        CExpectModal expect = Answer(
            [](CFindReplaceDlg& dlg)
            {
                dlg.FindEdit()->setText(QStringLiteral("cat"));
                dlg.ReplaceEdit()->setText(QStringLiteral("dog"));
                dlg.MatchCaseCheck()->setChecked(true);
                dlg.ReplaceButton()->click();
            });
        editor.RunAction(CFxEdit::ActionReplace);
    }
    EXPECT_EQ(editor.Edit().GetPlainText(), u"Cat dog");
    EXPECT_TRUE(messages.isEmpty());
    {
        // The next window starts with what was typed; nothing left to replace.
        CExpectModal expect = Answer(
            [](CFindReplaceDlg& dlg)
            {
                EXPECT_EQ(dlg.FindEdit()->text(), QStringLiteral("cat"));
                EXPECT_EQ(dlg.ReplaceEdit()->text(), QStringLiteral("dog"));
                EXPECT_TRUE(dlg.MatchCaseCheck()->isChecked());
                dlg.ReplaceButton()->click();
            });
        editor.Edit().SetCaret({0, 0});
        editor.RunAction(CFxEdit::ActionReplace);
    }
    EXPECT_EQ(messages, QStringList{Lang(u"EDITCTL_FIND_NOTFOUND")});
}

TEST_F(FindReplaceDlgTest, FindSelectsTheNextMatchOrSaysNotFound)
{
    editor.Edit().SetPlainText(u"one two\r\nthree two");
    editor.Edit().SetSelection({0, 4}, {0, 7}); // "two" is selected
    {
        CExpectModal expect = Answer(
            [](CFindReplaceDlg& dlg)
            {
                EXPECT_EQ(dlg.ReplaceEdit(), nullptr);
                EXPECT_EQ(dlg.FindEdit()->text(), QStringLiteral("two"));
                dlg.FindButton()->click();
            });
        editor.RunAction(CFxEdit::ActionFind);
    }
    EXPECT_EQ(editor.Edit().GetSelectedPlainText(), u"two");
    EXPECT_EQ(editor.Edit().SelectionStart().line, 1);
    EXPECT_TRUE(messages.isEmpty());
    {
        CExpectModal expect = Answer(
            [](CFindReplaceDlg& dlg)
            {
                dlg.FindEdit()->setText(QStringLiteral("four"));
                dlg.FindButton()->click();
            });
        editor.RunAction(CFxEdit::ActionFind);
    }
    EXPECT_EQ(messages, QStringList{Lang(u"EDITCTL_FIND_NOTFOUND")});
    EXPECT_NE(FindWindowPlacement(prefs.ShellState().windowPlacements, u"FindTxtDlg"), nullptr);
}

TEST_F(FindReplaceDlgTest, ButtonsNeedATextAndCancelAnswersNothing)
{
    CFindReplaceDlg::Memory() = {};
    SFxFindReplaceRequest request;
    request.replaceMode = true;
    request.inSelection = true;
    request.findText = u"two\r\nlines"; // a selection over lines is the scope, not the text
    CFindReplaceDlg dlg(request, nullptr, &env.english);
    EXPECT_TRUE(dlg.FindEdit()->text().isEmpty());
    EXPECT_TRUE(dlg.SelectionRadio()->isChecked());
    EXPECT_FALSE(dlg.ReplaceButton()->isEnabled());
    EXPECT_FALSE(dlg.ReplaceAllButton()->isEnabled());
    dlg.FindEdit()->setText(QStringLiteral("x"));
    EXPECT_TRUE(dlg.ReplaceAllButton()->isEnabled());
    dlg.reject();
    EXPECT_EQ(dlg.Request().result, SFxFindReplaceRequest::Cancelled);
    EXPECT_TRUE(dlg.Request().inSelection);
}
} // namespace
