// The password generator window driven through its controls.
#include "Gui/PasswordGeneratorDlg.h"

#include "DialogTestSupport.h"
#include "Gui/QtText.h"

#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include <gtest/gtest.h>

namespace
{
class CFixedEntropy : public IPasswordEntropySource
{
public:
    uint32_t TickCountMs() const override { return 123456; }
    void CursorPosition(int32_t& x, int32_t& y) const override
    {
        x = 17;
        y = 29;
    }
};

class PasswordGeneratorDlgTest : public ::testing::Test
{
protected:
    SDialogTestEnv env;
    CPreferences prefs{env.Env()};
    CFixedEntropy entropy;
    bool editorOpen = true;
    QStringList inserted;

    std::unique_ptr<CPasswordGeneratorDlg> Make()
    {
        CPasswordGeneratorDlg::SInsertTarget target{[this] { return editorOpen; },
                                                    [this](const QString& text) { inserted << text; }};
        return std::make_unique<CPasswordGeneratorDlg>(prefs, &env.english, target, &entropy);
    }

    static QString Lang(const SDialogTestEnv& e, const char16_t* key)
    {
        return ToQString(e.english.GetString(key));
    }
};

TEST_F(PasswordGeneratorDlgTest, StrengthLabelFollowsLengthAndSetsWithColourAndEmphasis)
{
    auto dlg = Make();
    QLabel* label = dlg->StrengthLabel();
    const QColor normalColour = dlg->palette().color(QPalette::WindowText);
    struct SCase
    {
        bool sets[4];
        const char* length;
        const char16_t* key;
        QColor colour;
        bool bold;
    };
    const SCase cases[] = {
        {{true, true, true, false},
         "10",
         u"PWDGEN_DLG_PWD_STRGH_STRONG_LABEL",
         QColor(0x38, 0x6E, 0xCB),
         false},
        {{true, true, true, false}, "8", u"PWDGEN_DLG_PWD_STRGH_WEAK_LABEL", QColor(0xC8, 0x1E, 0x1E), true},
        {{true, true, true, false},
         "9",
         u"PWDGEN_DLG_PWD_STRGH_STRONG_LABEL",
         QColor(0x38, 0x6E, 0xCB),
         false},
        {{true, true, true, false}, "16", u"PWDGEN_DLG_PWD_STRGH_FANT_LABEL", QColor(0x74, 0xAD, 0x1E), true},
        {{false, false, true, false},
         "6",
         u"PWDGEN_DLG_PWD_STRGH_WEAK_LABEL",
         QColor(0xC8, 0x1E, 0x1E),
         true},
        {{false, false, false, false},
         "16",
         u"PWDGEN_DLG_PWD_STRGH_WEAK_LABEL",
         QColor(0xC8, 0x1E, 0x1E),
         true},
    };
    for (const SCase& c : cases)
    {
        for (int i = 0; i < 4; ++i)
            dlg->SetCheck(i)->setChecked(c.sets[i]);
        dlg->LengthEdit()->setText(QString::fromLatin1(c.length));
        SCOPED_TRACE(c.length);
        EXPECT_EQ(label->text(), Lang(env, c.key));
        EXPECT_EQ(label->palette().color(QPalette::WindowText), c.colour);
        EXPECT_EQ(label->font().bold(), c.bold);
    }
    // All four sets (N = 91) at length 8: K = 92^8, S = 92^4 / 1048575 = 68, normal.
    for (int i = 0; i < 4; ++i)
        dlg->SetCheck(i)->setChecked(true);
    dlg->LengthEdit()->setText(QStringLiteral("8"));
    EXPECT_EQ(label->text(), Lang(env, u"PWDGEN_DLG_PWD_STRGH_NORM_LABEL"));
    EXPECT_EQ(label->palette().color(QPalette::WindowText), normalColour);
    EXPECT_FALSE(label->font().bold());
}

TEST_F(PasswordGeneratorDlgTest, GenerateIsOffWithoutSetsAndCountsAreClamped)
{
    auto dlg = Make();
    for (int i = 0; i < 4; ++i)
        dlg->SetCheck(i)->setChecked(false);
    EXPECT_FALSE(dlg->GenerateButton()->isEnabled());
    dlg->SetCheck(3)->setChecked(true);
    EXPECT_TRUE(dlg->GenerateButton()->isEnabled());

    dlg->LengthEdit()->setText(QStringLiteral("5000"));
    dlg->CountEdit()->setText(QStringLiteral("0"));
    EXPECT_EQ(prefs.PwdGen().passwordLength, 1000);
    EXPECT_EQ(prefs.PwdGen().passwordsToGenerate, 1);
    dlg->Generate();
    EXPECT_EQ(dlg->LengthEdit()->text(), QStringLiteral("1000"));
    EXPECT_EQ(dlg->CountEdit()->text(), QStringLiteral("1"));
    ASSERT_EQ(dlg->Passwords()->count(), 1);
    EXPECT_EQ(dlg->Passwords()->item(0)->text().size(), 1000);
}

TEST_F(PasswordGeneratorDlgTest, GeneratedPasswordsComeFromTheAlphabetAndAreCopiedAndInserted)
{
    auto dlg = Make();
    dlg->SetCheck(0)->setChecked(false);
    dlg->SetCheck(2)->setChecked(true);
    dlg->SetCheck(4)->setChecked(true);
    dlg->LengthEdit()->setText(QStringLiteral("12"));
    dlg->CountEdit()->setText(QStringLiteral("5"));
    EXPECT_FALSE(dlg->CopyButton()->isEnabled());
    EXPECT_FALSE(dlg->InsertButton()->isEnabled());
    dlg->Generate();
    ASSERT_EQ(dlg->Passwords()->count(), 5);
    const QString alphabet = ToQString(PasswordAlphabet(prefs.PwdGen()));
    for (int i = 0; i < 5; ++i)
    {
        const QString password = dlg->Passwords()->item(i)->text();
        EXPECT_EQ(password.size(), 12);
        for (QChar c : password)
            EXPECT_TRUE(alphabet.contains(c)) << password.toStdString();
        EXPECT_FALSE(password.contains(QLatin1Char('B')) || password.contains(QLatin1Char('0')));
    }
    EXPECT_TRUE(dlg->CopyButton()->isEnabled());
    EXPECT_TRUE(dlg->InsertButton()->isEnabled());

    dlg->Passwords()->setCurrentRow(3);
    dlg->CopySelected();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), dlg->Passwords()->item(3)->text());
    dlg->InsertButton()->click();
    EXPECT_EQ(inserted, QStringList{dlg->Passwords()->item(3)->text()});

    // No editor to take it: the button is off and a stray call inserts nothing.
    editorOpen = false;
    dlg->Generate();
    EXPECT_FALSE(dlg->InsertButton()->isEnabled());
    dlg->InsertSelected();
    EXPECT_EQ(inserted.size(), 1);
}

