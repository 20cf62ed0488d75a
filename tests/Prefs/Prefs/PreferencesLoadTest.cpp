// Loading "Quillarium.ini": defaults, the checks of every key, the default font face, numbered
// lists and files that are damaged or not ours.
#include "PrefsTestSupport.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>

namespace
{
const std::u16string Bullet = u"\u00B7";

struct SLoaded
{
    SPrefsFixture fixture;
    CLogCapture log;
    std::unique_ptr<CPreferences> prefs;

    explicit SLoaded(const std::vector<std::u16string>& lines, bool portable = false)
    {
        fixture.portable = portable;
        fixture.WriteIni(lines);
        prefs = std::make_unique<CPreferences>(fixture.Env());
        prefs->Load(SPrefsFixture::IniPath);
    }
};
} // namespace

TEST(PreferencesLoad, MissingFileGivesTheDesignedDefaults)
{
    SPrefsFixture fixture;
    CLogCapture log;
    CPreferences prefs(fixture.Env());
    EXPECT_FALSE(prefs.Load(u"/prog/none.ini"));
    EXPECT_EQ(log.Messages(),
              std::vector<std::u16string>{
                  u"Info: Preferences file /prog/none.ini not found, default preferences are used."});

    EXPECT_TRUE(prefs.Other().autoSaveData);
    EXPECT_EQ(prefs.Other().autoSaveMinutes, 3);
    EXPECT_TRUE(prefs.Backup().enableAutobackup);
    EXPECT_FALSE(prefs.Backup().backupOnExit);
    EXPECT_EQ(prefs.Backup().backupIntervalMinutes, 320);
    EXPECT_EQ(prefs.Backup().delOldBackupDays, 7);
    EXPECT_EQ(prefs.Backup().backupFolder, u"");
    EXPECT_EQ(prefs.Backup().lastBackupDate, 0.0);
    EXPECT_EQ(prefs.Editor().fontName, u"Tahoma");
    EXPECT_EQ(prefs.Editor().fontSize, 12);
    EXPECT_EQ(prefs.Editor().bulletCharacter, Bullet);
    EXPECT_EQ(prefs.Editor().spacesInTab, 8);
    EXPECT_EQ(prefs.Editor().dateStampFormat, 1);
    EXPECT_EQ(prefs.Editor().timeStampFormat, 1);
    EXPECT_FALSE(prefs.Editor().stampDateTimeForEachNewLine);
    EXPECT_TRUE(prefs.Startup().hideWhenRunWithOsStart);
    EXPECT_TRUE(prefs.Startup().showFirstLaunchWizard);
    EXPECT_TRUE(prefs.SysTray().show);
    EXPECT_TRUE(prefs.SysTray().rightClickOnly);
    EXPECT_FALSE(prefs.SysTray().minimizeToTray);
    EXPECT_FALSE(prefs.SysTray().closeToTray);
    EXPECT_FALSE(prefs.SysTray().alwaysOnTop);
    EXPECT_TRUE(prefs.Internet().checkForAutoUpdate);
    EXPECT_EQ(prefs.PwdGen().passwordsToGenerate, 1);
    EXPECT_EQ(prefs.PwdGen().passwordLength, 10);
    EXPECT_TRUE(prefs.PwdGen().allowLowercase);
    EXPECT_TRUE(prefs.PwdGen().allowUppercase);
    EXPECT_TRUE(prefs.PwdGen().allowNumeric);
    EXPECT_FALSE(prefs.PwdGen().allowPunctuation);
    EXPECT_FALSE(prefs.PwdGen().noSimilarChars);
    EXPECT_EQ(prefs.DocumentState().recentFilePath, u"/home/user/Documents/Quillarium Documents.ddb");
    EXPECT_TRUE(prefs.ShellState().recentFiles.Items().empty());
}

TEST(PreferencesLoad, PortableModeTurnsAutomaticBackupsOffUnlessStored)
{
    EXPECT_FALSE(SLoaded({}, true).prefs->Backup().enableAutobackup);
    EXPECT_TRUE(SLoaded({u"BackupPrefsEnableAutobackup=true"}, true).prefs->Backup().enableAutobackup);
    EXPECT_TRUE(SLoaded({}, false).prefs->Backup().enableAutobackup);
    EXPECT_FALSE(SLoaded({u"BackupPrefsEnableAutobackup=false"}, false).prefs->Backup().enableAutobackup);
}

struct SIntCase
{
    const char16_t* line;
    std::function<int(const CPreferences&)> get;
    int expected;
};

