// quillarium-cli and the file password: setting, changing and removing it with passwd, and every
// command refusing a protected file unless the right password comes from stdin or a file.
#include "Cli/CliCommand.h"
#include "Document/DataCenter.h"
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

class CliPassword : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(Cli({"new", file}).status, CliSuccess); }

    SRun Cli(const std::vector<std::string>& words, const std::string& input = {})
    {
        std::istringstream in(input);
        std::ostringstream out, err;
        const int status = RunCli(words, in, out, err);
        return {status, out.str(), err.str()};
    }
    // Whether `tree` opens the file when `input` is typed on stdin.
    bool Opens(const std::string& input) { return Cli({"tree", file}, input).status == CliSuccess; }

    CTempFolder temp;
    std::string file = temp.Path() + "/locked.ddb";
};

TEST_F(CliPassword, SetChangeAndRemove)
{
    EXPECT_TRUE(Opens("")) << "an unprotected file reads no password";

    const SRun set = Cli({"passwd", file}, "s\xC3\xA9same\ns\xC3\xA9same\n");
    ASSERT_EQ(set.status, CliSuccess) << set.err;
    EXPECT_EQ(set.out, "password set\n");

    // The stored hash is the one the program checks, over the UTF-16 text of the password.
    {
        CDataCenter center;
        ASSERT_TRUE(center.OpenDocument(temp.File16("locked.ddb")));
        EXPECT_TRUE(center.GetRecords().IsPasswordSet());
        EXPECT_TRUE(center.GetRecords().CheckPassword(u"s\u00E9same"));
        EXPECT_FALSE(center.GetRecords().CheckPassword(u"sesame"));
    }

    const SRun wrong = Cli({"tree", file}, "sesame\n");
    EXPECT_EQ(wrong.status, CliFailure);
    EXPECT_NE(wrong.err.find("wrong password"), std::string::npos) << wrong.err;
    EXPECT_TRUE(wrong.out.empty());
    EXPECT_FALSE(Opens("")) << "an empty password must not pass";
    EXPECT_FALSE(Opens("\n"));
    EXPECT_TRUE(Opens("s\xC3\xA9same\r\n")) << "a line typed with CR LF";

    const SRun change = Cli({"passwd", file, "--json"}, "s\xC3\xA9same\nnew one\nnew one\n");
    ASSERT_EQ(change.status, CliSuccess) << change.err;
    EXPECT_EQ(change.out, "{\"password\":true}\n");
    EXPECT_FALSE(Opens("s\xC3\xA9same\n"));
    EXPECT_TRUE(Opens("new one\n"));

    const SRun remove = Cli({"passwd", file}, "new one\n\n\n");
    ASSERT_EQ(remove.status, CliSuccess) << remove.err;
    EXPECT_EQ(remove.out, "password removed\n");
    EXPECT_TRUE(Opens(""));
    CDataCenter center;
    ASSERT_TRUE(center.OpenDocument(temp.File16("locked.ddb")));
    EXPECT_FALSE(center.GetRecords().IsPasswordSet()) << "removing deletes the password record";
}

TEST_F(CliPassword, RefusedChangesLeaveThePasswordAsItWas)
{
    ASSERT_EQ(Cli({"passwd", file}, "alpha\nalpha\n").status, CliSuccess);

    const SRun mismatch = Cli({"passwd", file}, "alpha\nbeta\nbeta2\n");
    EXPECT_EQ(mismatch.status, CliFailure);
    EXPECT_NE(mismatch.err.find("differ"), std::string::npos);
    EXPECT_EQ(Cli({"passwd", file}, "wrong\nbeta\nbeta\n").status, CliFailure);
    EXPECT_EQ(Cli({"passwd", file}, "").status, CliFailure) << "no old password typed";
    EXPECT_TRUE(Opens("alpha\n"));
    EXPECT_FALSE(Opens("beta\n"));

    // Commands that change the file are refused as well and change nothing.
    EXPECT_EQ(Cli({"add-folder", file, "\\Notes", "Secret"}, "beta\n").status, CliFailure);
    const SRun tree = Cli({"tree", file}, "alpha\n");
    EXPECT_EQ(tree.out.find("Secret"), std::string::npos) << tree.out;
}

TEST_F(CliPassword, PasswordFromFile)
{
    ASSERT_EQ(Cli({"passwd", file}, "alpha\nalpha\n").status, CliSuccess);
    const std::string right = temp.Path() + "/right.txt", wrong = temp.Path() + "/wrong.txt";
    std::ofstream(right) << "alpha\nignored second line";
    std::ofstream(wrong) << "alph";

    const SRun byFile = Cli({"add-folder", file, "\\Notes", "Kept", "--password-file", right}, "not read\n");
    EXPECT_EQ(byFile.status, CliSuccess) << byFile.err;
    EXPECT_NE(Cli({"tree", file, "--password-file", right}).out.find("Kept"), std::string::npos);
    EXPECT_EQ(Cli({"tree", file, "--password-file", wrong}, "alpha\n").status, CliFailure);
    const SRun missing = Cli({"tree", file, "--password-file", temp.Path() + "/none.txt"});
    EXPECT_EQ(missing.status, CliFailure);
    EXPECT_NE(missing.err.find("cannot read the password file"), std::string::npos);
    EXPECT_EQ(Cli({"tree", file, "--password-file"}).status, CliBadUsage);

    // passwd takes the old password from the file and the new ones from stdin.
    ASSERT_EQ(Cli({"passwd", file, "--password-file", right}, "gamma\ngamma\n").status, CliSuccess);
    EXPECT_TRUE(Opens("gamma\n"));
}
} // namespace
