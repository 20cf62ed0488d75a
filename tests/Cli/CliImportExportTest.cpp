// quillarium-cli import and export on real files: a folder of text, RTF and .knt files comes in
// with its structure, a malformed file imports nothing, and notes and folders go out as RTF,
// HTML and text files, or as HTML files with an index.
#include "Cli/CliCommand.h"
#include "Support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
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

std::string ReadFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void WriteFile(const std::string& path, std::string_view bytes)
{
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

class CliImportExport : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(Cli({"new", file}).status, CliSuccess); }
    CTempFolder temp;
    std::string file = temp.Path() + "/Data.ddb";
};

TEST_F(CliImportExport, FolderOfFilesKeepsItsStructure)
{
    const std::string in = temp.Path() + "/in/Trip";
    WriteFile(in + "/packing.txt", std::string("\xFF\xFEs\0o\0c\0k\0s\0", 12)); // UTF-16 with its mark
    WriteFile(in + "/days/monday.rtf", "{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}{\\b Museum} at ten\\par}");
    WriteFile(in + "/days/notes.md", "caf\xC3\xA9");
    WriteFile(in + "/photo.bin", "skipped inside folders");
    const SRun imported =
        Cli({"import", file, "\\Notes", in, std::string(QUILL_SAMPLES_DIR) + "/knt/ej.knt"});
    ASSERT_EQ(imported.status, CliSuccess) << imported.err;
    EXPECT_EQ(std::count(imported.out.begin(), imported.out.end(), '\n'), 2); // Trip and ej.knt's folder

    const SRun tree = Cli({"tree", file});
    EXPECT_NE(tree.out.find("Trip\n"), std::string::npos) << tree.out;
    EXPECT_EQ(Cli({"cat", file, "\\Notes\\Trip\\packing"}).out, "socks\n");
    EXPECT_EQ(Cli({"cat", file, "\\Notes\\Trip\\days\\notes"}).out, "caf\xC3\xA9\n");
    EXPECT_EQ(Cli({"cat", file, "\\Notes\\Trip\\days\\monday"}).out, "Museum at ten\n");
    EXPECT_NE(Cli({"cat", file, "\\Notes\\Trip\\days\\monday", "--format", "rtf"}).out.find("\\b\\cpg1252"),
              std::string::npos);
    EXPECT_EQ(tree.out.find("photo"), std::string::npos);
    EXPECT_EQ(Cli({"check", file}).status, CliSuccess);
}

TEST_F(CliImportExport, AMalformedFileImportsNothing)
{
    const std::string before = Cli({"tree", file}).out;
    WriteFile(temp.Path() + "/good.txt", "fine");
    WriteFile(temp.Path() + "/bad.rtf", "{\\rtf1 never closed");
    WriteFile(temp.Path() + "/bad.knt", "#!GFKNT 2.0\n%+\nNN=x\n%-\nLV=zz\n%%\n");
    for (const char* bad : {"/bad.rtf", "/bad.knt", "/missing.txt"})
    {
        const SRun run = Cli({"import", file, "\\Notes", temp.Path() + "/good.txt", temp.Path() + bad});
        EXPECT_EQ(run.status, CliFailure) << bad;
        EXPECT_NE(run.err.find("nothing imported"), std::string::npos) << bad;
    }
    EXPECT_EQ(Cli({"tree", file}).out, before);
    EXPECT_EQ(Cli({"import", file, "\\Notes\\Welcome", temp.Path() + "/good.txt"}).status, CliFailure);
    EXPECT_EQ(Cli({"import", file, "\\Notes"}).status, CliBadUsage);
}

TEST_F(CliImportExport, NotesFoldersAndTheTreeGoOutInEachFormat)
{
    const std::string text = temp.Path() + "/t.txt";
    WriteFile(text, "first <line>\nsecond");
    ASSERT_EQ(Cli({"add-folder", file, "\\Notes", "Trip"}).status, CliSuccess);
    ASSERT_EQ(Cli({"add-note", file, "\\Notes\\Trip", "Plan", "--text", text}).status, CliSuccess);

    const std::string out = temp.Path() + "/out";
    std::filesystem::create_directories(out);
    ASSERT_EQ(Cli({"export", file, "\\Notes\\Trip\\Plan", out + "/plan.rtf"}).status, CliSuccess);
    EXPECT_TRUE(ReadFile(out + "/plan.rtf").starts_with("{\\rtf1\\ansi\\ansicpg1252\\deff0\r\n"));
    ASSERT_EQ(Cli({"export", file, "\\Notes\\Trip\\Plan", out + "/plan.htm"}).status, CliSuccess);
    EXPECT_NE(ReadFile(out + "/plan.htm").find("<title>Plan</title>"), std::string::npos);
    ASSERT_EQ(Cli({"export", file, "\\Notes\\Trip\\Plan", out + "/plan.out", "--format", "txt"}).status,
              CliSuccess);
    EXPECT_EQ(ReadFile(out + "/plan.out"), "first <line>\r\nsecond");
    ASSERT_EQ(Cli({"export", file, "\\Notes\\Trip", out + "/trip.txt"}).status, CliSuccess);
    EXPECT_TRUE(ReadFile(out + "/trip.txt").starts_with("--- [Folder] Trip --- Path: \\"));
    ASSERT_EQ(Cli({"export", file, "\\", out + "/all.txt"}).status, CliSuccess);
    EXPECT_NE(ReadFile(out + "/all.txt").find("--- [Note] Plan --- Path: "), std::string::npos);

    const SRun site = Cli({"export", file, "\\Notes", out + "/site", "--format", "html", "--per-note"});
    ASSERT_EQ(site.status, CliSuccess) << site.err;
    EXPECT_NE(ReadFile(out + "/site/index.html").find("<a href=\"Trip/Plan.html\">Plan</a>"),
              std::string::npos);
    EXPECT_NE(ReadFile(out + "/site/Trip/Plan.html").find("second"), std::string::npos);

    EXPECT_EQ(Cli({"export", file, "\\Notes", out + "/x", "--format", "txt", "--per-note"}).status,
              CliBadUsage);
    EXPECT_EQ(Cli({"export", file, "\\Notes", out + "/x", "--format", "pdf"}).status, CliBadUsage);
    EXPECT_EQ(Cli({"export", file, "\\Notes\\Trip\\Plan", out + "/none/dir/x.txt"}).status, CliFailure);
}
} // namespace
