#pragma once
// An in-memory IFileSystem for tests and fuzzers, with fault injection: a write, read, length
// change or flush can be made to fail after a given number of successful calls, and DenyWrite
// locks are honoured between files opened through the same object.
#include "Shared/Base/File.h"

#include <map>
#include <memory>
#include <set>

class CMemFileSystem : public IFileSystem
{
public:
    struct SFaults
    {
        // -1: never; 0: the next call fails, and so does every later one until set back to -1
        long long failWriteAfter = -1;
        long long failReadAfter = -1;
        long long failSetLengthAfter = -1;
        long long failFlushAfter = -1;
        int cause = 5; // EIO
    };

    std::unique_ptr<IFile> Open(const std::u16string& path, EFileOpen mode, EFileShare share,
                                int& cause) override;
    bool Exists(const std::u16string& path) override;
    bool IsFolder(const std::u16string& path) override;
    bool Delete(const std::u16string& path, int& cause) override;
    bool Rename(const std::u16string& from, const std::u16string& to, int& cause) override;
    bool CreateFolder(const std::u16string& path, int& cause) override;
    std::vector<SFolderEntry> ListFolder(const std::u16string& folder,
                                         const std::u16string& pattern) override;
    bool IsWritableFolder(const std::u16string& folder) override;

    // Direct access to a file's bytes (created when missing), for tests that edit single bytes.
    std::string& Bytes(const std::u16string& path);
    SFaults& Faults() { return m_Faults; }

private:
    friend class CMemFile;
    struct SNode
    {
        std::shared_ptr<std::string> data = std::make_shared<std::string>();
        bool denyWriteHeld = false;
    };
    bool ConsumeFault(long long& counter);

    std::map<std::u16string, SNode> m_Files;
    std::set<std::u16string> m_Folders;
    SFaults m_Faults;
};
