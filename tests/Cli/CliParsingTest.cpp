#include "Cli/CliCommand.h"

#include <gtest/gtest.h>

#include <sstream>

TEST(CliParsing, HelpUnknownCommandAndMissingCommand)
{
    std::istringstream in;
    std::ostringstream out, err;
    EXPECT_EQ(RunCli({"--help"}, in, out, err), CliSuccess);
    EXPECT_NE(out.str().find("Usage: quillarium-cli COMMAND"), std::string::npos);

    EXPECT_EQ(RunCli({"no-such-command"}, in, out, err), CliBadUsage);
    EXPECT_NE(err.str().find("unknown command 'no-such-command'"), std::string::npos);

    EXPECT_EQ(RunCli({}, in, out, err), CliBadUsage);
}

TEST(CliParsing, JsonEscapeQuotesBackslashesAndControls)
{
    EXPECT_EQ(JsonEscape("a\"b\\c\n\x01"), "a\\\"b\\\\c\\u000a\\u0001");
    EXPECT_EQ(JsonEscape("caf\xC3\xA9"), "caf\xC3\xA9"); // UTF-8 passes unchanged
}
