// quillarium-cli end to end on real files: create, add, list, read back, edit, and check a
// corrupted copy.
#include "Cli/CliCommand.h"
#include "Support/TempFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace
{
struct SRun
{
    int status;
    std::string out;
    std::string err;
};

SRun Cli(const std::vector<std::string>& words)
{
    std::istringstream in;
    std::ostringstream out, err;
    const int status = RunCli(words, in, out, err);
    return {status, out.str(), err.str()};
}

std::string Trimmed(std::string text)
{
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.pop_back();
    return text;
}

class CliDocument : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(Cli({"new", file}).status, CliSuccess); }
    CTempFolder temp;
    std::string file = temp.Path() + "/My Data.ddb";
};

TEST_F(CliDocument, CreateAddListAndRead)
{
    const SRun folder = Cli({"add-folder", file, "\\Notes", "Projects \xC3\xA4"});
    ASSERT_EQ(folder.status, CliSuccess) << folder.err;
    const std::string textFile = temp.Path() + "/text.txt";
    std::ofstream(textFile) << "line one\nline two";
    const SRun note = Cli({"add-note", file, Trimmed(folder.out), "Plan", "--text", textFile});
    ASSERT_EQ(note.status, CliSuccess) << note.err;

    const SRun tree = Cli({"tree", file});
    ASSERT_EQ(tree.status, CliSuccess);
    EXPECT_NE(tree.out.find("  folder 2 Notes\n"), std::string::npos) << tree.out;
    EXPECT_NE(tree.out.find("    folder " + Trimmed(folder.out) + " Projects \xC3\xA4\n"), std::string::npos);
    EXPECT_NE(tree.out.find("      note   " + Trimmed(note.out) + " Plan\n"), std::string::npos);
    EXPECT_NE(tree.out.find("  folder A Recycle Bin\n"), std::string::npos);

    EXPECT_EQ(Cli({"cat", file, "\\Notes\\Projects \xC3\xA4\\Plan"}).out, "line one\r\nline two\n");
    EXPECT_EQ(Cli({"cat", file, Trimmed(note.out), "--json"}).out,
              "{\"caption\":\"Plan\",\"format\":\"txt\",\"text\":\"line one\\u000d\\u000aline two\"}\n");
    const SRun html = Cli({"cat", file, Trimmed(note.out), "--format", "html"});
    EXPECT_NE(html.out.find("two</span>"), std::string::npos);
    EXPECT_EQ(Cli({"cat", file, Trimmed(note.out), "--format", "doc"}).status, CliBadUsage);

    const SRun info = Cli({"info", file, "--json"});
    EXPECT_NE(info.out.find("\"notes\":4,\"folders\":10"), std::string::npos) << info.out;
    EXPECT_EQ(Cli({"check", file}).out, "ok\n");
}

TEST_F(CliDocument, RenameMoveAndRemove)
{
    ASSERT_EQ(Cli({"add-folder", file, "\\Ideas", "Box"}).status, CliSuccess);
    ASSERT_EQ(Cli({"add-note", file, "\\Ideas\\Box", "Thought"}).status, CliSuccess);
    ASSERT_EQ(Cli({"rename", file, "\\Ideas\\Box", "Crate"}).status, CliSuccess);
    ASSERT_EQ(Cli({"move", file, "\\Ideas\\Crate", "\\Journal"}).status, CliSuccess);
    EXPECT_EQ(Cli({"cat", file, "\\Journal\\Crate\\Thought"}).status, CliSuccess);
    EXPECT_EQ(Cli({"cat", file, "\\Ideas\\Box\\Thought"}).status, CliFailure);

    const SRun refused = Cli({"rm", file, "\\Recycle Bin"});
    EXPECT_EQ(refused.status, CliFailure);
    EXPECT_NE(refused.err.find("Default folders cannot be deleted."), std::string::npos);
    ASSERT_EQ(Cli({"rm", file, "\\Journal\\Crate"}).status, CliSuccess);
    EXPECT_EQ(Cli({"tree", file}).out.find("Crate"), std::string::npos);
    EXPECT_EQ(Cli({"check", file}).status, CliSuccess);
}

TEST_F(CliDocument, FailuresAndUsage)
{
    const SRun missing = Cli({"tree", temp.Path() + "/none.ddb"});
    EXPECT_EQ(missing.status, CliFailure);
    EXPECT_NE(missing.err.find("does not exist"), std::string::npos) << missing.err;
    EXPECT_EQ(Cli({"tree"}).status, CliBadUsage);
    EXPECT_EQ(Cli({"add-note", file, "\\Notes"}).status, CliBadUsage);
    EXPECT_EQ(Cli({"add-folder", file, "\\Nowhere", "x"}).status, CliFailure);
    EXPECT_EQ(Cli({"add-folder", file, "\\Notes\\Welcome", "x"}).status, CliFailure); // a note
    EXPECT_EQ(Cli({"defrag", file, "--quick", "soon"}).status, CliBadUsage);
    EXPECT_EQ(Cli({"defrag", file, "--quick", "50"}).status, CliSuccess);
}

TEST_F(CliDocument, BackupWritesADatedCopyThatOpens)
{
    const SRun backup = Cli({"backup", file, "--to", temp.Path() + "/backups"});
    ASSERT_EQ(backup.status, CliSuccess) << backup.err;
    EXPECT_NE(backup.out.find("/backups/My Data - backup "), std::string::npos);
    EXPECT_EQ(Cli({"check", Trimmed(backup.out)}).status, CliSuccess);
}

TEST_F(CliDocument, CheckReportsACorruptedCopy)
{
    std::string bytes;
    {
        std::ifstream in(file, std::ios::binary);
        bytes.assign(std::istreambuf_iterator<char>(in), {});
    }
    ASSERT_GT(bytes.size(), 3000u);
    // Damage the record area: one byte in every 97 after the container header.
    for (size_t i = 1500; i < bytes.size(); i += 97)
        bytes[i] = static_cast<char>(bytes[i] ^ 0x5A);
    const std::string copy = temp.Path() + "/copy.ddb";
    std::ofstream(copy, std::ios::binary) << bytes;

    const SRun check = Cli({"check", copy, "--json"});
    EXPECT_EQ(check.status, CliFailure);
    EXPECT_NE(check.out.find("\"ok\":false"), std::string::npos) << check.out;
    EXPECT_EQ(Cli({"check", file}).status, CliSuccess); // the original is untouched
}
} // namespace