TEST(PreferencesLoad, IntegerChecksFallBackOrClamp)
{
    auto fontSize = [](const CPreferences& p) { return p.Editor().fontSize; };
    auto tabSpaces = [](const CPreferences& p) { return p.Editor().spacesInTab; };
    auto dateFormat = [](const CPreferences& p) { return p.Editor().dateStampFormat; };
    auto timeFormat = [](const CPreferences& p) { return p.Editor().timeStampFormat; };
    auto pwdLen = [](const CPreferences& p) { return p.PwdGen().passwordLength; };
    auto pwdCount = [](const CPreferences& p) { return p.PwdGen().passwordsToGenerate; };
    auto autoSave = [](const CPreferences& p) { return p.Other().autoSaveMinutes; };
    auto keepDays = [](const CPreferences& p) { return p.Backup().delOldBackupDays; };
    auto interval = [](const CPreferences& p) { return p.Backup().backupIntervalMinutes; };
    auto treeWidth = [](const CPreferences& p) { return p.Layout().mainWndTreeWidth; };
    auto cardWidth = [](const CPreferences& p) { return p.Layout().folderListCardWidth; };
    auto cardHeight = [](const CPreferences& p) { return p.Layout().folderListCardHeight; };
    auto autoClose = [](const CPreferences& p) { return p.Other().autoClosePasswordProtectedFileMinutes; };
    const SIntCase cases[] = {
        {u"DefaultPrefsFontSize=1", fontSize, 12},
        {u"DefaultPrefsFontSize=2", fontSize, 2},
        {u"DefaultPrefsFontSize=299", fontSize, 299},
        {u"DefaultPrefsFontSize=300", fontSize, 12},
        {u"DefaultPrefsFontSize=-14", fontSize, 12},
        {u"DefaultPrefsFontSize=abc", fontSize, 12},
        {u"DefaultPrefsFontSize=99999999999999", fontSize, 12},
        {u"DefaultPrefsFontSize=14pt", fontSize, 14},
        {u"RichTextSpacesNumInSingleTabChar=0", tabSpaces, 8},
        {u"RichTextSpacesNumInSingleTabChar=1", tabSpaces, 1},
        {u"RichTextSpacesNumInSingleTabChar=99", tabSpaces, 99},
        {u"RichTextSpacesNumInSingleTabChar=100", tabSpaces, 8},
        {u"DefaultDateStampFormat=0", dateFormat, 0},
        {u"DefaultDateStampFormat=2", dateFormat, 1},
        {u"DefaultDateStampFormat=-1", dateFormat, 1},
        {u"DefaultTimeStampFormat=0", timeFormat, 0},
        {u"DefaultTimeStampFormat=7", timeFormat, 1},
        {u"PwdGenPrefsPwdLen=0", pwdLen, 1},
        {u"PwdGenPrefsPwdLen=5000", pwdLen, 1000},
        {u"PwdGenPrefsPwdLen=16", pwdLen, 16},
        {u"PwdGenPrefsPdwsNumTogenerate=-3", pwdCount, 1},
        {u"PwdGenPrefsPdwsNumTogenerate=1001", pwdCount, 1000},
        {u"OtherPrefsAutoSaveMinutes=0", autoSave, 3},
        {u"OtherPrefsAutoSaveMinutes=15", autoSave, 15},
        {u"BackupPrefsDelOldBackupDays=0", keepDays, 0},
        {u"BackupPrefsDelOldBackupDays=-1", keepDays, 7},
        {u"BackupPrefsBackupInterval=0", interval, 320},
        {u"BackupPrefsBackupInterval=60", interval, 60},
        {u"MainWndTreeWidth=-200", treeWidth, 250},
        {u"MainWndTreeWidth=300", treeWidth, 300},
        {u"OtherPrefsAutoSaveMinutes=1440", autoSave, 1440},
        {u"OtherPrefsAutoSaveMinutes=1441", autoSave, 3},
        {u"AutoClosePasswordProtectedFileMinutes=0", autoClose, 0},
        {u"AutoClosePasswordProtectedFileMinutes=30", autoClose, 30},
        {u"AutoClosePasswordProtectedFileMinutes=-1", autoClose, 0},
        {u"AutoClosePasswordProtectedFileMinutes=1441", autoClose, 0},
        {u"BackupPrefsDelOldBackupDays=36600", keepDays, 36600},
        {u"BackupPrefsDelOldBackupDays=36601", keepDays, 7},
        {u"BackupPrefsBackupInterval=527040", interval, 527040},
        {u"BackupPrefsBackupInterval=527041", interval, 320},
        {u"MainWndTreeWidth=19", treeWidth, 250},
        {u"MainWndTreeWidth=10001", treeWidth, 250},
        {u"FolderListCardWidth=40", cardWidth, 40},
        {u"FolderListCardWidth=39", cardWidth, 200},
        {u"FolderListCardWidth=4001", cardWidth, 200},
        {u"FolderListCardHeight=30", cardHeight, 30},
        {u"FolderListCardHeight=29", cardHeight, 150},
        {u"FolderListCardHeight=4001", cardHeight, 150},
    };
    for (const SIntCase& c : cases)
    {
        SLoaded loaded({c.line});
        EXPECT_EQ(c.get(*loaded.prefs), c.expected) << Utf16ToUtf8(c.line);
    }
}

