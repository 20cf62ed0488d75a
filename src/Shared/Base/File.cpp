#include "Shared/Base/File.h"

#include "Shared/Base/TextConv.h"

#include <algorithm>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

bool IFile::ReadExactAt(uint64_t offset, void* data, size_t size)
{
    size_t done = 0;
    return ReadAt(offset, data, size, done) && done == size;
}

namespace
{
class CDiskFile : public IFile
{
public:
    explicit CDiskFile(int fd) : m_Fd(fd) {}
    ~CDiskFile() override { ::close(m_Fd); } // closing also releases the flock
    CDiskFile(const CDiskFile&) = delete;
    CDiskFile& operator=(const CDiskFile&) = delete;

    bool ReadAt(uint64_t offset, void* data, size_t size, size_t& done) override
    {
        done = 0;
        auto* out = static_cast<char*>(data);
        while (done < size)
        {
            const ssize_t got = ::pread(m_Fd, out + done, size - done, static_cast<off_t>(offset + done));
            if (got < 0 && errno == EINTR)
                continue;
            if (got < 0)
                return Fail();
            if (got == 0)
                break;
            done += static_cast<size_t>(got);
        }
        return true;
    }

    bool WriteAt(uint64_t offset, const void* data, size_t size) override
    {
        const auto* in = static_cast<const char*>(data);
        size_t done = 0;
        while (done < size)
        {
            const ssize_t put = ::pwrite(m_Fd, in + done, size - done, static_cast<off_t>(offset + done));
            if (put < 0 && errno == EINTR)
                continue;
            if (put <= 0)
                return Fail();
            done += static_cast<size_t>(put);
        }
        return true;
    }

    bool GetLength(uint64_t& length) override
    {
        struct stat info
        {
        };
        if (::fstat(m_Fd, &info) != 0)
            return Fail();
        length = static_cast<uint64_t>(info.st_size);
        return true;
    }

    bool SetLength(uint64_t length) override
    {
        return ::ftruncate(m_Fd, static_cast<off_t>(length)) == 0 || Fail();
    }

    bool Flush() override { return ::fsync(m_Fd) == 0 || Fail(); }

    int LastCause() const override { return m_Cause; }

private:
    bool Fail()
    {
        m_Cause = errno != 0 ? errno : EIO;
        return false;
    }

    int m_Fd;
    int m_Cause = 0;
};

std::string Native(const std::u16string& path)
{
    return Utf16ToUtf8(path);
}

int OpenFlags(EFileOpen mode)
{
    switch (mode)
    {
    case EFileOpen::CreateTruncate:
    case EFileOpen::OpenOrCreate:
        return O_RDWR | O_CREAT;
    case EFileOpen::OpenExisting:
        return O_RDWR;
    case EFileOpen::ReadOnly:
        break;
    }
    return O_RDONLY;
}

bool CreateOneFolder(const std::string& path, int& cause)
{
    if (::mkdir(path.c_str(), 0777) == 0)
        return true;
    struct stat info
    {
    };
    if (errno == EEXIST && ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode))
        return true;
    cause = errno;
    return false;
}

class CDiskFileSystem : public IFileSystem
{
public:
    std::unique_ptr<IFile> Open(const std::u16string& path, EFileOpen mode, EFileShare share,
                                int& cause) override
    {
        const int fd = ::open(Native(path).c_str(), OpenFlags(mode) | O_CLOEXEC, 0666);
        if (fd < 0)
        {
            cause = errno;
            return nullptr;
        }
        // The lock comes before truncation so that a file another process holds is never emptied.
        if ((share == EFileShare::DenyWrite && ::flock(fd, LOCK_EX | LOCK_NB) != 0) ||
            (mode == EFileOpen::CreateTruncate && ::ftruncate(fd, 0) != 0))
        {
            cause = errno;
            ::close(fd);
            return nullptr;
        }
        return std::make_unique<CDiskFile>(fd);
    }

    bool Exists(const std::u16string& path) override
    {
        struct stat info
        {
        };
        return ::stat(Native(path).c_str(), &info) == 0;
    }

    bool IsFolder(const std::u16string& path) override
    {
        struct stat info
        {
        };
        return ::stat(Native(path).c_str(), &info) == 0 && S_ISDIR(info.st_mode);
    }

    bool Delete(const std::u16string& path, int& cause) override
    {
        if (::unlink(Native(path).c_str()) == 0)
            return true;
        cause = errno;
        return false;
    }

    bool Rename(const std::u16string& from, const std::u16string& to, int& cause) override
    {
        if (::rename(Native(from).c_str(), Native(to).c_str()) == 0)
            return true;
        cause = errno;
        return false;
    }

