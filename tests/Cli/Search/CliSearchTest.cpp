// quillarium-cli search on a document written by the data center: text and JSON output, the
// query options, and the failures a user meets (missing arguments, a file that is not there).
#include "Cli/CliCommand.h"
#include "Document/DBFolder.h"
#include "Document/DataCenter.h"
#include "Support/TempFolder.h"

#include <gtest/gtest.h>

#include <sstream>

namespace
{
class CliSearchTest : public ::testing::Test
{
protected:
    CliSearchTest()
    {
        CDataCenter document;
        EXPECT_TRUE(document.CreateDocument(path16));
        CFolderBase& root = *document.GetRoot();
        CDBFolder* trips = document.AddFolder(root, u"Trips \u00e9t\u00e9");
        document.AddNote(*trips, u"Oslo", u"Ferry at nine\r\nRED house");
        document.AddNote(*trips, u"Red tape", u"visa forms");
        document.AddNote(root, u"Groceries", u"bread, red wine, \"cheese\"");
        document.CloseDocument();
    }

    int Run(std::vector<std::string> words)
    {
        out.str({});
        err.str({});
        std::istringstream in;
        return RunCli(words, in, out, err);
    }

    CTempFolder temp;
    std::u16string path16 = temp.File16("cli.ddb");
    std::string path = temp.Path() + "/cli.ddb";
    std::ostringstream out;
    std::ostringstream err;
};
} // namespace

TEST_F(CliSearchTest, PrintsKindAndPathOfEveryHit)
{
    ASSERT_EQ(Run({"search", path, "red"}), CliSuccess) << err.str();
    EXPECT_EQ(out.str(), "note\t\\Trips \xc3\xa9t\xc3\xa9\\Oslo\n"
                         "note\t\\Trips \xc3\xa9t\xc3\xa9\\Red tape\n"
                         "note\t\\Groceries\n");
    ASSERT_EQ(Run({"search", path, "red", "--case"}), CliSuccess);
    EXPECT_EQ(out.str(), "note\t\\Groceries\n");
    // In boolean mode a note found by its caption alone is not listed; folders still are.
    ASSERT_EQ(Run({"search", path, "+red -wine", "--boolean"}), CliSuccess);
    EXPECT_EQ(out.str(), "note\t\\Trips \xc3\xa9t\xc3\xa9\\Oslo\n");
    ASSERT_EQ(Run({"search", path, "t\xc3\xa9", "--whole-words"}), CliSuccess);
    EXPECT_EQ(out.str(), "folder\t\\Trips \xc3\xa9t\xc3\xa9\n");
    ASSERT_EQ(Run({"search", path, "nothing like this"}), CliSuccess);
    EXPECT_EQ(out.str(), "");
}

TEST_F(CliSearchTest, JsonListsHitsWithEscapedText)
{
    ASSERT_EQ(Run({"search", path, "cheese", "--json"}), CliSuccess) << err.str();
    EXPECT_EQ(out.str(), "{\"count\":1,\"hits\":[{\"kind\":\"note\",\"path\":\"\\\\Groceries\","
                         "\"caption\":\"Groceries\",\"resultKind\":2}]}\n");
    ASSERT_EQ(Run({"search", path, "zzz", "--json"}), CliSuccess);
    EXPECT_EQ(out.str(), "{\"count\":0,\"hits\":[]}\n");
}

TEST_F(CliSearchTest, RefusesBadArgumentsAndMissingFiles)
{
    EXPECT_EQ(Run({"search", path}), CliBadUsage);
    EXPECT_EQ(Run({"search", path, "a", "b"}), CliBadUsage);
    EXPECT_EQ(Run({"search", temp.Path() + "/missing.ddb", "red"}), CliFailure);
    EXPECT_NE(err.str().find("missing.ddb"), std::string::npos);
    EXPECT_EQ(out.str(), "");
}
