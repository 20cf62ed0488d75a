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
    p.PwdGen() = {5, 16, false, false, false, true, true};
    p.Layout() = {400, 220, 180, u"FileSave,-,ItemNewNote"};
    p.DocumentState().recentFilePath = u"/data/My.ddb";
    p.DocumentState().idGeneratorState = {0, 1, 2, 0xFF};
    p.DocumentState().navigationState = {9};
    p.DocumentState().alarmIdCounter = 4000000000u;
    p.DocumentState().noteCounter = 12;
    p.DocumentState().folderCounter = 3;
    p.DocumentState().lastAlarmId = 77;
}

// The file text that `prefs` saves; two stores with equal texts hold equal values, since every
// value is written (empty texts and lists read back as their defaults either way).
std::u16string SavedText(CPreferences& prefs, SPrefsFixture& fixture)
{
    EXPECT_TRUE(prefs.Save(u"/prog/compare.ini"));
    return Utf16LeBytesToText(fixture.fs.Bytes(u"/prog/compare.ini"));
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
    CPreferences defaults(fixture.Env());
    ChangeEveryValue(saved);
    ASSERT_TRUE(saved.Save(SPrefsFixture::IniPath));
    const std::u16string savedText = fixture.IniText();

    // Every line differs from the defaults' file, so no value can hide behind its default.
    const std::u16string defaultText = u"\n" + SavedText(defaults, fixture).substr(1);
    for (size_t start = 1, end; (end = savedText.find(u"\r\n", start)) != std::u16string::npos;
         start = end + 2)
        EXPECT_EQ(defaultText.find(u"\n" + savedText.substr(start, end - start + 2)), std::u16string::npos)
            << Utf16ToUtf8(savedText.substr(start, end - start));

    CPreferences loaded(fixture.Env());
    ASSERT_TRUE(loaded.Load(SPrefsFixture::IniPath));
    EXPECT_EQ(SavedText(loaded, fixture), savedText);
    EXPECT_EQ(loaded.ShellState().windowPlacements, saved.ShellState().windowPlacements);
    EXPECT_EQ(loaded.DocumentState().idGeneratorState, saved.DocumentState().idGeneratorState);
    EXPECT_EQ(loaded.DocumentState().alarmIdCounter, 4000000000u);
    EXPECT_EQ(loaded.Backup().lastBackupDate, 43999.125);
    EXPECT_EQ(loaded.Search().replaceLine, u"with=this");
    EXPECT_TRUE(log.Messages().empty());
}

TEST(PreferencesSave, DefaultsSurviveASaveAndLoadIntoChangedPreferences)
{
    SPrefsFixture fixture;
    CPreferences defaults(fixture.Env());
    ASSERT_TRUE(defaults.Save(SPrefsFixture::IniPath));
    CPreferences changed(fixture.Env());
    ChangeEveryValue(changed);
    ASSERT_TRUE(changed.Load(SPrefsFixture::IniPath));
    EXPECT_EQ(SavedText(changed, fixture), SavedText(defaults, fixture));
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

    // Dates that already have six decimals do not drift by a step at each save.
    for (int step = 0; step < 2000; ++step)
    {
        const double date = (step + 1) * 0.000731; // small day counts show the rounding error
        CPreferences written(fixture.Env());
        written.Backup().lastBackupDate = date;
        ASSERT_TRUE(written.Save(SPrefsFixture::IniPath));
        CPreferences once(fixture.Env());
        once.Load(SPrefsFixture::IniPath);
        ASSERT_TRUE(once.Save(SPrefsFixture::IniPath));
        CPreferences twice(fixture.Env());
        twice.Load(SPrefsFixture::IniPath);
        ASSERT_EQ(once.Backup().lastBackupDate, twice.Backup().lastBackupDate) << step;
    }
}

TEST(PreferencesSave, ResetRestoresDefaults)
{
    SPrefsFixture fixture;
    CPreferences fresh(fixture.Env());
    CPreferences prefs(fixture.Env());
    ChangeEveryValue(prefs);
    prefs.Reset();
    EXPECT_EQ(SavedText(prefs, fixture), SavedText(fresh, fixture));
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
