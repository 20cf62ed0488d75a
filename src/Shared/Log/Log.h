#pragma once
// The diagnostic log "Quillarium.log": UTF-16LE, a fixed header, one start and one finish banner
// per run, every line on disk at once, trimmed from the front at start-up. Lines carry their
// level as their first word ("Info: ", "Warning: ", "Error: ", "Fatal error: ").
#include "Shared/Base/Format.h"
#include "Shared/Base/Lock.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

class IFile;
class IFileSystem;
class IClock;

class CLog
{
public:
    static constexpr uint64_t MaxTextBytes = 731136; // log text kept after the header
    static constexpr size_t MaxLineChars = 12288;

    // Opens (or creates) `path` and writes the start banner; when the file cannot be opened,
    // later lines are dropped silently.
    explicit CLog(const std::u16string& path, IFileSystem* fs = nullptr, const IClock* clock = nullptr);
    ~CLog(); // writes the finish banner
    CLog(const CLog&) = delete;
    CLog& operator=(const CLog&) = delete;

    bool IsOpen() const { return m_File != nullptr; }
    const std::u16string& Path() const { return m_Path; }
    // Appends `text` and CR LF under the lock.
    void AddLine(std::u16string_view text);

private:
    void Open();
    void TrimToLimit(uint64_t size);
    void WriteBanner(const char16_t* prefix, const char16_t* suffix);
    void Append(std::u16string_view text);

    std::u16string m_Path;
    IFileSystem& m_Fs;
    const IClock& m_Clock;
    std::unique_ptr<IFile> m_File;
    uint64_t m_End = 0;
    CCriticalSection m_Lock;
};

// The log's folder: the program folder when writable, otherwise $XDG_STATE_HOME/Quillarium
// (default ~/.local/state/Quillarium), created when missing.
std::u16string DefaultLogFolder(const std::u16string& programFolder);

// Formats and writes one line through the installed CAppConnector's log; does nothing without
// one. A null format or a format that does not fit its arguments writes the fallback lines.
void LogFormatted(const char16_t* format, std::span<const CFormatArg> args);

template <class... TArgs> void LogMessage(const char16_t* format, const TArgs&... args)
{
    if constexpr (sizeof...(TArgs) == 0)
        LogFormatted(format, {});
    else
    {
        const CFormatArg list[] = {CFormatArg(args)...};
        LogFormatted(format, list);
    }
}

// Invariant checks: "Log Assertion Failed: %s. [file: %s, line: %d]" with the source path
// without extension (such as u"Shared/DataFile"); execution continues.
void LogAssertion(std::u16string_view condition, std::u16string_view sourcePath, int line);
