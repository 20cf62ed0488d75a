// Writing "Quillarium.ini" and reading it back, resetting, and the failures of whole groups.
#include "PrefsTestSupport.h"

#include <gtest/gtest.h>

namespace
{
void ChangeEveryValue(CPreferences& p)
{
    p.Paths() = {u"Skins/Dark", u"Night", u"Sounds/Soft", u"Languages/Deutsch.lng", u"/open", u"/save"};
    p.Startup() = {false, false, false, true};
    p.SysTray() = {false, false, true, true, true};
    p.Internet() = {false, true};
    p.ShellState().recentFiles.Assign({u"/one.ddb", u"/two.ddb"});
    p.ShellState().windowPlacements = {{u"GlobalSrchDlg", 2, -10, 20, 630, 470},
                                       {u"FindTxtDlg", 0, 1, 2, 3, 4}};
    p.Other() = {false, 9, 30};
    p.Backup().enableAutobackup = false;
    p.Backup().backupOnExit = true;
    p.Backup().backupIntervalMinutes = 60;
    p.Backup().delOldBackupDays = 0;
    p.Backup().backupFolder = u"/backups/";
    p.Backup().lastBackupDate = 43999.125;
    p.Editor().fontName = u"Noto Sans";
    p.Editor().fontSize = 299;
    p.Editor().bulletCharacter = u"\u2022";
    p.Editor().spacesInTab = 4;
    p.Editor().dateStampFormat = 0;
    p.Editor().timeStampFormat = 0;
    p.Editor().stampDateTimeForEachNewLine = true;
    p.Editor().lastUsedSpellDictionary = u"de_DE";
    p.Editor().recentFonts.Assign({u"Arial", u"Tahoma"});
    p.Search() = {u"+alpha -beta", true, true, true, u"find me", u"with=this", true};
    p.PwdGen() = {5, 16, false, true, false, true, true};
    p.Layout() = {400, 220, 180};
    p.DocumentState().recentFilePath = u"/data/My.ddb";
    p.DocumentState().idGeneratorState = {0, 1, 2, 0xFF};
    p.DocumentState().navigationState = {9};
    p.DocumentState().alarmIdCounter = 4000000000u;
    p.DocumentState().noteCounter = 12;
    p.DocumentState().folderCounter = 3;
    p.DocumentState().lastAlarmId = 77;
}

void ExpectSameValues(const CPreferences& a, const CPreferences& b)
{
    EXPECT_EQ(a.Paths().skinPath, b.Paths().skinPath);
    EXPECT_EQ(a.Paths().skinThemeName, b.Paths().skinThemeName);
    EXPECT_EQ(a.Paths().soundPath, b.Paths().soundPath);
    EXPECT_EQ(a.Paths().languagePath, b.Paths().languagePath);
    EXPECT_EQ(a.Paths().lastAccessedFileOpenPath, b.Paths().lastAccessedFileOpenPath);
    EXPECT_EQ(a.Paths().lastAccessedFileSavePath, b.Paths().lastAccessedFileSavePath);
    EXPECT_EQ(a.Startup().hideWhenRunWithOsStart, b.Startup().hideWhenRunWithOsStart);
    EXPECT_EQ(a.Startup().showFirstLaunchWizard, b.Startup().showFirstLaunchWizard);
    EXPECT_EQ(a.Startup().checkFileExtAssociations, b.Startup().checkFileExtAssociations);
    EXPECT_EQ(a.Startup().runWithOsStart, b.Startup().runWithOsStart);
    EXPECT_EQ(a.SysTray().show, b.SysTray().show);
    EXPECT_EQ(a.SysTray().rightClickOnly, b.SysTray().rightClickOnly);
    EXPECT_EQ(a.SysTray().minimizeToTray, b.SysTray().minimizeToTray);
    EXPECT_EQ(a.SysTray().closeToTray, b.SysTray().closeToTray);
    EXPECT_EQ(a.SysTray().alwaysOnTop, b.SysTray().alwaysOnTop);
    EXPECT_EQ(a.Internet().checkForAutoUpdate, b.Internet().checkForAutoUpdate);
    EXPECT_EQ(a.Internet().includeBetaWhenCheck, b.Internet().includeBetaWhenCheck);
    EXPECT_EQ(a.ShellState().recentFiles.Items(), b.ShellState().recentFiles.Items());
    EXPECT_EQ(a.ShellState().windowPlacements, b.ShellState().windowPlacements);
    EXPECT_EQ(a.Other().autoSaveData, b.Other().autoSaveData);
    EXPECT_EQ(a.Other().autoSaveMinutes, b.Other().autoSaveMinutes);
    EXPECT_EQ(a.Other().autoClosePasswordProtectedFileMinutes,
              b.Other().autoClosePasswordProtectedFileMinutes);
    EXPECT_EQ(a.Backup().enableAutobackup, b.Backup().enableAutobackup);
    EXPECT_EQ(a.Backup().backupOnExit, b.Backup().backupOnExit);
    EXPECT_EQ(a.Backup().backupIntervalMinutes, b.Backup().backupIntervalMinutes);
    EXPECT_EQ(a.Backup().delOldBackupDays, b.Backup().delOldBackupDays);
    EXPECT_EQ(a.Backup().backupFolder, b.Backup().backupFolder);
    EXPECT_EQ(a.Backup().lastBackupDate, b.Backup().lastBackupDate);
    EXPECT_EQ(a.Editor().fontName, b.Editor().fontName);
    EXPECT_EQ(a.Editor().fontSize, b.Editor().fontSize);
    EXPECT_EQ(a.Editor().bulletCharacter, b.Editor().bulletCharacter);
    EXPECT_EQ(a.Editor().spacesInTab, b.Editor().spacesInTab);
    EXPECT_EQ(a.Editor().dateStampFormat, b.Editor().dateStampFormat);
    EXPECT_EQ(a.Editor().timeStampFormat, b.Editor().timeStampFormat);
    EXPECT_EQ(a.Editor().stampDateTimeForEachNewLine, b.Editor().stampDateTimeForEachNewLine);
    EXPECT_EQ(a.Editor().lastUsedSpellDictionary, b.Editor().lastUsedSpellDictionary);
    EXPECT_EQ(a.Editor().recentFonts.Items(), b.Editor().recentFonts.Items());
    EXPECT_EQ(a.Search().globalText, b.Search().globalText);
    EXPECT_EQ(a.Search().globalMatchCase, b.Search().globalMatchCase);
    EXPECT_EQ(a.Search().globalWholeWords, b.Search().globalWholeWords);
    EXPECT_EQ(a.Search().globalBoolean, b.Search().globalBoolean);
    EXPECT_EQ(a.Search().findLine, b.Search().findLine);
    EXPECT_EQ(a.Search().replaceLine, b.Search().replaceLine);
    EXPECT_EQ(a.Search().findMatchCase, b.Search().findMatchCase);
    EXPECT_EQ(a.PwdGen().passwordsToGenerate, b.PwdGen().passwordsToGenerate);
    EXPECT_EQ(a.PwdGen().passwordLength, b.PwdGen().passwordLength);
    EXPECT_EQ(a.PwdGen().allowLowercase, b.PwdGen().allowLowercase);
    EXPECT_EQ(a.PwdGen().allowUppercase, b.PwdGen().allowUppercase);
    EXPECT_EQ(a.PwdGen().allowNumeric, b.PwdGen().allowNumeric);
    EXPECT_EQ(a.PwdGen().allowPunctuation, b.PwdGen().allowPunctuation);
    EXPECT_EQ(a.PwdGen().noSimilarChars, b.PwdGen().noSimilarChars);
    EXPECT_EQ(a.Layout().mainWndTreeWidth, b.Layout().mainWndTreeWidth);
    EXPECT_EQ(a.Layout().folderListCardWidth, b.Layout().folderListCardWidth);
    EXPECT_EQ(a.Layout().folderListCardHeight, b.Layout().folderListCardHeight);
    EXPECT_EQ(a.DocumentState().recentFilePath, b.DocumentState().recentFilePath);
    EXPECT_EQ(a.DocumentState().idGeneratorState, b.DocumentState().idGeneratorState);
    EXPECT_EQ(a.DocumentState().navigationState, b.DocumentState().navigationState);
    EXPECT_EQ(a.DocumentState().alarmIdCounter, b.DocumentState().alarmIdCounter);
    EXPECT_EQ(a.DocumentState().noteCounter, b.DocumentState().noteCounter);
    EXPECT_EQ(a.DocumentState().folderCounter, b.DocumentState().folderCounter);
    EXPECT_EQ(a.DocumentState().lastAlarmId, b.DocumentState().lastAlarmId);
}

// Throws from one part when told to, as a broken group would.
class CFailingPreferences : public CPreferences
{
public:
    bool failMajor = false;
    bool failProject = false;
    using CPreferences::CPreferences;

protected:
    void VisitMajorPrefs(IPrefsVisitor& visitor) override
    {
        if (failMajor)
            throw std::runtime_error("major");
        CPreferences::VisitMajorPrefs(visitor);
    }
    void VisitProjectPrefs(IPrefsVisitor& visitor) override
    {
        if (failProject)
            throw std::runtime_error("project");
        CPreferences::VisitProjectPrefs(visitor);
    }
};
} // namespace

