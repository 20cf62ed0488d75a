// The whole start-up and shutdown over an in-memory disk: where the log and the preferences go,
// the order of the steps, the language module, portable mode, and the preferences written at
// shutdown being what the next start reads.
#include "App/QuillariumApp.h"
#include "Prefs/Preferences.h"
#include "Shared/Base/File.h"
#include "Shared/Base/TextConv.h"
#include "Shared/LanguagesMgr/LanguageModule.h"
#include "StartupTestSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace
{
const std::u16string kAppFolder = u"/opt/quill/";
const std::u16string kDefaultDataFile = u"/home/u/Documents/Quillarium Documents.ddb";

class StartupSequence : public ::testing::Test
{
protected:
    StartupSequence()
    {
        ::setenv("XDG_STATE_HOME", "/xdg/state", 1);
        ::setenv("XDG_CONFIG_HOME", "/xdg/config", 1);
        int cause = 0;
        m_Fs.CreateFolder(kAppFolder, cause);
    }

    std::unique_ptr<CQuillariumApp> MakeApp(const std::u16string& commandLine = u"", int languageId = 1033)
    {
        SAppServices services{kAppFolder,  commandLine, languageId, m_Fs,     m_Clock, m_Fonts,
                              m_Documents, m_Copies,    m_Centers,  m_Dialog, m_Box};
        return std::make_unique<CQuillariumApp>(services);
    }
    std::u16string LogText(const std::u16string& path) { return Utf16LeBytesToText(m_Fs.Bytes(path)); }
    // Writes a preferences file as the program would, with one change applied first.
    template <class TChange> void WritePreferences(const std::u16string& path, TChange change)
    {
        CPreferences prefs({m_Fs, m_Clock, m_Fonts, false, u"/home/u/Documents/"});
        change(prefs);
        ASSERT_TRUE(prefs.Save(path));
    }

    CStartupFs m_Fs;
    CFixedClock m_Clock;
    COneFontSystem m_Fonts;
    CFixedDocuments m_Documents;
    CFakeRunningCopies m_Copies;
    CFakeDataCenters m_Centers{m_Fs};
    CScriptedNewFileDialog m_Dialog;
    CRecordingMessageBox m_Box;
};

size_t Find(const std::u16string& text, std::u16string_view part)
{
    const size_t at = text.find(part);
    EXPECT_NE(at, std::u16string::npos) << Utf16ToUtf8(part);
    return at;
}
} // namespace

TEST_F(StartupSequence, FreshInstallationLogsInOrderCreatesTheDefaultFileAndRemembersIt)
{
    auto app = MakeApp();
    ASSERT_TRUE(app->InitInstance());
    EXPECT_FALSE(app->IsAutoStartup());
    EXPECT_EQ(app->DataFilePath(), kDefaultDataFile);
    EXPECT_EQ(app->LanguageModule()->GetString(u"CANCEL_BUTTON"), u"Cancel");
    EXPECT_EQ(m_Centers.events, (std::vector<std::u16string>{u"create " + kDefaultDataFile}));
    EXPECT_FALSE(m_Fs.Exists(kAppFolder + u"Quillarium.ini")) << "written only at shutdown";

    app->ExitInstance();
    EXPECT_EQ(m_Centers.events.back(), u"close");
    EXPECT_EQ(app->Preferences(), nullptr);
    EXPECT_EQ(app->LanguageModule(), nullptr);
    app.reset();

    const std::u16string log = LogText(kAppFolder + u"Quillarium.log");
    const size_t version = Find(log, u"Application version: 1.35 (build 214)\r\n");
    const size_t release = Find(log, u"Application version: 1.35 (build 214) Release\r\n");
    const size_t missing = Find(log, u"Warning: File " + kDefaultDataFile +
                                         u" not found. Attempting to create new file on its place...");
    EXPECT_LT(version, release);
    EXPECT_LT(release, missing);

    // The next start opens what the last one showed.
    CPreferences stored({m_Fs, m_Clock, m_Fonts, false, u"/elsewhere/"});
    ASSERT_TRUE(stored.Load(kAppFolder + u"Quillarium.ini"));
    EXPECT_EQ(stored.DocumentState().recentFilePath, kDefaultDataFile);
    EXPECT_EQ(stored.ShellState().recentFiles.Items(), (std::vector<std::u16string>{kDefaultDataFile}));
    app = MakeApp();
    ASSERT_TRUE(app->InitInstance());
    EXPECT_EQ(m_Centers.events.back(), u"open " + kDefaultDataFile);
}

