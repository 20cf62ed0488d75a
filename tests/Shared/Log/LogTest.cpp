#include "Shared/Log/Log.h"
#include "Shared/Base/AppConnector.h"
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/OleDate.h"
#include "Shared/Base/TextConv.h"
#include "Support/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <set>
#include <thread>

namespace
{
const std::u16string Header =
    u"\uFEFF*** Information: New entries are added to the bottom of this file.\r\n\r\n\r\n";
const std::u16string LogPath = u"/logs/Quillarium.log";

class CFixedClock : public IClock
{
public:
    explicit CFixedClock(int hour)
    {
        SDateTimeFields f;
        f.year = 2024, f.month = 3, f.day = 5, f.hour = hour, f.minute = 7, f.second = 9;
        FieldsToOleDate(f, m_Now);
    }
    OleDate NowLocal() const override { return m_Now; }
    uint32_t TickCountMs() const override { return 0; }

private:
    OleDate m_Now = 0;
};

const std::u16string StartBanner =
    u"\r\n\r\n++++++++++++++++++++++ Application started at 03\\05\\2024 - 02:07:09 PM\r\n";
const std::u16string FinishBanner =
    u"---------------------- Application finished at 03\\05\\2024 - 02:07:09 PM\r\n\r\n\r\n";

// Installs a connector with the log for the test's lifetime.
class CInstalledLog
{
public:
    CInstalledLog(CMemFileSystem& fs, const IClock& clock) : m_Log(LogPath, &fs, &clock)
    {
        m_Connector.SetLog(&m_Log);
        CAppConnector::Install(&m_Connector);
    }
    ~CInstalledLog() { CAppConnector::Install(nullptr); }
    CLog& Log() { return m_Log; }

private:
    CLog m_Log;
    CAppConnector m_Connector;
};

class LogTest : public ::testing::Test
{
protected:
    std::u16string Text() { return Utf16LeBytesToText(m_Fs.Bytes(LogPath)); }

    CMemFileSystem m_Fs;
    CFixedClock m_Afternoon{14};
};
} // namespace

TEST_F(LogTest, ANewLogStartsWithTheHeaderBytesAndTheStartBanner)
{
    {
        CInstalledLog log(m_Fs, m_Afternoon);
        ASSERT_TRUE(log.Log().IsOpen());
        EXPECT_EQ(Header + StartBanner, Text());
        const std::string& bytes = m_Fs.Bytes(LogPath);
        ASSERT_GE(bytes.size(), 146u);
        EXPECT_EQ(std::string("\xFF\xFE*\0*\0*\0 \0I\0", 12), bytes.substr(0, 12));
        EXPECT_EQ(std::string("\r\0\n\0\r\0\n\0\r\0\n\0", 12), bytes.substr(134, 12));
        LogMessage(u"Info: opened %s with %d records", u"a.ddb", 12);
    }
    EXPECT_EQ(Header + StartBanner + u"Info: opened a.ddb with 12 records\r\n" + FinishBanner, Text());
}

TEST_F(LogTest, RunsAppendAfterOneHeader)
{
    CFixedClock morning(9);
    {
        CInstalledLog log(m_Fs, m_Afternoon);
        LogMessage(u"Info: first");
    }
    {
        CInstalledLog log(m_Fs, morning);
        LogMessage(u"Warning: second");
    }
    const std::u16string morningStart =
        u"\r\n\r\n++++++++++++++++++++++ Application started at 03\\05\\2024 - 09:07:09 AM\r\n";
    const std::u16string morningFinish =
        u"---------------------- Application finished at 03\\05\\2024 - 09:07:09 AM\r\n\r\n\r\n";
    EXPECT_EQ(Header + StartBanner + u"Info: first\r\n" + FinishBanner + morningStart +
                  u"Warning: second\r\n" + morningFinish,
              Text());
}

