#include "Shared/Base/File.h"
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/TextConv.h"
#include "Support/TempFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <random>

namespace
{
// The same contract holds for the disk and for the in-memory file system.
class FileSystemContract : public ::testing::TestWithParam<bool>
{
protected:
    IFileSystem& Fs() { return GetParam() ? DiskFileSystem() : static_cast<IFileSystem&>(m_Mem); }
    std::u16string Root() { return GetParam() ? m_Temp.Path16() + u"/" : u"/mem/"; }

    std::string Read(const std::u16string& path)
    {
        std::string bytes;
        int cause = 0;
        EXPECT_TRUE(ReadWholeFile(Fs(), path, bytes, cause)) << cause;
        return bytes;
    }

    CTempFolder m_Temp;
    CMemFileSystem m_Mem;
};

std::vector<std::u16string> Names(const std::vector<SFolderEntry>& entries)
{
    std::vector<std::u16string> names;
    for (const SFolderEntry& entry : entries)
        names.push_back(entry.name);
    return names;
}
} // namespace

TEST_P(FileSystemContract, OpenModes)
{
    const std::u16string path = Root() + u"f.bin";
    int cause = 0;
    EXPECT_EQ(nullptr, Fs().Open(path, EFileOpen::OpenExisting, EFileShare::ShareAll, cause));
    EXPECT_EQ(ENOENT, cause);
    EXPECT_EQ(nullptr, Fs().Open(path, EFileOpen::ReadOnly, EFileShare::ShareAll, cause));
    {
        auto file = Fs().Open(path, EFileOpen::OpenOrCreate, EFileShare::ShareAll, cause);
        ASSERT_NE(nullptr, file);
        ASSERT_TRUE(file->WriteAt(0, "hello", 5));
    }
    {
        auto file = Fs().Open(path, EFileOpen::OpenOrCreate, EFileShare::ShareAll, cause);
        ASSERT_TRUE(file->WriteAt(5, "!", 1));
    }
    EXPECT_EQ("hello!", Read(path));
    {
        auto file = Fs().Open(path, EFileOpen::ReadOnly, EFileShare::ShareAll, cause);
        ASSERT_NE(nullptr, file);
        EXPECT_FALSE(file->WriteAt(0, "x", 1));
        EXPECT_NE(0, file->LastCause());
    }
    {
        auto file = Fs().Open(path, EFileOpen::CreateTruncate, EFileShare::ShareAll, cause);
        uint64_t length = 99;
        ASSERT_TRUE(file->GetLength(length));
        EXPECT_EQ(0u, length);
    }
}

TEST_P(FileSystemContract, DenyWriteExcludesASecondDenyWriteOpenUntilClosed)
{
    const std::u16string path = Root() + u"locked.ddb";
    int cause = 0;
    ASSERT_TRUE(WriteWholeFile(Fs(), path, "keep", cause));
    auto first = Fs().Open(path, EFileOpen::OpenExisting, EFileShare::DenyWrite, cause);
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(nullptr, Fs().Open(path, EFileOpen::OpenExisting, EFileShare::DenyWrite, cause));
    EXPECT_EQ(EWOULDBLOCK, cause);
    // A refused create-and-truncate must not have emptied the file its holder is using.
    EXPECT_EQ(nullptr, Fs().Open(path, EFileOpen::CreateTruncate, EFileShare::DenyWrite, cause));
    EXPECT_EQ("keep", Read(path));
    first.reset();
    EXPECT_NE(nullptr, Fs().Open(path, EFileOpen::OpenExisting, EFileShare::DenyWrite, cause));
}

TEST_P(FileSystemContract, RandomPositionedIoAgreesWithAStringModel)
{
    std::mt19937 random(GetParam() ? 1 : 2);
    int cause = 0;
    auto file = Fs().Open(Root() + u"model.bin", EFileOpen::CreateTruncate, EFileShare::DenyWrite, cause);
    ASSERT_NE(nullptr, file);
    std::string model;
    for (int step = 0; step < 400; ++step)
    {
        const uint64_t offset = random() % 5000;
        const size_t size = random() % 700;
        switch (random() % 3)
        {
        case 0:
        {
            std::string data(size, '\0');
            for (char& c : data)
                c = static_cast<char>(random());
            ASSERT_TRUE(file->WriteAt(offset, data.data(), size));
            if (model.size() < offset + size)
                model.resize(offset + size, '\0');
            model.replace(offset, size, data);
            break;
        }
        case 1:
        {
            std::string data(size, '\0');
            size_t done = 0;
            ASSERT_TRUE(file->ReadAt(offset, data.data(), size, done));
            const std::string expected = offset < model.size() ? model.substr(offset, size) : "";
            ASSERT_EQ(expected, data.substr(0, done));
            ASSERT_EQ(expected.size() == size, file->ReadExactAt(offset, data.data(), size));
            break;
        }
        default:
            ASSERT_TRUE(file->SetLength(offset));
            model.resize(offset, '\0');
            break;
        }
        uint64_t length = 0;
        ASSERT_TRUE(file->GetLength(length));
        ASSERT_EQ(model.size(), length);
    }
    ASSERT_TRUE(file->Flush());
}

