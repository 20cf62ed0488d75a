// Choosing and opening the data file at start-up: every branch, with the exact log lines and
// messages, against an in-memory disk, scripted running copies and a recording data center.
#include "App/DataFileChooser.h"
#include "App/EnglishStrings.h"
#include "Shared/Base/TextConv.h"
#include "Shared/LanguagesMgr/CapturedLog.h"
#include "Shared/LanguagesMgr/LanguageModule.h"
#include "StartupTestSupport.h"

#include <gtest/gtest.h>

namespace
{
using Events = std::vector<std::u16string>;

class StartupDataFile : public ::testing::Test
{
protected:
    StartupDataFile() { UseLanguageLines(EnglishStrings()); }

    void UseLanguageLines(std::span<const std::u16string_view> lines)
    {
        m_Language.LoadBuiltIn(u"English (Default)", lines);
        m_Log.Connector().SetLanguageModule(&m_Language);
    }
    void AddFile(const std::u16string& path) { m_Fs.Bytes(path) = "data"; }
    bool Choose(const std::u16string& commandLine, const std::u16string& recent)
    {
        m_Log.Clear();
        CDataFileChooser chooser({m_Locations, m_Copies, m_Centers, m_Dialog, m_Box});
        const bool opened = chooser.ChooseAndOpen(commandLine, recent);
        m_OpenedPath = chooser.OpenedPath();
        m_HandedOver = chooser.TakeDataCenter() != nullptr;
        return opened;
    }
    std::vector<std::u16string> Lines() const { return m_Log.Lines(); }

    CCapturedLog m_Log;
    CLanguageModule m_Language;
    CStartupFs m_Fs;
    CFixedDocuments m_Documents;
    CAppLocations m_Locations{u"/opt/quill/", m_Fs, m_Documents};
    CFakeRunningCopies m_Copies;
    CFakeDataCenters m_Centers{m_Fs};
    CScriptedNewFileDialog m_Dialog;
    CRecordingMessageBox m_Box;
    std::u16string m_OpenedPath;
    bool m_HandedOver = false;
};

const std::u16string kRecent = u"/home/u/Documents/Quillarium Documents.ddb";
} // namespace

TEST_F(StartupDataFile, OnlyACommandLineLongerThanTheExtensionEndingInDdbInAnyCaseNamesAFile)
{
    AddFile(kRecent);
    AddFile(u"/d/x.DDB");
    AddFile(u"/d/y.dDb");

    EXPECT_TRUE(Choose(u".ddb", kRecent));
    EXPECT_EQ(m_OpenedPath, kRecent);
    EXPECT_TRUE(Choose(u"/d/x.DDB", kRecent));
    EXPECT_EQ(m_OpenedPath, u"/d/x.DDB");
    EXPECT_TRUE(Choose(u"/d/y.dDb", kRecent));
    EXPECT_EQ(m_OpenedPath, u"/d/y.dDb");
    // The flag makes the text end elsewhere, so the recent file is shown.
    EXPECT_TRUE(Choose(u"/d/x.DDB -autostartup", kRecent));
    EXPECT_EQ(m_OpenedPath, kRecent);
    // The text is taken whole: blanks and quotes are part of the path.
    EXPECT_FALSE(Choose(u"\"/d/x.DDB\" .ddb", kRecent));

    const Events expected = {u"open " + kRecent, u"close", u"open /d/x.DDB",   u"close",
                             u"open /d/y.dDb",   u"close", u"open " + kRecent, u"close"};
    EXPECT_EQ(m_Centers.events, expected);
    EXPECT_EQ(m_Copies.asked, (Events{kRecent, u"/d/x.DDB", u"/d/y.dDb", kRecent}));
}