TEST(PreferencesLoad, BulletMustBeOneVisibleCharacter)
{
    EXPECT_EQ(SLoaded({u"RichTextBulletCharacter=**"}).prefs->Editor().bulletCharacter, Bullet);
    EXPECT_EQ(SLoaded({u"RichTextBulletCharacter= "}).prefs->Editor().bulletCharacter, Bullet);
    EXPECT_EQ(SLoaded({u"RichTextBulletCharacter="}).prefs->Editor().bulletCharacter, Bullet);
    EXPECT_EQ(SLoaded({u"RichTextBulletCharacter=\u2022"}).prefs->Editor().bulletCharacter, u"\u2022");
    EXPECT_EQ(SLoaded({u"RichTextBulletCharacter=-"}).prefs->Editor().bulletCharacter, u"-");
}

TEST(PreferencesLoad, LastBackupDateInTheFutureIsInvalid)
{
    const OleDate now = SPrefsFixture().clock.now;
    EXPECT_EQ(SLoaded({u"BackupPrefsLastBackupDate=43999.250000"}).prefs->Backup().lastBackupDate, 43999.25);
    EXPECT_EQ(SLoaded({u"BackupPrefsLastBackupDate=44000.500000"}).prefs->Backup().lastBackupDate, now);
    EXPECT_EQ(SLoaded({u"BackupPrefsLastBackupDate=44000.500001"}).prefs->Backup().lastBackupDate, 0.0);
    EXPECT_EQ(SLoaded({u"BackupPrefsLastBackupDate=nan"}).prefs->Backup().lastBackupDate, 0.0);
    EXPECT_EQ(SLoaded({u"BackupPrefsLastBackupDate=yesterday"}).prefs->Backup().lastBackupDate, 0.0);
}

TEST(PreferencesLoad, BooleansAcceptTrueInAnyCaseAndOne)
{
    EXPECT_TRUE(SLoaded({u"SysTrayMin=TRUE"}).prefs->SysTray().minimizeToTray);
    EXPECT_TRUE(SLoaded({u"SysTrayMin=1"}).prefs->SysTray().minimizeToTray);
    EXPECT_FALSE(SLoaded({u"SysTrayShow=yes"}).prefs->SysTray().show);
    EXPECT_FALSE(SLoaded({u"SysTrayShow=false"}).prefs->SysTray().show);
}

TEST(PreferencesLoad, DefaultFontIsTheFirstInstalledCandidateThenTheSystemSansFace)
{
    struct SCase
    {
        std::set<std::u16string> faces;
        std::u16string systemSans;
        std::u16string expected;
    };
    const SCase cases[] = {
        {{u"Arial", u"Tahoma", u"Segoe UI"}, u"DejaVu Sans", u"Segoe UI"},
        {{u"Arial", u"Tahoma"}, u"DejaVu Sans", u"Tahoma"},
        {{u"Arial"}, u"DejaVu Sans", u"Arial"},
        {{u"segoe ui", u"Liberation Sans"}, u"DejaVu Sans", u"DejaVu Sans"},
    };
    for (const SCase& c : cases)
    {
        SPrefsFixture fixture;
        CLogCapture log;
        fixture.fonts.faces = c.faces;
        fixture.fonts.systemSans = c.systemSans;
        CPreferences prefs(fixture.Env());
        EXPECT_EQ(prefs.Editor().fontName, c.expected);
        EXPECT_TRUE(log.Messages().empty());
    }
}