TEST_P(FileSystemContract, FoldersListingRenameAndDelete)
{
    const std::u16string folder = Root() + u"a/b\u00E9/c";
    int cause = 0;
    ASSERT_TRUE(Fs().CreateFolder(folder, cause));
    ASSERT_TRUE(Fs().CreateFolder(folder + u"/", cause)); // existing is fine
    EXPECT_TRUE(Fs().IsFolder(Root() + u"a/b\u00E9"));
    EXPECT_TRUE(Fs().IsWritableFolder(folder));
    for (const char16_t* name : {u"German.LNG", u"french.lng", u"notes.txt", u"x.lngx", u"\u00C9t\u00E9.lng"})
        ASSERT_TRUE(WriteWholeFile(Fs(), folder + u"/" + name, "12345", cause));
    ASSERT_TRUE(Fs().CreateFolder(folder + u"/sub.lng", cause));

    const auto entries = Fs().ListFolder(folder, u"*.lng");
    EXPECT_EQ((std::vector<std::u16string>{u"German.LNG", u"french.lng", u"sub.lng", u"\u00C9t\u00E9.lng"}),
              Names(entries));
    EXPECT_EQ(5u, entries[0].size);
    EXPECT_TRUE(entries[2].isFolder);
    EXPECT_EQ(std::vector<std::u16string>{u"notes.txt"}, Names(Fs().ListFolder(folder, u"n?tes.*")));

    ASSERT_TRUE(Fs().Rename(folder + u"/notes.txt", folder + u"/renamed.txt", cause));
    EXPECT_FALSE(Fs().Exists(folder + u"/notes.txt"));
    EXPECT_EQ("12345", Read(folder + u"/renamed.txt"));
    EXPECT_FALSE(Fs().Rename(folder + u"/notes.txt", folder + u"/again.txt", cause));
    EXPECT_EQ(ENOENT, cause);
    ASSERT_TRUE(Fs().Delete(folder + u"/renamed.txt", cause));
    EXPECT_FALSE(Fs().Exists(folder + u"/renamed.txt"));
    EXPECT_FALSE(Fs().Delete(folder + u"/renamed.txt", cause));
    EXPECT_EQ(ENOENT, cause);
}

INSTANTIATE_TEST_SUITE_P(DiskAndMemory, FileSystemContract, ::testing::Values(true, false),
                         [](const auto& param) { return param.param ? "Disk" : "Memory"; });

TEST(MemFileSystem, FaultsStartAfterTheGivenCountAndStayUntilCleared)
{
    CMemFileSystem fs;
    int cause = 0;
    auto file = fs.Open(u"/x", EFileOpen::CreateTruncate, EFileShare::ShareAll, cause);
    fs.Faults().failWriteAfter = 2;
    fs.Faults().cause = ENOSPC;
    EXPECT_TRUE(file->WriteAt(0, "a", 1));
    EXPECT_TRUE(file->WriteAt(1, "b", 1));
    EXPECT_FALSE(file->WriteAt(2, "c", 1));
    EXPECT_EQ(ENOSPC, file->LastCause());
    EXPECT_FALSE(file->WriteAt(2, "c", 1));
    EXPECT_EQ("ab", fs.Bytes(u"/x"));
    fs.Faults().failWriteAfter = -1;
    EXPECT_TRUE(file->WriteAt(2, "c", 1));

    fs.Faults().failReadAfter = 0;
    fs.Faults().failSetLengthAfter = 0;
    fs.Faults().failFlushAfter = 0;
    char byte = 0;
    size_t done = 7;
    EXPECT_FALSE(file->ReadAt(0, &byte, 1, done));
    EXPECT_EQ(0u, done);
    EXPECT_FALSE(file->SetLength(0));
    EXPECT_FALSE(file->Flush());
    EXPECT_EQ("abc", fs.Bytes(u"/x"));
}

TEST(MemFileSystem, DenyWriteFollowsARenamedFileAndIsReleasedOnClose)
{
    CMemFileSystem fs;
    int cause = 0;
    auto file = fs.Open(u"/d/old", EFileOpen::CreateTruncate, EFileShare::DenyWrite, cause);
    ASSERT_TRUE(fs.Rename(u"/d/old", u"/d/new", cause));
    EXPECT_EQ(nullptr, fs.Open(u"/d/new", EFileOpen::OpenExisting, EFileShare::DenyWrite, cause));
    EXPECT_NE(nullptr, fs.Open(u"/d/new", EFileOpen::ReadOnly, EFileShare::ShareAll, cause));
    file.reset();
    EXPECT_NE(nullptr, fs.Open(u"/d/new", EFileOpen::OpenExisting, EFileShare::DenyWrite, cause));
}

TEST(FilePaths, JoinFolderAndName)
{
    EXPECT_EQ(u"/a/b", JoinPath(u"/a", u"b"));
    EXPECT_EQ(u"/a/b", JoinPath(u"/a/", u"b"));
    EXPECT_EQ(u"b", JoinPath(u"", u"b"));
    EXPECT_EQ(u"/a/", FolderOf(u"/a/b.ddb"));
    EXPECT_EQ(u"", FolderOf(u"b.ddb"));
    EXPECT_EQ(u"b.ddb", FileNameOf(u"/a/b.ddb"));
    EXPECT_EQ(u"b.ddb", FileNameOf(u"b.ddb"));
}

TEST(FilePaths, WildcardsMatchLikeTheFolderSearch)
{
    EXPECT_TRUE(MatchesFilePattern(u"Quillarium Documents - backup 24-03-05.ddb",
                                   u"Quillarium Documents - backup *.ddb"));
    EXPECT_TRUE(MatchesFilePattern(u"ABC", u"a?c"));
    EXPECT_TRUE(MatchesFilePattern(u"", u"*"));
    EXPECT_TRUE(MatchesFilePattern(u"aXbXc", u"*b*c"));
    EXPECT_FALSE(MatchesFilePattern(u"abc", u"a?"));
    EXPECT_FALSE(MatchesFilePattern(u"ab", u"a?c"));
    EXPECT_FALSE(MatchesFilePattern(u"\u00C9", u"\u00E9"));
    EXPECT_FALSE(MatchesFilePattern(u"a.lngx", u"*.lng"));
}
