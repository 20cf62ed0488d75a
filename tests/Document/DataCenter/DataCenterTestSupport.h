#pragma once
// A data center on an in-memory disk with a settable clock, fixed file times, a message box that
// records what it shows, a log kept in memory and a language module whose texts name their keys
// ("[KEY] ^filename"), so a test can see which message was shown for which file.
#include "Document/DataCenter.h"
#include "Document/DefaultFolders.h"
#include "Shared/Base/AppConnector.h"
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/MessageBox.h"
#include "Shared/Base/OleDate.h"
#include "Shared/Base/TextConv.h"
#include "Shared/LanguagesMgr/LanguageModule.h"
#include "Shared/Log/Log.h"

#include <map>
#include <string>
#include <vector>

class CSettableClock : public IClock
{
public:
    OleDate NowLocal() const override { return now; }
    uint32_t TickCountMs() const override { return m_Tick += 1; }

    OleDate now = 40393.5; // 3 August 2010, noon

private:
    mutable uint32_t m_Tick = 1000;
};

class CFixedFileTimes : public IFileTimes
{
public:
    bool GetLastWriteTime(const std::u16string& path, OleDate& time, int& cause) override
    {
        const auto found = times.find(path);
        if (found == times.end())
        {
            cause = 2;
            return false;
        }
        time = found->second;
        return true;
    }
    std::map<std::u16string, OleDate> times;
};

class CRecordingMessageBox : public IMessageBox
{
public:
    EMsgResult Show(const std::u16string& text, EMsgIcon icon, EMsgButtons) override
    {
        shown.push_back(text);
        icons.push_back(icon);
        return EMsgResult::Ok;
    }
    std::vector<std::u16string> shown;
    std::vector<EMsgIcon> icons;
};

// Counts the flushes of every file opened through it.
class CFlushCountingFileSystem : public CMemFileSystem
{
public:
    std::unique_ptr<IFile> Open(const std::u16string& path, EFileOpen mode, EFileShare share,
                                int& cause) override
    {
        std::unique_ptr<IFile> file = CMemFileSystem::Open(path, mode, share, cause);
        return file ? std::make_unique<CCountingFile>(std::move(file), flushes) : nullptr;
    }
    int flushes = 0;

private:
    class CCountingFile : public IFile
    {
    public:
        CCountingFile(std::unique_ptr<IFile> inner, int& flushes)
            : m_Inner(std::move(inner)), m_Flushes(flushes)
        {
        }
        bool ReadAt(uint64_t offset, void* data, size_t size, size_t& done) override
        {
            return m_Inner->ReadAt(offset, data, size, done);
        }
        bool WriteAt(uint64_t offset, const void* data, size_t size) override
        {
            return m_Inner->WriteAt(offset, data, size);
        }
        bool GetLength(uint64_t& length) override { return m_Inner->GetLength(length); }
        bool SetLength(uint64_t length) override { return m_Inner->SetLength(length); }
        bool Flush() override
        {
            ++m_Flushes;
            return m_Inner->Flush();
        }
        int LastCause() const override { return m_Inner->LastCause(); }

    private:
        std::unique_ptr<IFile> m_Inner;
        int& m_Flushes;
    };
};

inline std::vector<std::u16string> KeyNamingTexts()
{
    std::vector<std::u16string> lines;
    for (const char16_t* key :
         {u"ERR_CANNOT_CREATE_FILE", u"ERR_CANNOT_DELETE_FILE", u"ERR_CANNOT_LOAD_ROOT_FOLDER",
          u"ERR_CANNOT_SAVE_FILE", u"ERR_CORRUPTED_FILE", u"ERR_FILE_DOES_NOT_EXISTS",
          u"ERR_INCORRECT_FILE_TYPE", u"ERR_WRITE_PROTECTED_FILE", u"ERR_WRONG_FILE_VERSION"})
        lines.push_back(std::u16string(key) + u"=[" + key + u"] ^filename");
    lines.push_back(u"ERR_WRONG_DATA_FILE_APP=[ERR_WRONG_DATA_FILE_APP] ^filename (^appname)");
    lines.push_back(u"ERR_CANNOT_DELETE_DEFAULT_FOLDERS=[ERR_CANNOT_DELETE_DEFAULT_FOLDERS]");
    for (int kind = 0; kind < DefaultFolderKindCount; ++kind)
        lines.push_back(std::u16string(DefaultFolderCaptionKey(kind)) + u"=Folder " + char16_t(u'0' + kind));
    for (const char16_t* sample : {u"WELCOME", u"TASK", u"IDEA"})
    {
        const std::u16string key = std::u16string(u"WIZARDDLG_SAMPLE_TREE_") + sample;
        lines.push_back(key + u"_CAPTION=Sample " + sample);
        lines.push_back(key + u"_TEXT=First line of " + sample + u"\nSecond line");
    }
    lines.push_back(u"MAIN_WND_STATUS_SAVING=Saving...");
    lines.push_back(u"MAIN_WND_STATUS_WAIT=Please wait.");
    return lines;
}

struct SDataCenterFixture
{
    static constexpr char16_t Path[] = u"/docs/MyData.ddb";

    SDataCenterFixture() : log(u"/log/Quillarium.log", &logFs, &clock)
    {
        texts = KeyNamingTexts();
        std::vector<std::u16string_view> views(texts.begin(), texts.end());
        language.LoadBuiltIn(u"Test", views);
        previous = CAppConnector::Get();
        connector.SetLog(&log);
        connector.SetLanguageModule(&language);
        CAppConnector::Install(&connector);
        ClearLog();
    }
    ~SDataCenterFixture()
    {
        center.CloseDocument();
        CAppConnector::Install(previous);
    }

    std::u16string Log() { return Utf16LeBytesToText(logFs.Bytes(u"/log/Quillarium.log")).substr(logMark); }
    bool Logged(std::u16string_view line)
    {
        return Log().find(std::u16string(line) + u"\r\n") != std::u16string::npos;
    }
    void ClearLog() { logMark = Utf16LeBytesToText(logFs.Bytes(u"/log/Quillarium.log")).size(); }

    CMemFileSystem logFs;
    CSettableClock clock;
    CLog log;
    std::vector<std::u16string> texts;
    CLanguageModule language{&logFs};
    CAppConnector connector;
    CAppConnector* previous = nullptr;
    size_t logMark = 0;

    CFlushCountingFileSystem fs;
    CFixedFileTimes times;
    CRecordingMessageBox box;
    CDataCenter center{fs, clock, times, &box};
};