TEST(PreferencesLoad, NoFontsAtAllIsLoggedAndAStoredFaceNeedsNoQuery)
{
    SPrefsFixture fixture;
    CLogCapture log;
    fixture.fonts.faces.clear();
    CPreferences prefs(fixture.Env());
    EXPECT_EQ(prefs.Editor().fontName, u"");
    EXPECT_EQ(log.Messages(), std::vector<std::u16string>{u"Error: Cannot find any fonts on this system!"});

    fixture.WriteIni({u"DefaultPrefsFontName=Noto Serif"});
    fixture.fonts.queries = 0;
    prefs.Load(SPrefsFixture::IniPath);
    EXPECT_EQ(prefs.Editor().fontName, u"Noto Serif");
    EXPECT_EQ(fixture.fonts.queries, 0);
    EXPECT_EQ(log.Messages().size(), 1u);
}

TEST(PreferencesLoad, NumberedListsSkipEmptyAndMissingEntries)
{
    SLoaded loaded({u"RecentlyOpenedFile0=/a.ddb", u"RecentlyOpenedFile2=/b.ddb", u"RecentlyOpenedFile3=",
                    u"RecentlyOpenedFile15=/z.ddb", u"RecentlyOpenedFile16=/beyond.ddb",
                    u"RecentlyUsedFont1=Arial", u"RecentlyUsedFont6=Courier New", u"RecentlyUsedFont7=Beyond",
                    u"RecentlyUsedFont=NoIndex"});
    EXPECT_EQ(loaded.prefs->ShellState().recentFiles.Items(),
              (std::vector<std::u16string>{u"/a.ddb", u"/b.ddb", u"/z.ddb"}));
    EXPECT_EQ(loaded.prefs->Editor().recentFonts.Items(),
              (std::vector<std::u16string>{u"Arial", u"Courier New"}));
}

TEST(PreferencesLoad, FirstOccurrenceOfARepeatedKeyWins)
{
    SLoaded loaded({u"DefaultPrefsFontSize=20", u"DefaultPrefsFontSize=30"});
    EXPECT_EQ(loaded.prefs->Editor().fontSize, 20);
}

TEST(PreferencesLoad, AnsiFileIsReadAfterConversion)
{
    SPrefsFixture fixture;
    CLogCapture log;
    fixture.fs.Bytes(SPrefsFixture::IniPath) = "DefaultPrefsFontSize=20\r\nLastUsedSpellDictionary=Fran\xE7"
                                               "ais\r\nSysTrayShow=false\r\n";
    CPreferences prefs(fixture.Env());
    EXPECT_TRUE(prefs.Load(SPrefsFixture::IniPath));
    EXPECT_EQ(prefs.Editor().fontSize, 20);
    EXPECT_EQ(prefs.Editor().lastUsedSpellDictionary, u"Fran\u00E7ais");
    EXPECT_FALSE(prefs.SysTray().show);
    EXPECT_TRUE(log.Messages().empty());
}

TEST(PreferencesLoad, EmptyAndTinyFilesGiveDefaultsAndTheParsersWarning)
{
    {
        SPrefsFixture fixture;
        CLogCapture log;
        fixture.fs.Bytes(SPrefsFixture::IniPath) = "";
        CPreferences prefs(fixture.Env());
        prefs.Load(SPrefsFixture::IniPath);
        EXPECT_EQ(log.Messages(),
                  std::vector<std::u16string>{
                      u"Warrning: Attempt to parse empty configuration file /prog/Quillarium.ini"});
        EXPECT_EQ(prefs.Editor().fontSize, 12);
    }
    {
        SPrefsFixture fixture;
        CLogCapture log;
        fixture.fs.Bytes(SPrefsFixture::IniPath) = std::string("\xFF\xFE"
                                                               "x\0",
                                                               4);
        CPreferences prefs(fixture.Env());
        prefs.Load(SPrefsFixture::IniPath);
        EXPECT_EQ(log.Messages(),
                  std::vector<std::u16string>{
                      u"Warrning: File /prog/Quillarium.ini contains less than 2 characters. Most "
                      u"propably attempt to read UNICODE file as ANSI file"});
        EXPECT_TRUE(prefs.SysTray().show);
    }
}

TEST(PreferencesLoad, ForeignIniWithSectionsKeepsDefaults)
{
    SLoaded loaded({u"[Settings]", u"FontSize = 20", u"defaultprefsfontsize=20", u"* DefaultPrefsFontSize=20",
                    u" DefaultPrefsFontSize=20", u"SysTrayShow"});
    EXPECT_EQ(loaded.prefs->Editor().fontSize, 12);
    EXPECT_TRUE(loaded.prefs->SysTray().show);
    EXPECT_TRUE(loaded.log.Messages().empty());
}