TEST_F(PasswordGeneratorDlgTest, SettingsSurviveTheWindowAndTheIniFile)
{
    {
        auto dlg = Make();
        dlg->SetCheck(0)->setChecked(false);
        dlg->SetCheck(3)->setChecked(true);
        dlg->SetCheck(4)->setChecked(true);
        dlg->LengthEdit()->setText(QStringLiteral("21"));
        dlg->CountEdit()->setText(QStringLiteral("4"));
    }
    ASSERT_TRUE(prefs.Save(SDialogTestEnv::IniPath));
    CPreferences reloaded(env.Env());
    ASSERT_TRUE(reloaded.Load(SDialogTestEnv::IniPath));
    CPasswordGeneratorDlg dlg(reloaded, &env.english, {}, &entropy);
    EXPECT_FALSE(dlg.SetCheck(0)->isChecked());
    EXPECT_TRUE(dlg.SetCheck(1)->isChecked());
    EXPECT_TRUE(dlg.SetCheck(2)->isChecked());
    EXPECT_TRUE(dlg.SetCheck(3)->isChecked());
    EXPECT_TRUE(dlg.SetCheck(4)->isChecked());
    EXPECT_EQ(dlg.LengthEdit()->text(), QStringLiteral("21"));
    EXPECT_EQ(dlg.CountEdit()->text(), QStringLiteral("4"));
}
} // namespace