TEST_F(StartupSequence, ShutdownClosesTheDataFileBeforeWritingThePreferences)
{
    const std::u16string ini = kAppFolder + u"Quillarium.ini";
    m_Centers.watchedPath = ini;
    WritePreferences(ini, [](CPreferences& prefs) { prefs.DocumentState().recentFilePath = u"/d/a.ddb"; });
    m_Fs.Bytes(u"/d/a.ddb") = "data";
    auto app = MakeApp();
    ASSERT_TRUE(app->InitInstance());
    int cause = 0;
    ASSERT_TRUE(m_Fs.Delete(ini, cause));
    app->ExitInstance();
    EXPECT_EQ(m_Centers.events, (std::vector<std::u16string>{u"open /d/a.ddb", u"close"}));
    EXPECT_TRUE(m_Fs.Exists(ini));

    // A second shutdown finds nothing left and writes nothing.
    ASSERT_TRUE(m_Fs.Delete(ini, cause));
    app->ExitInstance();
    app.reset();
    EXPECT_FALSE(m_Fs.Exists(ini));
    EXPECT_EQ(m_Centers.events.size(), 2u);
}

TEST_F(StartupSequence, CommandLineFileAndAutoStartupFlag)
{
    m_Fs.Bytes(u"/d/Work.DDB") = "data";
    auto app = MakeApp(u"/d/Work.DDB");
    ASSERT_TRUE(app->InitInstance());
    EXPECT_EQ(app->DataFilePath(), u"/d/Work.DDB");
    EXPECT_FALSE(app->IsAutoStartup());
    app.reset();

    m_Fs.Bytes(kDefaultDataFile) = "data";
    app = MakeApp(u"/d/Work.DDB -autostartup");
    ASSERT_TRUE(app->InitInstance());
    EXPECT_TRUE(app->IsAutoStartup());
    EXPECT_EQ(app->DataFilePath(), u"/d/Work.DDB") << "the last run remembered it";
}

TEST_F(StartupSequence, FailedDataFileEndsStartUpAndShutdownStillWritesThePreferences)
{
    m_Copies.heldPaths.insert(kDefaultDataFile);
    m_Fs.Bytes(kDefaultDataFile) = "data";
    auto app = MakeApp(u"-autostartup");
    EXPECT_FALSE(app->InitInstance());
    EXPECT_FALSE(app->IsAutoStartup());
    EXPECT_EQ(app->DataCenter(), nullptr);
    EXPECT_TRUE(m_Box.shown.empty());
    app.reset();
    EXPECT_TRUE(m_Fs.Exists(kAppFolder + u"Quillarium.ini"));
}