TEST_F(StartupDataFile, MissingCommandLineFileIsReportedAndNothingIsCreated)
{
    AddFile(kRecent);
    EXPECT_FALSE(Choose(u"/d/gone.ddb", kRecent));

    EXPECT_EQ(Lines(), (Events{u"Warning: Cannot find file /d/gone.ddb - file does not exists by this path.",
                               u"Error: File /d/gone.ddb not found."}));
    ASSERT_EQ(m_Box.shown.size(), 1u);
    EXPECT_EQ(m_Box.shown[0].text, u"The file /d/gone.ddb does not exist.");
    EXPECT_EQ(m_Box.shown[0].icon, EMsgIcon::Error);
    EXPECT_EQ(m_Centers.created, 0);
    EXPECT_TRUE(m_Copies.asked.empty());
    EXPECT_FALSE(m_Fs.Exists(u"/d/gone.ddb"));
}

TEST_F(StartupDataFile, MessageWithoutFilenameTagIsShownUnchangedAfterItsLogLine)
{
    static constexpr std::u16string_view kLines[] = {u"ERR_CORRUPTED_OR_LOCKED_FILE=Broken.",
                                                     u"ERR_FILE_DOES_NOT_EXISTS=Missing."};
    UseLanguageLines(kLines);
    EXPECT_FALSE(Choose(u"/d/gone.ddb", kRecent));
    EXPECT_EQ(Lines().back(),
              u"Error: Cannot find ^filename tag in the ERR_FILE_DOES_NOT_EXISTS string resource.");

    AddFile(u"/d/bad.ddb");
    m_Centers.unreadable.insert(u"/d/bad.ddb");
    EXPECT_FALSE(Choose(u"/d/bad.ddb", kRecent));
    EXPECT_EQ(Lines(), (Events{u"Error: Cannot open file /d/bad.ddb - file is inaccessible or corrupted.",
                               u"Error: Cannot find ^filename tag in the ERR_CORRUPTED_OR_LOCKED_FILE string "
                               u"resource."}));
    ASSERT_EQ(m_Box.shown.size(), 2u);
    EXPECT_EQ(m_Box.shown[0].text, u"Missing.");
    EXPECT_EQ(m_Box.shown[1].text, u"Broken.");
}

TEST_F(StartupDataFile, MissingRecentFileIsCreatedInItsPlaceWithoutAskingOtherCopies)
{
    EXPECT_TRUE(Choose(u"", kRecent));
    EXPECT_EQ(m_OpenedPath, kRecent);
    EXPECT_TRUE(m_HandedOver);
    EXPECT_EQ(Lines().back(),
              u"Warning: File " + kRecent + u" not found. Attempting to create new file on its place...");
    EXPECT_EQ(m_Centers.events, (Events{u"create " + kRecent, u"close"}));
    EXPECT_TRUE(m_Copies.asked.empty());
    EXPECT_TRUE(m_Box.shown.empty());
    EXPECT_TRUE(m_Dialog.asked.empty());

    // Now it exists: the next start opens it.
    EXPECT_TRUE(Choose(u"", kRecent));
    EXPECT_EQ(m_Centers.events.back(), u"close");
    EXPECT_EQ(m_Centers.events[2], u"open " + kRecent);
}

TEST_F(StartupDataFile, UncreatableRecentFileLetsTheUserChooseAnotherPlace)
{
    m_Centers.uncreatable.insert(kRecent);
    m_Dialog.answer = u"/home/u/MyData.ddb";
    EXPECT_TRUE(Choose(u"", kRecent));
    EXPECT_EQ(m_OpenedPath, u"/home/u/MyData.ddb");
    EXPECT_EQ(m_Dialog.asked, (Events{u"Quillarium data file (*.ddb)|*.ddb|||MyData"}));
    EXPECT_EQ(m_Centers.created, 1);
    EXPECT_EQ(m_Centers.events, (Events{u"create " + kRecent, u"create /home/u/MyData.ddb", u"close"}));

    m_Dialog.answer.clear();
    EXPECT_FALSE(Choose(u"", kRecent));
    m_Dialog.answer = u"/ro/MyData.ddb";
    m_Centers.uncreatable.insert(u"/ro/MyData.ddb");
    EXPECT_FALSE(Choose(u"", kRecent));
    EXPECT_TRUE(m_Box.shown.empty());
}

