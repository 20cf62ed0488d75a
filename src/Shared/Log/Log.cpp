#include "Shared/Log/Log.h"

#include "Shared/Base/AppConnector.h"
#include "Shared/Base/File.h"
#include "Shared/Base/OleDate.h"
#include "Shared/Base/Paths.h"
#include "Shared/Base/TextConv.h"

#include <string_view>

namespace
{
constexpr std::u16string_view Header =
    u"\uFEFF*** Information: New entries are added to the bottom of this file.\r\n\r\n\r\n";
constexpr uint64_t HeaderBytes = 146;
static_assert(Header.size() * 2 == HeaderBytes);

constexpr const char16_t* StartPrefix = u"\r\n\r\n++++++++++++++++++++++ Application started at ";
constexpr const char16_t* StartSuffix = u"\r\n";
constexpr const char16_t* FinishPrefix = u"---------------------- Application finished at ";
constexpr const char16_t* FinishSuffix = u"\r\n\r\n\r\n";
constexpr std::u16string_view BannerTimeFormat = u"%m\\%d\\%Y - %I:%M:%S %p";

// Bytes of log text from `start` to the end that remain after the first CR LF pair past which
// at most `limit` bytes are left; the whole text when no such pair exists.
size_t BytesToDrop(const std::string& text, uint64_t limit)
{
    for (size_t pos = 0; pos + 4 <= text.size(); pos += 2)
    {
        if (text[pos] == '\r' && text[pos + 1] == 0 && text[pos + 2] == '\n' && text[pos + 3] == 0)
        {
            const size_t after = pos + 4;
            if (text.size() - after <= limit)
                return after;
            pos += 2;
        }
    }
    return text.size();
}
} // namespace

CLog::CLog(const std::u16string& path, IFileSystem* fs, const IClock* clock)
    : m_Path(path), m_Fs(fs ? *fs : DiskFileSystem()), m_Clock(clock ? *clock : SystemClock())
{
    Open();
}

CLog::~CLog()
{
    CCriticalSectionLock guard(m_Lock);
    if (!m_File)
        return;
    try
    {
        WriteBanner(FinishPrefix, FinishSuffix);
    }
    catch (...)
    {
        // Shutting down: nothing sensible remains to be done about a failed last line.
    }
    m_File.reset();
}

void CLog::Open()
{
    CCriticalSectionLock guard(m_Lock);
    try
    {
        int cause = 0;
        m_File = m_Fs.Open(m_Path, EFileOpen::OpenOrCreate, EFileShare::DenyWrite, cause);
        if (!m_File)
            return;
        uint64_t size = 0;
        if (!m_File->GetLength(size))
        {
            m_File.reset(); // without a length there is no safe place to append
            return;
        }
        if (size < HeaderBytes)
        {
            const std::string header = TextToUtf16LeBytes(Header);
            m_File->SetLength(0);
            m_File->WriteAt(0, header.data(), header.size());
            size = HeaderBytes;
        }
        else if (size > MaxTextBytes)
            TrimToLimit(size);
        m_File->GetLength(m_End);
        WriteBanner(StartPrefix, StartSuffix);
    }
    catch (...)
    {
        m_File.reset();
    }
}

void CLog::TrimToLimit(uint64_t size)
{
    std::string text(static_cast<size_t>(size - HeaderBytes), '\0');
    if (!m_File->ReadExactAt(HeaderBytes, text.data(), text.size()))
        return; // an unreadable log is left as it is and appended to
    const size_t drop = BytesToDrop(text, MaxTextBytes);
    if (!m_File->SetLength(HeaderBytes))
        return;
    m_File->WriteAt(HeaderBytes, text.data() + drop, text.size() - drop);
}

void CLog::WriteBanner(const char16_t* prefix, const char16_t* suffix)
{
    SDateTimeFields now;
    OleDateToFields(m_Clock.NowLocal(), now);
    Append(prefix + FormatDateTime(BannerTimeFormat, now) + suffix);
}

void CLog::Append(std::u16string_view text)
{
    const std::string bytes = TextToUtf16LeBytes(text);
    if (m_File->WriteAt(m_End, bytes.data(), bytes.size()))
        m_End += bytes.size();
}

void CLog::AddLine(std::u16string_view text)
{
    CCriticalSectionLock guard(m_Lock);
    if (!m_File)
        return;
    // Text and line end go out in one write, so a line of another thread can never split it.
    std::u16string line(text);
    line += u"\r\n";
    Append(line);
}

std::u16string DefaultLogFolder(const std::u16string& programFolder)
{
    IFileSystem& disk = DiskFileSystem();
    if (!programFolder.empty() && disk.IsWritableFolder(programFolder))
        return programFolder;
    const std::u16string folder = XdgStateHome() + u"Quillarium/";
    int cause = 0;
    disk.CreateFolder(folder, cause);
    return folder;
}

void LogFormatted(const char16_t* format, std::span<const CFormatArg> args)
{
    CAppConnector* connector = CAppConnector::Get();
    CLog* log = connector ? connector->GetLog() : nullptr;
    if (!log)
        return;
    try
    {
        std::u16string line;
        if (format && TryFormatText(line, format, args, CLog::MaxLineChars - 1))
        {
            log->AddLine(line);
            return;
        }
        log->AddLine(u"Unknown exception occured on formating following log line:");
        log->AddLine(format ? format : u"<null pointer>");
    }
    catch (...)
    {
        try
        {
            log->AddLine(
                u"Error: Unable to display log line because of either invalid pointer or missed zero "
                u"terminator");
        }
        catch (...)
        {
            // Out of memory even for a constant line: the line is lost.
        }
    }
}

void LogAssertion(std::u16string_view condition, std::u16string_view sourcePath, int line)
{
    LogMessage(u"Log Assertion Failed: %s. [file: %s, line: %d]", condition, sourcePath, line);
}