TEST(PreferencesSave, EveryValueSurvivesASaveAndLoad)
{
    SPrefsFixture fixture;
    CLogCapture log;
    CPreferences saved(fixture.Env());
    ChangeEveryValue(saved);
    ASSERT_TRUE(saved.Save(SPrefsFixture::IniPath));

    CPreferences loaded(fixture.Env());
    ASSERT_TRUE(loaded.Load(SPrefsFixture::IniPath));
    ExpectSameValues(saved, loaded);
    EXPECT_TRUE(log.Messages().empty());

    // Saving what was loaded writes the same bytes again.
    const std::string first = fixture.fs.Bytes(SPrefsFixture::IniPath);
    ASSERT_TRUE(loaded.Save(SPrefsFixture::IniPath));
    EXPECT_EQ(fixture.fs.Bytes(SPrefsFixture::IniPath), first);
}

TEST(PreferencesSave, DefaultsSurviveASaveAndLoadIntoChangedPreferences)
{
    SPrefsFixture fixture;
    CPreferences defaults(fixture.Env());
    ASSERT_TRUE(defaults.Save(SPrefsFixture::IniPath));
    CPreferences changed(fixture.Env());
    ChangeEveryValue(changed);
    ASSERT_TRUE(changed.Load(SPrefsFixture::IniPath));
    ExpectSameValues(defaults, changed);
}