TEST_F(StartupDataFile, FileHeldByARunningCopyEndsStartUpQuietly)
{
    AddFile(u"/d/A.ddb");
    AddFile(u"/d/a.ddb");
    m_Copies.heldPaths.insert(u"/d/A.ddb");

    EXPECT_FALSE(Choose(u"/d/A.ddb", kRecent));
    EXPECT_TRUE(Lines().empty());
    EXPECT_TRUE(m_Box.shown.empty());
    EXPECT_EQ(m_Centers.created, 0);
    EXPECT_FALSE(m_HandedOver);

    // The comparison is case-sensitive: the other spelling is opened here.
    EXPECT_TRUE(Choose(u"/d/a.ddb", kRecent));
    EXPECT_EQ(m_Centers.events, (Events{u"open /d/a.ddb", u"close"}));
}

TEST_F(StartupDataFile, UnopenableFileIsReportedOnlyWhenNamedOnTheCommandLine)
{
    AddFile(u"/d/bad.ddb");
    m_Centers.unreadable.insert(u"/d/bad.ddb");

    EXPECT_FALSE(Choose(u"/d/bad.ddb", kRecent));
    EXPECT_EQ(Lines(), (Events{u"Error: Cannot open file /d/bad.ddb - file is inaccessible or corrupted."}));
    ASSERT_EQ(m_Box.shown.size(), 1u);
    EXPECT_EQ(m_Box.shown[0].text, u"Cannot open the data file /d/bad.ddb. It is inaccessible or corrupted.");
    EXPECT_EQ(m_Box.shown[0].icon, EMsgIcon::Error);
    EXPECT_TRUE(m_HandedOver); // the data center exists and is deleted at shutdown

    EXPECT_FALSE(Choose(u"", u"/d/bad.ddb"));
    EXPECT_TRUE(Lines().empty());
    EXPECT_EQ(m_Box.shown.size(), 1u);
}

TEST_F(StartupDataFile, RecentPathOnAnotherDriveOrFolderIsCorrectedTowardsTheProgram)
{
    m_Log.Clear();
    CAppLocations onDriveF(u"F:\\Quill\\", m_Fs, m_Documents);
    AddFile(u"F:\\Quill\\notes.ddb");
    EXPECT_EQ(onDriveF.CorrectMovedPath(u"E:\\Quill\\notes.ddb"), u"F:\\Quill\\notes.ddb");
    EXPECT_EQ(Lines(),
              (Events{u"Warning: Cannot find file E:\\Quill\\notes.ddb - file does not exists by this path.",
                      u"Info: Portable mode correction: E:\\Quill\\notes.ddb file is moved to following "
                      u"path - F:\\Quill\\notes.ddb."}));

    // The program's folder moved: the file beside it is found by its name.
    AddFile(u"/opt/quill/notes.ddb");
    EXPECT_TRUE(Choose(u"", u"/media/stick/Old Quill/notes.ddb"));
    EXPECT_EQ(m_OpenedPath, u"/opt/quill/notes.ddb");
    EXPECT_EQ(Lines().back(),
              u"Info: Portable mode correction: /media/stick/Old Quill/notes.ddb file is moved "
              u"to following path - /opt/quill/notes.ddb.");
    EXPECT_EQ(m_Copies.asked, (Events{u"/opt/quill/notes.ddb"}));

    // Short paths and existing paths are left alone without a log line.
    m_Log.Clear();
    EXPECT_EQ(m_Locations.CorrectMovedPath(u"x.d"), u"x.d");
    EXPECT_EQ(m_Locations.CorrectMovedPath(u"/opt/quill/notes.ddb"), u"/opt/quill/notes.ddb");
    EXPECT_TRUE(Lines().empty());
}

TEST_F(StartupDataFile, RecentPathNotFoundEvenAfterCorrectionGetsANewFileAtThatVeryPath)
{
    const std::u16string stale = u"/media/stick/Quill/notes.ddb";
    EXPECT_TRUE(Choose(u"", stale));
    EXPECT_EQ(m_OpenedPath, stale);
    EXPECT_EQ(m_Centers.events.front(), u"create " + stale);
    EXPECT_TRUE(m_Fs.Exists(stale));
    EXPECT_FALSE(m_Fs.Exists(u"/opt/quill/notes.ddb"));
}