TEST_F(LogTest, StartUpTrimsOldLinesToTheLimitAtALineBoundary)
{
    // Lines of varying length so that the cut point is not a lucky multiple.
    std::u16string old;
    for (int i = 0; old.size() * 2 < 800000 - 146; ++i)
        old += u"Info: line " + ToU16(i) + std::u16string(i % 37, u'x') + u"\r\n";
    m_Fs.Bytes(LogPath) = TextToUtf16LeBytes(Header + old);
    {
        CLog log(LogPath, &m_Fs, &m_Afternoon);
    }
    const std::u16string text = Text();
    ASSERT_TRUE(text.starts_with(Header));
    const size_t keptEnd = text.find(StartBanner, Header.size());
    ASSERT_NE(std::u16string::npos, keptEnd);
    const std::u16string kept = text.substr(Header.size(), keptEnd - Header.size());
    EXPECT_LE(kept.size() * 2, CLog::MaxTextBytes);
    ASSERT_TRUE(old.ends_with(kept));
    const size_t cut = old.size() - kept.size();
    ASSERT_GE(cut, 2u);
    EXPECT_EQ(u"\r\n", old.substr(cut - 2, 2));
    // The line just before the cut would not have fitted: only the oldest necessary lines go.
    const size_t previousLineStart = old.rfind(u"\r\n", cut - 3) + 2;
    EXPECT_GT((old.size() - previousLineStart) * 2, CLog::MaxTextBytes);
}

TEST_F(LogTest, ALogAtTheLimitIsLeftWhole)
{
    std::u16string old;
    while (old.size() * 2 + 146 + 20 <= CLog::MaxTextBytes)
        old += u"Info: 0123456789\r\n";
    m_Fs.Bytes(LogPath) = TextToUtf16LeBytes(Header + old);
    {
        CLog log(LogPath, &m_Fs, &m_Afternoon);
    }
    EXPECT_EQ(Header + old + StartBanner + FinishBanner, Text());
}

TEST_F(LogTest, ATooShortFileGetsAFreshHeader)
{
    m_Fs.Bytes(LogPath) = "junk";
    {
        CLog log(LogPath, &m_Fs, &m_Afternoon);
    }
    EXPECT_EQ(Header + StartBanner + FinishBanner, Text());
}

TEST_F(LogTest, LongLinesAreCutAtTheLineBuffer)
{
    CInstalledLog log(m_Fs, m_Afternoon);
    const std::u16string longText(20000, u'z');
    LogMessage(longText.c_str());
    LogMessage(u"%s!", longText);
    const std::u16string expected = std::u16string(CLog::MaxLineChars - 1, u'z') + u"\r\n";
    EXPECT_EQ(Header + StartBanner + expected + expected, Text());
}

TEST_F(LogTest, FormattingFailuresWriteTheFallbackLines)
{
    CInstalledLog log(m_Fs, m_Afternoon);
    LogMessage(static_cast<const char16_t*>(nullptr));
    LogMessage(u"Error: %d items in %s", 3);
    LogMessage(u"Error: %d", u"text");
    const std::u16string fallback = u"Unknown exception occured on formating following log line:\r\n";
    EXPECT_EQ(Header + StartBanner + fallback + u"<null pointer>\r\n" + fallback +
                  u"Error: %d items in %s\r\n" + fallback + u"Error: %d\r\n",
              Text());
}

TEST_F(LogTest, AssertionsNameTheConditionFileAndLine)
{
    CInstalledLog log(m_Fs, m_Afternoon);
    LogAssertion(u"pos <= size", u"Shared/DataFile", 812);
    EXPECT_EQ(Header + StartBanner +
                  u"Log Assertion Failed: pos <= size. [file: Shared/DataFile, line: 812]\r\n",
              Text());
}

TEST_F(LogTest, WithoutAConnectorOrWithAnUnopenableFileLinesAreDropped)
{
    LogMessage(u"Info: nobody listens");
    int cause = 0;
    m_Fs.Bytes(LogPath) = "";
    auto holder = m_Fs.Open(LogPath, EFileOpen::OpenExisting, EFileShare::DenyWrite, cause);
    ASSERT_NE(nullptr, holder);
    CInstalledLog log(m_Fs, m_Afternoon);
    EXPECT_FALSE(log.Log().IsOpen());
    LogMessage(u"Info: dropped");
    EXPECT_EQ("", m_Fs.Bytes(LogPath));
}

