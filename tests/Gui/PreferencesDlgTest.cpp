// The preferences window: what it shows is what the preferences hold, and what is changed in it
// is written to the preferences file and read back at the next start.
#include "Gui/PreferencesDlg.h"

#include "DialogTestSupport.h"
#include "Gui/QtText.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFontComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QSpinBox>

#include <gtest/gtest.h>

namespace
{
const std::u16string ProgramFolder = ToU16(QStringLiteral(QUILL_SOURCE_DIR "/data/"));

class PreferencesDlgTest : public ::testing::Test
{
protected:
    SDialogTestEnv env;
    CPreferences prefs{env.Env()};
};

TEST_F(PreferencesDlgTest, ChangesSurviveARestartThroughThePreferencesFile)
{
    int applied = 0;
    {
        CPreferencesDlg dlg(prefs, &env.english, ProgramFolder);
        QObject::connect(&dlg, &CPreferencesDlg::Applied, [&] { ++applied; });
        EXPECT_EQ(dlg.Pages()->count(), CPreferencesDlg::PageCount);
        EXPECT_EQ(dlg.AutoSaveMinutesSpin()->value(), 3);
        EXPECT_EQ(dlg.BackupIntervalSpin()->value(), 320);
        EXPECT_TRUE(dlg.TrayShowCheck()->isChecked());
        dlg.AutoSaveMinutesSpin()->setValue(9);
        dlg.AutoCloseMinutesSpin()->setValue(15);
        dlg.FontSizeSpin()->setValue(14);
        dlg.BulletEdit()->setText(QStringLiteral("\u2022"));
        dlg.TabSpacesSpin()->setValue(4);
        dlg.DateFormatCombo()->setCurrentIndex(0);
        dlg.TimeFormatCombo()->setCurrentIndex(0);
        dlg.StampEachLineCheck()->setChecked(true);
        dlg.BackupDaysSpin()->setValue(0);
        dlg.BackupOnExitCheck()->setChecked(true);
        dlg.BackupFolderEdit()->setText(QStringLiteral("/backups"));
        dlg.RunWithOsCheck()->setChecked(true);
        dlg.WizardCheck()->setChecked(false);
        dlg.TrayCloseCheck()->setChecked(true);
        dlg.AlwaysOnTopCheck()->setChecked(true);
        const int german = dlg.LanguageCombo()->findData(QStringLiteral("German.lng"));
        ASSERT_GE(german, 0);
        dlg.LanguageCombo()->setCurrentIndex(german);
        dlg.ThemeEdit()->setText(QStringLiteral("Dark"));
        dlg.accept();
    }
    EXPECT_EQ(applied, 1);
    ASSERT_TRUE(prefs.Save(SDialogTestEnv::IniPath));

    CPreferences restarted(env.Env());
    ASSERT_TRUE(restarted.Load(SDialogTestEnv::IniPath));
    EXPECT_EQ(restarted.Other().autoSaveMinutes, 9);
    EXPECT_EQ(restarted.Other().autoClosePasswordProtectedFileMinutes, 15);
    EXPECT_EQ(restarted.Editor().fontSize, 14);
    EXPECT_EQ(restarted.Editor().bulletCharacter, u"\u2022");
    EXPECT_EQ(restarted.Editor().spacesInTab, 4);
    EXPECT_EQ(restarted.Editor().dateStampFormat, 0);
    EXPECT_EQ(restarted.Editor().timeStampFormat, 0);
    EXPECT_TRUE(restarted.Editor().stampDateTimeForEachNewLine);
    EXPECT_EQ(restarted.Backup().delOldBackupDays, 0);
    EXPECT_TRUE(restarted.Backup().backupOnExit);
    EXPECT_EQ(restarted.Backup().backupFolder, u"/backups");
    EXPECT_TRUE(restarted.Startup().runWithOsStart);
    EXPECT_FALSE(restarted.Startup().showFirstLaunchWizard);
    EXPECT_TRUE(restarted.SysTray().closeToTray);
    EXPECT_TRUE(restarted.SysTray().alwaysOnTop);
    EXPECT_EQ(restarted.Paths().languagePath, u"German.lng");
    EXPECT_EQ(restarted.Paths().skinPath, u"Skins/Default");
    EXPECT_EQ(restarted.Paths().skinThemeName, u"Dark");

    // The next window shows the stored values, and cancelling it changes nothing.
    CPreferencesDlg again(restarted, &env.english, ProgramFolder);
    EXPECT_EQ(again.AutoSaveMinutesSpin()->value(), 9);
    EXPECT_EQ(again.BackupDaysSpin()->text(), QStringLiteral("Keep all"));
    EXPECT_EQ(again.LanguageCombo()->currentData().toString(), QStringLiteral("German.lng"));
    EXPECT_TRUE(again.HideWhenRunWithOsCheck()->isEnabled());
    again.AutoSaveMinutesSpin()->setValue(30);
    again.reject();
    EXPECT_EQ(restarted.Other().autoSaveMinutes, 9);
}

TEST_F(PreferencesDlgTest, ABulletThatIsNotOneCharacterFallsBackAndUnknownChoicesAreKept)
{
    prefs.Paths().languagePath = u"/opt/lang/Klingon.lng";
    prefs.Paths().skinPath = u"Skins/Retro";
    CPreferencesDlg dlg(prefs, &env.english, ProgramFolder);
    EXPECT_EQ(dlg.LanguageCombo()->currentData().toString(), QStringLiteral("/opt/lang/Klingon.lng"));
    EXPECT_EQ(dlg.SkinCombo()->currentText(), QStringLiteral("Retro"));
    for (const QString& bullet : {QString(), QStringLiteral(" "), QStringLiteral("**")})
    {
        dlg.BulletEdit()->setText(bullet);
        dlg.Apply();
        EXPECT_EQ(prefs.Editor().bulletCharacter, u"\u00B7") << bullet.toStdString();
    }
    dlg.BulletEdit()->setText(QStringLiteral("\U0001F4CC")); // one character, two code units
    dlg.Apply();
    EXPECT_EQ(prefs.Editor().bulletCharacter, u"\U0001F4CC");
    EXPECT_EQ(prefs.Paths().languagePath, u"/opt/lang/Klingon.lng");
    EXPECT_EQ(prefs.Paths().skinPath, u"Skins/Retro");

    // Dependent settings follow their switch.
    dlg.TrayShowCheck()->setChecked(false);
    EXPECT_FALSE(dlg.TrayCloseCheck()->isEnabled());
    dlg.AutoBackupCheck()->setChecked(false);
    EXPECT_FALSE(dlg.BackupIntervalSpin()->isEnabled());
}
} // namespace