TEST_F(StartupSequence, PortableModeKeepsEverythingBesideTheProgramAndIsDecidedOnce)
{
    m_Fs.Bytes(kAppFolder + u"Portable.sig") = "";
    m_Fs.readOnlyFolders.insert(kAppFolder);
    auto app = MakeApp();
    ASSERT_TRUE(app->InitInstance());
    EXPECT_TRUE(app->Locations().IsPortable());
    EXPECT_EQ(app->DataFilePath(), kAppFolder + u"Quillarium Documents.ddb");
    EXPECT_FALSE(app->Preferences()->Backup().enableAutobackup);

    int cause = 0;
    ASSERT_TRUE(m_Fs.Delete(kAppFolder + u"Portable.sig", cause));
    EXPECT_TRUE(app->Locations().IsPortable());
    EXPECT_EQ(app->Locations().DocumentsFolder(), kAppFolder);
    app.reset();
    EXPECT_TRUE(m_Fs.Exists(kAppFolder + u"Quillarium.log"));
    EXPECT_TRUE(m_Fs.Exists(kAppFolder + u"Quillarium.ini"));

    CAppLocations next(kAppFolder, m_Fs, m_Documents);
    EXPECT_FALSE(next.IsPortable());
    EXPECT_EQ(next.DocumentsFolder(), u"/home/u/Documents/");
}

// A portable copy moved to another place finds its data file beside the program again, logs the
// correction, and remembers the new path for the next start.
TEST_F(StartupSequence, PortableCopyMovedElsewhereFindsItsDataFileBesideTheProgram)
{
    m_Fs.Bytes(kAppFolder + u"Portable.sig") = "";
    m_Fs.Bytes(kAppFolder + u"notes.ddb") = "data";
    WritePreferences(kAppFolder + u"Quillarium.ini", [](CPreferences& prefs)
                     { prefs.DocumentState().recentFilePath = u"/media/OLDSTICK/quill/notes.ddb"; });
    auto app = MakeApp();
    ASSERT_TRUE(app->InitInstance());
    EXPECT_EQ(app->DataFilePath(), kAppFolder + u"notes.ddb");
    EXPECT_EQ(m_Centers.events, (std::vector<std::u16string>{u"open /opt/quill/notes.ddb"}));
    EXPECT_EQ(m_Copies.asked, (std::vector<std::u16string>{u"/opt/quill/notes.ddb"}));
    app.reset();

    const std::u16string log = LogText(kAppFolder + u"Quillarium.log");
    const size_t warning = Find(
        log,
        u"Warning: Cannot find file /media/OLDSTICK/quill/notes.ddb - file does not exists by this path.");
    const size_t info =
        Find(log, u"Info: Portable mode correction: /media/OLDSTICK/quill/notes.ddb file is moved "
                  u"to following path - /opt/quill/notes.ddb.");
    EXPECT_LT(warning, info);
    CPreferences stored({m_Fs, m_Clock, m_Fonts, true, kAppFolder});
    ASSERT_TRUE(stored.Load(kAppFolder + u"Quillarium.ini"));
    EXPECT_EQ(stored.DocumentState().recentFilePath, kAppFolder + u"notes.ddb");
}

TEST_F(StartupSequence, ReadOnlyProgramFolderSendsLogAndPreferencesToTheUsersFolders)
{
    m_Fs.readOnlyFolders.insert(kAppFolder);
    auto app = MakeApp();
    ASSERT_TRUE(app->InitInstance());
    app.reset();
    EXPECT_FALSE(m_Fs.Exists(kAppFolder + u"Quillarium.log"));
    EXPECT_FALSE(m_Fs.Exists(kAppFolder + u"Quillarium.ini"));
    const std::u16string log = LogText(u"/xdg/state/Quillarium/Quillarium.log");
    Find(log, u"Application version: 1.35 (build 214) Release");
    EXPECT_TRUE(m_Fs.Exists(u"/xdg/config/Quillarium/Quillarium.ini"));
}

