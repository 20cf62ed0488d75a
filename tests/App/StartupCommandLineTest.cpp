// The command-line text and the running-copy question: how argv becomes one text, and the
// exact bytes of the question and the answering rule.
#include "App/CommandLine.h"
#include "App/RunningInstance.h"

#include <gtest/gtest.h>

TEST(StartupCommandLine, ArgumentsAfterTheProgramAreJoinedWithSingleBlanks)
{
    const char* const none[] = {"/opt/quill/quillarium"};
    EXPECT_EQ(CommandLineText(1, none), u"");
    const char* const split[] = {"quillarium", "/home/u/My", "Notes.ddb"};
    EXPECT_EQ(CommandLineText(3, split), u"/home/u/My Notes.ddb");
    EXPECT_TRUE(CommandLineNamesDataFile(CommandLineText(3, split)));
    const char* const flagged[] = {"quillarium", "-autostartup"};
    EXPECT_EQ(CommandLineText(2, flagged), u"-autostartup");
    const char* const utf8[] = {"quillarium", "/d/\xc3\xa4  b.ddb"};
    EXPECT_EQ(CommandLineText(2, utf8), u"/d/\u00e4  b.ddb");
}

TEST(StartupCommandLine, DataFileAndAutoStartupRules)
{
    EXPECT_FALSE(CommandLineNamesDataFile(u""));
    EXPECT_FALSE(CommandLineNamesDataFile(u".ddb"));
    EXPECT_FALSE(CommandLineNamesDataFile(u".DDB"));
    EXPECT_TRUE(CommandLineNamesDataFile(u"a.ddb"));
    EXPECT_TRUE(CommandLineNamesDataFile(u"x.DDB"));
    EXPECT_FALSE(CommandLineNamesDataFile(u"x.ddb "));
    EXPECT_FALSE(CommandLineNamesDataFile(u"x.ddbx"));
    EXPECT_FALSE(CommandLineNamesDataFile(u"x_ddb"));
    EXPECT_FALSE(CommandLineNamesDataFile(u"x.d\u00c4b"));

    EXPECT_TRUE(CommandLineHasAutoStartup(u"-autostartup"));
    EXPECT_TRUE(CommandLineHasAutoStartup(u"/d/x.ddb -autostartup"));
    EXPECT_TRUE(CommandLineHasAutoStartup(u"x--autostartupx"));
    EXPECT_FALSE(CommandLineHasAutoStartup(u"-AutoStartup"));
    EXPECT_FALSE(CommandLineHasAutoStartup(u"-autostart"));
}

TEST(StartupRunningInstance, PayloadIsUtf16LeWithTerminatingZero)
{
    const std::string bytes = EncodeRunningInstancePayload(u"C:\\\u00e4\u20ac");
    EXPECT_EQ(bytes, std::string("C\0:\0\\\0\xe4\0\xac\x20\0\0", 12));
    EXPECT_EQ(EncodeRunningInstancePayload(u""), std::string("\0\0", 2));

    std::u16string path;
    ASSERT_TRUE(DecodeRunningInstancePayload(bytes, path));
    EXPECT_EQ(path, u"C:\\\u00e4\u20ac");
    EXPECT_FALSE(DecodeRunningInstancePayload("", path));
    EXPECT_FALSE(DecodeRunningInstancePayload(std::string("a\0\0", 3), path));  // odd size
    EXPECT_FALSE(DecodeRunningInstancePayload(std::string("a\0b\0", 4), path)); // no terminator
    EXPECT_FALSE(DecodeRunningInstancePayload(std::string("a\0\0b", 4), path)); // half a terminator
    // The sender's string ends at its first zero; what follows is not part of the path.
    ASSERT_TRUE(DecodeRunningInstancePayload(std::string("a\0\0\0b\0\0\0", 8), path));
    EXPECT_EQ(path, u"a");
}

TEST(StartupRunningInstance, OnlyTheExactOpenPathUnderTheQuestionKindIsAnsweredWithOne)
{
    const std::u16string open = u"C:\\A.ddb";
    EXPECT_EQ(AnswerRunningInstanceQuery(3443, EncodeRunningInstancePayload(open), open), 1);
    EXPECT_EQ(AnswerRunningInstanceQuery(3443, EncodeRunningInstancePayload(u"c:\\a.ddb"), open), 0);
    EXPECT_EQ(AnswerRunningInstanceQuery(4299, EncodeRunningInstancePayload(open), open), 0);
    EXPECT_EQ(AnswerRunningInstanceQuery(3443, EncodeRunningInstancePayload(u""), u""), 0);
    std::string unterminated = EncodeRunningInstancePayload(open);
    unterminated.resize(unterminated.size() - 2);
    EXPECT_EQ(AnswerRunningInstanceQuery(3443, unterminated, open), 0);
    EXPECT_EQ(AnswerRunningInstanceQuery(3443, EncodeRunningInstancePayload(open) + std::string("x\0\0\0", 4),
                                         open),
              1);
}
