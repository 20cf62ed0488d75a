#pragma once
// The file layer. Paths are UTF-16 text, converted to UTF-8 at the system call. Every failing
// call leaves the platform cause code (errno) in LastCause(), for "cause - %d" in log lines.
// All I/O goes through IFileSystem so that tests and fuzzers can use an in-memory or
// fault-injecting file system instead of the disk.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

enum class EFileOpen
{
    CreateTruncate, // create or empty the file, read-write
    OpenExisting,   // read-write, fail when missing
    ReadOnly,       // read only, fail when missing
    OpenOrCreate    // read-write, created when missing, never truncated
};

enum class EFileShare
{
    DenyWrite, // a second process that asks for DenyWrite on the same file fails (exclusive advisory lock)
    ShareAll   // no lock
};

class IFile
{
public:
    virtual ~IFile() = default;
    // Reads up to `size` bytes at `offset`; `done` receives the count (short at end of file).
    virtual bool ReadAt(uint64_t offset, void* data, size_t size, size_t& done) = 0;
    virtual bool WriteAt(uint64_t offset, const void* data, size_t size) = 0;
    virtual bool GetLength(uint64_t& length) = 0;
    virtual bool SetLength(uint64_t length) = 0;
    virtual bool Flush() = 0;
    virtual int LastCause() const = 0;

    // Convenience: true only when exactly `size` bytes were read.
    bool ReadExactAt(uint64_t offset, void* data, size_t size);
};

struct SFolderEntry
{
    std::u16string name; // file name only
    bool isFolder = false;
    uint64_t size = 0;
};

class IFileSystem
{
public:
    virtual ~IFileSystem() = default;
    // nullptr on failure, with the cause in `cause`.
    virtual std::unique_ptr<IFile> Open(const std::u16string& path, EFileOpen mode, EFileShare share,
                                        int& cause) = 0;
    virtual bool Exists(const std::u16string& path) = 0;
    virtual bool IsFolder(const std::u16string& path) = 0;
    virtual bool Delete(const std::u16string& path, int& cause) = 0;
    virtual bool Rename(const std::u16string& from, const std::u16string& to, int& cause) = 0;
    virtual bool CreateFolder(const std::u16string& path, int& cause) = 0; // with missing parents
    // Entries of `folder` whose names match `pattern` ("*" and "?" wildcards, case-insensitive
    // for ASCII), sorted by name.
    virtual std::vector<SFolderEntry> ListFolder(const std::u16string& folder,
                                                 const std::u16string& pattern) = 0;
    virtual bool IsWritableFolder(const std::u16string& folder) = 0;
};

// The disk, through POSIX calls. DenyWrite uses an exclusive flock() on the open file.
IFileSystem& DiskFileSystem();

// Reads a whole file; false (with the cause) when it cannot be opened or read.
bool ReadWholeFile(IFileSystem& fs, const std::u16string& path, std::string& bytes, int& cause);
// Creates or truncates and writes a whole file.
bool WriteWholeFile(IFileSystem& fs, const std::u16string& path, std::string_view bytes, int& cause);

// The wildcard match of ListFolder: '*' for any run, '?' for one character, ASCII letters
// without regard to case.
bool MatchesFilePattern(std::u16string_view name, std::u16string_view pattern);

// Path helpers for '/'-separated paths.
std::u16string JoinPath(std::u16string_view folder, std::u16string_view name);
std::u16string FolderOf(std::u16string_view path); // up to and including the last '/', or empty
std::u16string FileNameOf(std::u16string_view path);
