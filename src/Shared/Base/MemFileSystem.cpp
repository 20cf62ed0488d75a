#include "Shared/Base/MemFileSystem.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace
{
std::u16string WithoutTrailingSlash(std::u16string_view path)
{
    while (path.size() > 1 && path.back() == u'/')
        path.remove_suffix(1);
    return std::u16string(path);
}

std::u16string ParentOf(std::u16string_view path)
{
    return WithoutTrailingSlash(FolderOf(path));
}
} // namespace

class CMemFile : public IFile
{
public:
    CMemFile(CMemFileSystem& fs, std::shared_ptr<std::string> data, bool readOnly, bool holdsDenyWrite)
        : m_Fs(fs), m_Data(std::move(data)), m_ReadOnly(readOnly), m_HoldsDenyWrite(holdsDenyWrite)
    {
    }

    ~CMemFile() override
    {
        if (!m_HoldsDenyWrite)
            return;
        // The node is found by its data, since the file may have been renamed while open.
        for (auto& [path, node] : m_Fs.m_Files)
            if (node.data == m_Data)
                node.denyWriteHeld = false;
    }
    CMemFile(const CMemFile&) = delete;
    CMemFile& operator=(const CMemFile&) = delete;

    bool ReadAt(uint64_t offset, void* data, size_t size, size_t& done) override
    {
        done = 0;
        if (m_Fs.ConsumeFault(m_Fs.m_Faults.failReadAfter))
            return Fail(m_Fs.m_Faults.cause);
        if (offset >= m_Data->size())
            return true;
        done = static_cast<size_t>(std::min<uint64_t>(size, m_Data->size() - offset));
        std::memcpy(data, m_Data->data() + offset, done);
        return true;
    }

    bool WriteAt(uint64_t offset, const void* data, size_t size) override
    {
        if (m_ReadOnly)
            return Fail(EBADF);
        if (m_Fs.ConsumeFault(m_Fs.m_Faults.failWriteAfter))
            return Fail(m_Fs.m_Faults.cause);
        if (size == 0)
            return true;
        if (m_Data->size() < offset + size)
            m_Data->resize(static_cast<size_t>(offset + size), '\0');
        std::memcpy(m_Data->data() + offset, data, size);
        return true;
    }

    bool GetLength(uint64_t& length) override
    {
        length = m_Data->size();
        return true;
    }

    bool SetLength(uint64_t length) override
    {
        if (m_ReadOnly)
            return Fail(EBADF);
        if (m_Fs.ConsumeFault(m_Fs.m_Faults.failSetLengthAfter))
            return Fail(m_Fs.m_Faults.cause);
        m_Data->resize(static_cast<size_t>(length), '\0');
        return true;
    }

    bool Flush() override
    {
        if (m_Fs.ConsumeFault(m_Fs.m_Faults.failFlushAfter))
            return Fail(m_Fs.m_Faults.cause);
        return true;
    }

    int LastCause() const override { return m_Cause; }

private:
    bool Fail(int cause)
    {
        m_Cause = cause;
        return false;
    }

    CMemFileSystem& m_Fs;
    std::shared_ptr<std::string> m_Data;
    bool m_ReadOnly;
    bool m_HoldsDenyWrite;
    int m_Cause = 0;
};

bool CMemFileSystem::ConsumeFault(long long& counter)
{
    if (counter < 0)
        return false;
    if (counter == 0)
        return true; // once reached, the fault stays until the test clears it
    --counter;
    return false;
}

std::unique_ptr<IFile> CMemFileSystem::Open(const std::u16string& path, EFileOpen mode, EFileShare share,
                                            int& cause)
{
    auto found = m_Files.find(path);
    if (found == m_Files.end())
    {
        if (mode == EFileOpen::OpenExisting || mode == EFileOpen::ReadOnly)
        {
            cause = ENOENT;
            return nullptr;
        }
        if (IsFolder(path))
        {
            cause = EISDIR;
            return nullptr;
        }
        found = m_Files.emplace(path, SNode()).first;
    }
    SNode& node = found->second;
    const bool denyWrite = share == EFileShare::DenyWrite;
    if (denyWrite && node.denyWriteHeld)
    {
        cause = EWOULDBLOCK;
        return nullptr;
    }
    if (mode == EFileOpen::CreateTruncate)
        node.data->clear();
    node.denyWriteHeld = node.denyWriteHeld || denyWrite;
    return std::make_unique<CMemFile>(*this, node.data, mode == EFileOpen::ReadOnly, denyWrite);
}

bool CMemFileSystem::Exists(const std::u16string& path)
{
    return m_Files.count(path) != 0 || IsFolder(path);
}

bool CMemFileSystem::IsFolder(const std::u16string& path)
{
    const std::u16string folder = WithoutTrailingSlash(path);
    if (folder.empty() || folder == u"/" || m_Folders.count(folder) != 0)
        return true;
    // A folder also exists implicitly while some file lies beneath it.
    const std::u16string prefix = folder + u"/";
    auto after = m_Files.lower_bound(prefix);
    return after != m_Files.end() && after->first.starts_with(prefix);
}

bool CMemFileSystem::Delete(const std::u16string& path, int& cause)
{
    if (m_Files.erase(path) == 0)
    {
        cause = ENOENT;
        return false;
    }
    return true;
}

bool CMemFileSystem::Rename(const std::u16string& from, const std::u16string& to, int& cause)
{
    auto source = m_Files.find(from);
    if (source == m_Files.end())
    {
        cause = ENOENT;
        return false;
    }
    if (from == to)
        return true;
    SNode node = source->second;
    m_Files.erase(source);
    m_Files[to] = std::move(node);
    return true;
}

bool CMemFileSystem::CreateFolder(const std::u16string& path, int& cause)
{
    std::u16string folder = WithoutTrailingSlash(path);
    if (m_Files.count(folder) != 0)
    {
        cause = EEXIST;
        return false;
    }
    while (!folder.empty() && folder != u"/")
    {
        m_Folders.insert(folder);
        folder = ParentOf(folder);
    }
    return true;
}

std::vector<SFolderEntry> CMemFileSystem::ListFolder(const std::u16string& folder,
                                                     const std::u16string& pattern)
{
    const std::u16string parent = WithoutTrailingSlash(folder);
    std::map<std::u16string, SFolderEntry> byName;
    for (const auto& [path, node] : m_Files)
    {
        if (ParentOf(path) == parent && MatchesFilePattern(FileNameOf(path), pattern))
            byName[FileNameOf(path)] = SFolderEntry{FileNameOf(path), false, node.data->size()};
    }
    for (const std::u16string& sub : m_Folders)
    {
        if (ParentOf(sub) == parent && MatchesFilePattern(FileNameOf(sub), pattern))
            byName[FileNameOf(sub)] = SFolderEntry{FileNameOf(sub), true, 0};
    }
    std::vector<SFolderEntry> entries;
    for (auto& [name, entry] : byName)
        entries.push_back(std::move(entry));
    return entries;
}

bool CMemFileSystem::IsWritableFolder(const std::u16string& folder)
{
    return IsFolder(folder);
}

std::string& CMemFileSystem::Bytes(const std::u16string& path)
{
    return *m_Files[path].data;
}