TEST(PreferencesLoad, DamagedWindowPlacementsAreLoggedAndTheRestLoads)
{
    const char16_t* values[] = {u"WindowPlacements=!!not base-64!!", u"WindowPlacements=AQ==",
                                u"WindowPlacements=AgAAAAAA"};
    for (const char16_t* line : values)
    {
        SLoaded loaded({line, u"DefaultPrefsFontSize=20"});
        EXPECT_TRUE(loaded.prefs->ShellState().windowPlacements.empty());
        EXPECT_EQ(loaded.prefs->Editor().fontSize, 20);
        EXPECT_EQ(loaded.log.Messages(),
                  std::vector<std::u16string>{u"Error: Unable to serialize [load] window placements data"})
            << Utf16ToUtf8(line);
    }
}

// The text a store of preferences saves, for comparing every value at once.
std::u16string SavedText(CPreferences& prefs, SPrefsFixture& fixture)
{
    EXPECT_TRUE(prefs.Save(u"/prog/compare.ini"));
    return Utf16LeBytesToText(fixture.fs.Bytes(u"/prog/compare.ini"));
}

// Junk without a single "=" holds no entry, read as UTF-16 or as ANSI text: every value is its
// default, and nothing but the parser's designed warnings is logged.
TEST(PreferencesLoad, BinaryJunkAndForeignAnsiFilesGiveExactlyTheDefaults)
{
    std::mt19937 random(11);
    std::vector<std::string> files = {
        "[Settings]\r\nFont: Arial\r\nSize 14\r\n; Gr\xF6\xDF"
        "e und Farbe\r\n",
        std::string("\xFF\xFE[\0x\0]\0\r\0\n\0", 12),
        std::string("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16),
    };
    for (int round = 0; round < 60; ++round)
    {
        std::string junk(5 + random() % 400, '\0');
        for (char& byte : junk)
            do
                byte = static_cast<char>(random());
            while (byte == '=');
        files.push_back(round % 2 == 0 ? "\xFF\xFE" + junk : junk);
    }
    for (const std::string& file : files)
    {
        SPrefsFixture fixture;
        CPreferences defaults(fixture.Env());
        const std::u16string expected = SavedText(defaults, fixture);
        fixture.fs.Bytes(SPrefsFixture::IniPath) = file;
        CLogCapture log;
        CPreferences prefs(fixture.Env());
        // Values from before the load must not survive it.
        prefs.Editor().fontSize = 40;
        prefs.SysTray().show = false;
        prefs.PwdGen().passwordLength = 99;
        prefs.ShellState().recentFiles.Add(u"/old.ddb");
        prefs.Load(SPrefsFixture::IniPath);
        ASSERT_EQ(SavedText(prefs, fixture), expected) << file.size();
        for (const std::u16string& line : log.Messages())
            EXPECT_EQ(line.rfind(u"Warrning: File /prog/Quillarium.ini contains less than 2 characters", 0),
                      0u)
                << Utf16ToUtf8(line);
    }
}

// Random bytes in place of the file: the load must end, and every value must still pass its
// check, whatever the parser made of the junk.
TEST(PreferencesLoad, BinaryJunkKeepsEveryValueWithinItsChecks)
{
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round)
    {
        SPrefsFixture fixture;
        std::string junk(random() % 600, '\0');
        for (char& byte : junk)
            byte = static_cast<char>(random());
        if (round % 2 == 0)
            junk = "\xFF\xFE" + junk;
        fixture.fs.Bytes(SPrefsFixture::IniPath) = junk;
        CPreferences prefs(fixture.Env());
        prefs.Load(SPrefsFixture::IniPath);
        EXPECT_GE(prefs.Editor().fontSize, 2);
        EXPECT_LE(prefs.Editor().fontSize, 299);
        EXPECT_EQ(prefs.Editor().bulletCharacter.size(), 1u);
        EXPECT_GE(prefs.Editor().spacesInTab, 1);
        EXPECT_LE(prefs.Editor().spacesInTab, 99);
        EXPECT_LE(prefs.Editor().dateStampFormat, 1);
        EXPECT_GE(prefs.PwdGen().passwordLength, 1);
        EXPECT_LE(prefs.PwdGen().passwordLength, 1000);
        EXPECT_LE(prefs.Backup().lastBackupDate, fixture.clock.now);
        EXPECT_LE(prefs.ShellState().recentFiles.Items().size(), 16u);
        EXPECT_LE(prefs.Editor().recentFonts.Items().size(), 7u);
    }
}