TEST(PreferencesSave, FileHoldsUtf16LinesWithNumberedKeysAndNoEmptyValues)
{
    SPrefsFixture fixture;
    CPreferences prefs(fixture.Env());
    prefs.ShellState().recentFiles.Assign({u"/a.ddb", u"/b.ddb"});
    prefs.Editor().fontSize = 14;
    prefs.Backup().lastBackupDate = 44000.25;
    ASSERT_TRUE(prefs.Save(SPrefsFixture::IniPath));
    const std::string& bytes = fixture.fs.Bytes(SPrefsFixture::IniPath);
    ASSERT_GE(bytes.size(), 2u);
    EXPECT_EQ(bytes.substr(0, 2), "\xFF\xFE");
    const std::u16string text = fixture.IniText();
    EXPECT_NE(text.find(u"\r\nRecentlyOpenedFile0=/a.ddb\r\nRecentlyOpenedFile1=/b.ddb\r\n"),
              std::u16string::npos);
    EXPECT_EQ(text.find(u"RecentlyOpenedFile2"), std::u16string::npos);
    EXPECT_NE(text.find(u"\r\nDefaultPrefsFontSize=14\r\n"), std::u16string::npos);
    EXPECT_NE(text.find(u"\r\nSysTrayShow=true\r\n"), std::u16string::npos);
    EXPECT_NE(text.find(u"\r\nBackupPrefsLastBackupDate=44000.250000\r\n"), std::u16string::npos);
    EXPECT_EQ(text.find(u"=\r\n"), std::u16string::npos); // empty texts are left out
}