TEST_F(StartupSequence, LanguageModuleFollowsTheUsersLanguageUntilOneIsChosen)
{
    std::string german;
    int cause = 0;
    ASSERT_TRUE(ReadWholeFile(DiskFileSystem(), Utf8ToUtf16(QUILL_SOURCE_DIR "/data/Languages/German.lng"),
                              german, cause));
    m_Fs.Bytes(kAppFolder + u"Languages/German.lng") = german;

    auto app = MakeApp(u"", 1031);
    ASSERT_TRUE(app->InitInstance());
    EXPECT_EQ(app->LanguageModule()->Name(), u"German.lng");
    app.reset();

    // No shipped module for the language: the built-in English one.
    app = MakeApp(u"", 1049);
    ASSERT_TRUE(app->InitInstance());
    EXPECT_EQ(app->LanguageModule()->Name(), u"English (Default)");
    app.reset();

    // A chosen module that cannot be loaded ends start-up before the data file.
    WritePreferences(kAppFolder + u"Quillarium.ini",
                     [](CPreferences& prefs) { prefs.Paths().languagePath = u"Missing.lng"; });
    m_Centers.events.clear();
    app = MakeApp(u"", 1031);
    EXPECT_FALSE(app->InitInstance());
    ASSERT_EQ(m_Box.shown.size(), 1u);
    EXPECT_EQ(
        m_Box.shown[0].text,
        u"Error. Cannot load default language module /opt/quill/Languages/Missing.lng. Unable to proceed.");
    EXPECT_EQ(m_Box.shown[0].icon, EMsgIcon::Error);
    EXPECT_TRUE(m_Centers.events.empty());
    app.reset();
    // The loader logs why; the message box text itself is not logged.
    const std::u16string log = LogText(kAppFolder + u"Quillarium.log");
    Find(log, u"Error: Cannot read language module /opt/quill/Languages/Missing.lng");
    EXPECT_EQ(log.find(u"Cannot load default language module"), std::u16string::npos);
}

TEST_F(StartupSequence, ShutdownKeepsTheAutostartEntryInStepWithThePreference)
{
    const std::u16string ini = kAppFolder + u"Quillarium.ini";
    const std::u16string folder = u"/home/u/.config/autostart/";
    const std::u16string entry = folder + u"quillarium.desktop";
    auto runOnce = [&](bool runWithOsStart, bool managed, bool readOnlyShell)
    {
        WritePreferences(ini, [&](CPreferences& prefs) { prefs.Startup().runWithOsStart = runWithOsStart; });
        auto app = MakeApp();
        if (managed)
            app->ManageOsAutoStart(kAppFolder + u"quillarium", folder);
        if (readOnlyShell)
            app->KeepPreferencesFileUnchanged();
        ASSERT_TRUE(app->InitInstance());
    }; // the app's shutdown writes the preferences and applies the setting

    runOnce(true, false, false);
    EXPECT_FALSE(m_Fs.Exists(entry)) << "a shell that does not manage the entry leaves it alone";
    runOnce(true, true, true);
    EXPECT_FALSE(m_Fs.Exists(entry)) << "the command-line tool writes nothing back";
    runOnce(true, true, false);
    ASSERT_TRUE(m_Fs.Exists(entry));
    EXPECT_NE(m_Fs.Bytes(entry).find("\nExec=\"/opt/quill/quillarium\" -autostartup\n"), std::string::npos);
    runOnce(false, false, false);
    EXPECT_TRUE(m_Fs.Exists(entry));
    runOnce(false, true, false);
    EXPECT_FALSE(m_Fs.Exists(entry));
}

TEST(StartupDocumentsFolder, XdgDocumentsDirCountsOnlyWhenAbsolute)
{
    const CXdgDocumentsFolder documents;
    const char* home = std::getenv("HOME");
    const std::string savedHome = home ? home : "";
    ::setenv("HOME", "/home/tester", 1);
    ::setenv("XDG_DOCUMENTS_DIR", "/data/Docs", 1);
    EXPECT_EQ(documents.PersonalDocumentsFolder(), u"/data/Docs/");
    ::setenv("XDG_DOCUMENTS_DIR", "Docs", 1);
    EXPECT_EQ(documents.PersonalDocumentsFolder(), u"/home/tester/Documents/");
    ::unsetenv("XDG_DOCUMENTS_DIR");
    EXPECT_EQ(documents.PersonalDocumentsFolder(), u"/home/tester/Documents/");
    ::setenv("HOME", savedHome.c_str(), 1);
}