TEST_F(LogTest, WriteFailuresAreSwallowedAndLaterLinesStillLand)
{
    CInstalledLog log(m_Fs, m_Afternoon);
    m_Fs.Faults().failWriteAfter = 0;
    LogMessage(u"Info: lost");
    m_Fs.Faults().failWriteAfter = -1;
    LogMessage(u"Info: kept");
    EXPECT_EQ(Header + StartBanner + u"Info: kept\r\n", Text());
}

TEST_F(LogTest, LinesOfManyThreadsNeverInterleave)
{
    constexpr int Threads = 4;
    constexpr int LinesPerThread = 300;
    {
        CInstalledLog log(m_Fs, m_Afternoon);
        std::vector<std::thread> threads;
        for (int t = 0; t < Threads; ++t)
            threads.emplace_back(
                [t]
                {
                    for (int i = 0; i < LinesPerThread; ++i)
                        LogMessage(u"Info: thread %d line %d %s", t, i, std::u16string(i % 50, u'#'));
                });
        for (auto& thread : threads)
            thread.join();
    }
    std::u16string text = Text();
    ASSERT_TRUE(text.starts_with(Header + StartBanner));
    ASSERT_TRUE(text.ends_with(FinishBanner));
    text = text.substr(Header.size() + StartBanner.size(),
                       text.size() - Header.size() - StartBanner.size() - FinishBanner.size());
    std::set<std::u16string> expected;
    for (int t = 0; t < Threads; ++t)
        for (int i = 0; i < LinesPerThread; ++i)
            expected.insert(FormatText(u"Info: thread %d line %d %s", t, i, std::u16string(i % 50, u'#')));
    std::set<std::u16string> seen;
    for (size_t start = 0; start < text.size();)
    {
        const size_t end = text.find(u"\r\n", start);
        ASSERT_NE(std::u16string::npos, end);
        ASSERT_TRUE(seen.insert(text.substr(start, end - start)).second);
        start = end + 2;
    }
    EXPECT_EQ(expected, seen);
}

TEST(LogOnDisk, TwoRunsInARealFile)
{
    CTempFolder temp;
    const std::u16string path = temp.File16("Quillarium.log");
    {
        CLog log(path);
        ASSERT_TRUE(log.IsOpen());
        log.AddLine(u"Info: disk line");
    }
    {
        CLog log(path);
    }
    std::string bytes;
    int cause = 0;
    ASSERT_TRUE(ReadWholeFile(DiskFileSystem(), path, bytes, cause));
    const std::u16string text = Utf16LeBytesToText(bytes);
    EXPECT_TRUE(text.starts_with(Header + u"\r\n\r\n++++++++++++++++++++++ Application started at "));
    EXPECT_EQ(text.find(Header), text.rfind(Header));
    EXPECT_NE(std::u16string::npos,
              text.find(u"\r\nInfo: disk line\r\n---------------------- Application finished"));
    EXPECT_TRUE(text.ends_with(u"M\r\n\r\n\r\n"));
}

TEST(LogOnDisk, DefaultFolderFallsBackToTheStateFolder)
{
    CTempFolder temp;
    EXPECT_EQ(temp.Path16() + u"/", DefaultLogFolder(temp.Path16() + u"/"));

    const char* old = std::getenv("XDG_STATE_HOME");
    const std::optional<std::string> saved = old ? std::optional<std::string>(old) : std::nullopt;
    setenv("XDG_STATE_HOME", (temp.Path() + "/state").c_str(), 1);
    const std::u16string folder = DefaultLogFolder(temp.Path16() + u"/missing/");
    if (saved)
        setenv("XDG_STATE_HOME", saved->c_str(), 1);
    else
        unsetenv("XDG_STATE_HOME");
    EXPECT_EQ(temp.Path16() + u"/state/Quillarium/", folder);
    EXPECT_TRUE(DiskFileSystem().IsWritableFolder(folder));
}