// A date written with six decimals must never read back later than it was, or a backup made
// just before saving would count as made in the future.
TEST(PreferencesSave, LastBackupDateRoundsDownWhenWritten)
{
    SPrefsFixture fixture;
    fixture.clock.now = 44000.4999999; // just after the stored moment below, before the next step
    CPreferences prefs(fixture.Env());
    prefs.Backup().lastBackupDate = 44000.4999996;
    ASSERT_TRUE(prefs.Save(SPrefsFixture::IniPath));
    CPreferences loaded(fixture.Env());
    loaded.Load(SPrefsFixture::IniPath);
    EXPECT_NEAR(loaded.Backup().lastBackupDate, 44000.499999, 1e-9);
}

TEST(PreferencesSave, ResetRestoresDefaults)
{
    SPrefsFixture fixture;
    CPreferences fresh(fixture.Env());
    CPreferences prefs(fixture.Env());
    ChangeEveryValue(prefs);
    prefs.Reset();
    ExpectSameValues(fresh, prefs);
}

TEST(PreferencesSave, FailingPartsAreLoggedAndTheOtherPartStillWorks)
{
    SPrefsFixture fixture;
    fixture.WriteIni({u"SysTrayShow=false", u"DefaultPrefsFontSize=20"});
    CLogCapture log;
    CFailingPreferences prefs(fixture.Env());
    prefs.failProject = true;
    prefs.Load(SPrefsFixture::IniPath);
    EXPECT_FALSE(prefs.SysTray().show);
    prefs.Save(u"/prog/out.ini");
    prefs.Reset();
    EXPECT_TRUE(prefs.SysTray().show);
    EXPECT_EQ(log.Messages(),
              (std::vector<std::u16string>{
                  u"Error: General exception caught on loading project-specific preferences",
                  u"Error: General exception caught on reseting project-specific preferences",
                  u"Error: General exception caught on saving project-specific preferences",
                  u"Error: General exception caught on reseting project-specific preferences"}));
    EXPECT_NE(fixture.fs.Bytes(u"/prog/out.ini").size(), 0u);

    prefs.failProject = false;
    prefs.failMajor = true;
    CLogCapture majorLog;
    prefs.Load(SPrefsFixture::IniPath);
    EXPECT_EQ(prefs.Editor().fontSize, 20);
    prefs.Save(u"/prog/out.ini");
    prefs.Reset();
    EXPECT_EQ(majorLog.Messages(), (std::vector<std::u16string>{
                                       u"Error: General exception caught on loading major preferences",
                                       u"Error: General exception caught on reseting major preferences",
                                       u"Error: General exception caught on saving major preferences",
                                       u"Error: General exception caught on reseting major preferences"}));
}

// A group that throws half-way through loading (here the font query) leaves its part at the
// defaults rather than half loaded.
TEST(PreferencesSave, PartThatThrowsWhileLoadingFallsBackToDefaults)
{
    SPrefsFixture fixture;
    fixture.WriteIni({u"OtherPrefsAutoSaveMinutes=9", u"SysTrayShow=false"});
    CPreferences prefs(fixture.Env());
    CLogCapture log;
    fixture.fonts.throws = true;
    prefs.Load(SPrefsFixture::IniPath);
    EXPECT_EQ(prefs.Other().autoSaveMinutes, 3);
    EXPECT_FALSE(prefs.SysTray().show);
    EXPECT_EQ(log.Messages(),
              (std::vector<std::u16string>{
                  u"Error: General exception caught on loading project-specific preferences",
                  u"Error: General exception caught on reseting project-specific preferences"}));
}

TEST(PreferencesSave, UnwritableFileFails)
{
    SPrefsFixture fixture;
    CPreferences prefs(fixture.Env());
    CLogCapture log;
    fixture.fs.Faults().failWriteAfter = 0;
    EXPECT_FALSE(prefs.Save(SPrefsFixture::IniPath));
    EXPECT_EQ(log.Messages().size(), 1u);
}