    bool CreateFolder(const std::u16string& path, int& cause) override
    {
        const std::string native = Native(path);
        for (size_t slash = native.find('/', 1); slash != std::string::npos;
             slash = native.find('/', slash + 1))
            if (!CreateOneFolder(native.substr(0, slash), cause))
                return false;
        return native.empty() || native.back() == '/' || CreateOneFolder(native, cause);
    }

    std::vector<SFolderEntry> ListFolder(const std::u16string& folder, const std::u16string& pattern) override
    {
        std::vector<SFolderEntry> entries;
        const std::string native = Native(folder.empty() ? u"." : folder);
        DIR* dir = ::opendir(native.c_str());
        if (!dir)
            return entries;
        while (const dirent* item = ::readdir(dir))
        {
            const std::string name = item->d_name;
            if (name == "." || name == "..")
                continue;
            SFolderEntry entry;
            entry.name = Utf8ToUtf16(name);
            if (!MatchesFilePattern(entry.name, pattern))
                continue;
            struct stat info
            {
            };
            if (::stat((native + "/" + name).c_str(), &info) == 0)
            {
                entry.isFolder = S_ISDIR(info.st_mode);
                entry.size = entry.isFolder ? 0 : static_cast<uint64_t>(info.st_size);
            }
            entries.push_back(std::move(entry));
        }
        ::closedir(dir);
        std::sort(entries.begin(), entries.end(),
                  [](const SFolderEntry& a, const SFolderEntry& b) { return a.name < b.name; });
        return entries;
    }

    bool IsWritableFolder(const std::u16string& folder) override
    {
        const std::string native = Native(folder.empty() ? u"." : folder);
        return IsFolder(folder.empty() ? u"." : folder) && ::access(native.c_str(), W_OK | X_OK) == 0;
    }
};
} // namespace

bool MatchesFilePattern(std::u16string_view name, std::u16string_view pattern)
{
    size_t n = 0;
    size_t p = 0;
    size_t starP = std::u16string_view::npos;
    size_t starN = 0;
    while (n < name.size())
    {
        if (p < pattern.size() &&
            (pattern[p] == u'?' || EqualsNoCaseAscii(pattern.substr(p, 1), name.substr(n, 1))))
        {
            ++p;
            ++n;
        }
        else if (p < pattern.size() && pattern[p] == u'*')
        {
            starP = p++;
            starN = n;
        }
        else if (starP != std::u16string_view::npos)
        {
            p = starP + 1;
            n = ++starN;
        }
        else
            return false;
    }
    while (p < pattern.size() && pattern[p] == u'*')
        ++p;
    return p == pattern.size();
}

IFileSystem& DiskFileSystem()
{
    static CDiskFileSystem disk;
    return disk;
}

bool ReadWholeFile(IFileSystem& fs, const std::u16string& path, std::string& bytes, int& cause)
{
    std::unique_ptr<IFile> file = fs.Open(path, EFileOpen::ReadOnly, EFileShare::ShareAll, cause);
    if (!file)
        return false;
    uint64_t length = 0;
    if (!file->GetLength(length))
    {
        cause = file->LastCause();
        return false;
    }
    bytes.resize(static_cast<size_t>(length));
    size_t done = 0;
    if (!file->ReadAt(0, bytes.data(), bytes.size(), done))
    {
        cause = file->LastCause();
        return false;
    }
    bytes.resize(done);
    return true;
}

bool WriteWholeFile(IFileSystem& fs, const std::u16string& path, std::string_view bytes, int& cause)
{
    std::unique_ptr<IFile> file = fs.Open(path, EFileOpen::CreateTruncate, EFileShare::ShareAll, cause);
    if (!file)
        return false;
    if (!file->WriteAt(0, bytes.data(), bytes.size()))
    {
        cause = file->LastCause();
        return false;
    }
    return true;
}

std::u16string JoinPath(std::u16string_view folder, std::u16string_view name)
{
    std::u16string path(folder);
    if (!path.empty() && path.back() != u'/')
        path.push_back(u'/');
    path.append(name);
    return path;
}

std::u16string FolderOf(std::u16string_view path)
{
    const size_t slash = path.rfind(u'/');
    return slash == std::u16string_view::npos ? std::u16string() : std::u16string(path.substr(0, slash + 1));
}

std::u16string FileNameOf(std::u16string_view path)
{
    const size_t slash = path.rfind(u'/');
    return std::u16string(slash == std::u16string_view::npos ? path : path.substr(slash + 1));
}
