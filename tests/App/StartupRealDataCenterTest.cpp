// Start-up with the real data center on an in-memory disk: a fresh installation gets a new data
// file that the next start opens, and a file that is not a data file ends start-up.
#include "App/DataCenterStartup.h"
#include "App/QuillariumApp.h"
#include "Shared/Base/TextConv.h"
#include "StartupTestSupport.h"

#include <gtest/gtest.h>

namespace
{
class CFixedFileTimes : public IFileTimes
{
public:
    bool GetLastWriteTime(const std::u16string&, OleDate& time, int&) override
    {
        time = 45000.25;
        return true;
    }
};

class StartupRealDataCenter : public ::testing::Test
{
protected:
    StartupRealDataCenter()
    {
        int cause = 0;
        m_Fs.CreateFolder(u"/opt/quill/", cause);
    }
    std::unique_ptr<CQuillariumApp> MakeApp(const std::u16string& commandLine)
    {
        return std::make_unique<CQuillariumApp>(SAppServices{u"/opt/quill/", commandLine, 1033, m_Fs, m_Clock,
                                                             m_Fonts, m_Documents, m_Copies, m_Centers,
                                                             m_Dialog, m_Box});
    }
    size_t CountInLog(std::u16string_view part)
    {
        const std::u16string log = Utf16LeBytesToText(m_Fs.Bytes(u"/opt/quill/Quillarium.log"));
        size_t count = 0;
        for (size_t at = log.find(part); at != std::u16string::npos; at = log.find(part, at + 1))
            ++count;
        return count;
    }

    CStartupFs m_Fs;
    CFixedClock m_Clock;
    CFixedFileTimes m_Times;
    COneFontSystem m_Fonts;
    CFixedDocuments m_Documents;
    CFakeRunningCopies m_Copies;
    CDataCenterStartupFactory m_Centers{m_Fs, m_Clock, m_Times};
    CScriptedNewFileDialog m_Dialog;
    CRecordingMessageBox m_Box;
};
} // namespace

TEST_F(StartupRealDataCenter, NewFileOfAFreshInstallationIsOpenedByTheNextStart)
{
    const std::u16string path = u"/home/u/Documents/Quillarium Documents.ddb";
    auto app = MakeApp(u"");
    ASSERT_TRUE(app->InitInstance());
    auto* center = dynamic_cast<CDataCenterStartup*>(app->DataCenter());
    ASSERT_NE(center, nullptr);
    EXPECT_TRUE(center->DataCenter().IsOpen());
    EXPECT_EQ(center->DataCenter().GetFilePath(), path);
    app.reset();
    EXPECT_EQ(CountInLog(u"Generating new tree data..."), 1u);

    app = MakeApp(u"");
    ASSERT_TRUE(app->InitInstance());
    EXPECT_TRUE(dynamic_cast<CDataCenterStartup*>(app->DataCenter())->DataCenter().IsOpen());
    app.reset();
    EXPECT_EQ(CountInLog(u"Generating new tree data..."), 1u);
    EXPECT_EQ(CountInLog(u"Attempting to create new file on its place"), 1u);
    EXPECT_TRUE(m_Box.shown.empty());
}

TEST_F(StartupRealDataCenter, CommandLineFileThatIsNoDataFileEndsStartUp)
{
    m_Fs.Bytes(u"/d/junk.ddb") = std::string(300, 'x');
    auto app = MakeApp(u"/d/junk.ddb");
    EXPECT_FALSE(app->InitInstance());
    ASSERT_FALSE(m_Box.shown.empty());
    EXPECT_EQ(m_Box.shown.back().text,
              u"Cannot open the data file /d/junk.ddb. It is inaccessible or corrupted.");
    app.reset();
    EXPECT_EQ(CountInLog(u"Error: Cannot open file /d/junk.ddb - file is inaccessible or corrupted."), 1u);
    EXPECT_EQ(m_Fs.Bytes(u"/d/junk.ddb"), std::string(300, 'x'));
}
