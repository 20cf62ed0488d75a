#include "Shared/Config/ConfFileParser.h"

#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/TextConv.h"
#include "Shared/LanguagesMgr/CapturedLog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>

namespace
{
std::string Utf16File(std::u16string_view text, bool withMark = true)
{
    return (withMark ? std::string("\xFF\xFE") : std::string()) + TextToUtf16LeBytes(text);
}

CConfFileParser ParseBytes(const std::string& bytes)
{
    CConfFileParser parser;
    EXPECT_TRUE(parser.Parse(bytes.data(), bytes.size()));
    return parser;
}

std::vector<std::pair<std::u16string, std::u16string>> EntriesOf(const CConfFileParser& parser)
{
    std::vector<std::pair<std::u16string, std::u16string>> entries;
    for (const SConfigLineEntry& entry : parser.Entries())
        entries.emplace_back(entry.key, entry.value);
    return entries;
}

using Entries = std::vector<std::pair<std::u16string, std::u16string>>;
} // namespace

TEST(ConfFileParser, LineRulesDecideWhichLinesAreEntries)
{
    const std::u16string text = u"a=b\r\n"
                                u"ab=\r\n"
                                u"=ab\r\n"
                                u" a = b \r\n"
                                u"*x=1\r\n"
                                u"//x=1\r\n"
                                u"\u2F2Fy=2\r\n"
                                u"no equals sign\r\n"
                                u"k==v\r\n"
                                u"lf=one\ntwo\r\n"
                                u"x=\r\n"
                                u"last=line";
    const CConfFileParser parser = ParseBytes(Utf16File(text));
    EXPECT_EQ(EntriesOf(parser), (Entries{{u"a", u"b"},
                                          {u" a ", u" b "},
                                          {u"//x", u"1"},
                                          {u"k", u"=v"},
                                          {u"lf", u"one\ntwo"},
                                          {u"last", u"line"}}));
    EXPECT_TRUE(parser.IsLoaded());
}

TEST(ConfFileParser, FirstOccurrenceWinsAndSettersOnlyAppend)
{
    CMemFileSystem fs;
    fs.Bytes(u"/c.ini") = Utf16File(u"x=1\r\nx=2\r\n");
    CConfFileParser parser(&fs);
    ASSERT_TRUE(parser.Load(u"/c.ini"));
    parser.SetUInt(u"x", 3);
    std::u16string value;
    ASSERT_TRUE(parser.GetString(u"x", value));
    EXPECT_EQ(value, u"1");
    EXPECT_FALSE(parser.GetString(u"X", value)) << "keys are case-sensitive";
    ASSERT_TRUE(parser.Save());
    // Byte order mark, then every entry with CR LF, the last one included.
    EXPECT_EQ(fs.Bytes(u"/c.ini"), std::string("\xFF\xFE"
                                               "x\0=\0"
                                               "1\0\r\0\n\0"
                                               "x\0=\0"
                                               "2\0\r\0\n\0"
                                               "x\0=\0"
                                               "3\0\r\0\n\0",
                                               32));
}

TEST(ConfFileParser, ReadsUtf16WithoutMarkAndAnsiAsWindows1252)
{
    EXPECT_EQ(EntriesOf(ParseBytes(Utf16File(u"k=\u4E00\u00E9\r\n", false))),
              (Entries{{u"k", u"\u4E00\u00E9"}}));
    // 0xE9 is e-acute and 0x80 the euro sign in Windows-1252.
    EXPECT_EQ(EntriesOf(ParseBytes("name=caf\xE9 \x80\r\nb=2")),
              (Entries{{u"name", u"caf\u00E9 \u20AC"}, {u"b", u"2"}}));
    // A NUL ends the text as it would end the terminated buffer.
    EXPECT_EQ(EntriesOf(ParseBytes(Utf16File(std::u16string(u"a=1\r\nb=2\0c=3", 12)))),
              (Entries{{u"a", u"1"}, {u"b", u"2"}}));
}

TEST(ConfFileParser, ShortFilesWarnAndGiveNoEntries)
{
    CCapturedLog log;
    CMemFileSystem fs;
    fs.Bytes(u"/empty.ini") = "";
    fs.Bytes(u"/one.ini") = Utf16File(u"a");
    CConfFileParser parser(&fs);
    parser.SetString(u"stale", u"entry");
    EXPECT_TRUE(parser.Load(u"/empty.ini"));
    EXPECT_TRUE(parser.Entries().empty());
    EXPECT_TRUE(parser.Load(u"/one.ini"));
    EXPECT_TRUE(parser.Entries().empty());
    EXPECT_FALSE(parser.IsLoaded());
    EXPECT_EQ(log.Lines(),
              (std::vector<std::u16string>{
                  u"Warrning: Attempt to parse empty configuration file /empty.ini",
                  u"Warrning: File /one.ini contains less than 2 characters. Most propably attempt to "
                  u"read UNICODE file as ANSI file"}));
}

TEST(ConfFileParser, FileErrorsLogOneLineAndFail)
{
    CCapturedLog log;
    CMemFileSystem fs;
    CConfFileParser parser(&fs);
    EXPECT_FALSE(parser.Load(u"/missing.ini"));
    EXPECT_EQ(parser.Path(), u"/missing.ini");
    parser.SetBool(u"k", true);
    fs.Faults().failWriteAfter = 0;
    EXPECT_FALSE(parser.Save());
    const auto lines = log.Lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_TRUE(lines[0].starts_with(u"Error: Cannot read configuration file /missing.ini, cause - "));
    EXPECT_TRUE(lines[1].starts_with(u"Error: Cannot write configuration file /missing.ini, cause - "));
}

TEST(ConfFileParser, TypedGettersReadAsTheCLibraryDoes)
{
    const CConfFileParser parser = ParseBytes(Utf16File(u"int=  -12abc\r\n"
                                                        u"word=abc\r\n"
                                                        u"big=99999999999\r\n"
                                                        u"minus=-1\r\n"
                                                        u"umax=4294967295\r\n"
                                                        u"dbl= 2.5e3xyz\r\n"
                                                        u"t1=TrUe\r\n"
                                                        u"t2=1\r\n"
                                                        u"f1=yes\r\n"
                                                        u"f2=10\r\n"
                                                        u"list=1, 2,-3\r\n"
                                                        u"gap=1,,3\r\n"));
    int i = 7;
    EXPECT_TRUE(parser.GetInt(u"int", i));
    EXPECT_EQ(i, -12);
    EXPECT_TRUE(parser.GetInt(u"word", i));
    EXPECT_EQ(i, 0);
    EXPECT_TRUE(parser.GetInt(u"big", i));
    EXPECT_EQ(i, INT_MAX);
    i = 7;
    EXPECT_FALSE(parser.GetInt(u"none", i));
    EXPECT_EQ(i, 7) << "a missing key leaves the output alone";

    unsigned u = 0;
    EXPECT_TRUE(parser.GetUInt(u"minus", u));
    EXPECT_EQ(u, 0xFFFFFFFFu);
    EXPECT_TRUE(parser.GetUInt(u"umax", u));
    EXPECT_EQ(u, 4294967295u);

    double d = 0;
    EXPECT_TRUE(parser.GetDouble(u"dbl", d));
    EXPECT_DOUBLE_EQ(d, 2500.0);

    bool b = false;
    for (const char16_t* key : {u"t1", u"t2"})
    {
        b = false;
        EXPECT_TRUE(parser.GetBool(key, b));
        EXPECT_TRUE(b) << Utf16ToUtf8(key);
    }
    for (const char16_t* key : {u"f1", u"f2"})
    {
        b = true;
        EXPECT_TRUE(parser.GetBool(key, b));
        EXPECT_FALSE(b) << Utf16ToUtf8(key);
    }

    std::vector<int> list{42};
    EXPECT_FALSE(parser.GetIntList(u"list", 2, list));
    EXPECT_FALSE(parser.GetIntList(u"list", 4, list));
    EXPECT_EQ(list, std::vector<int>{42});
    EXPECT_TRUE(parser.GetIntList(u"list", 3, list));
    EXPECT_EQ(list, (std::vector<int>{1, 2, -3}));
    EXPECT_TRUE(parser.GetIntList(u"gap", 3, list));
    EXPECT_EQ(list, (std::vector<int>{1, 0, 3}));
}

TEST(ConfFileParser, SettersWriteTheDocumentedForms)
{
    CConfFileParser parser;
    parser.SetBool(u"t", true);
    parser.SetBool(u"f", false);
    parser.SetUInt(u"u", 4294967295u);
    parser.SetDouble(u"d", 1.5);
    const uint8_t bytes[] = {0xFB, 0xFF, 0x00, 0x41};
    parser.SetBinary(u"bin", bytes, sizeof bytes);
    parser.SetString(u"empty", u"");
    EXPECT_EQ(EntriesOf(parser), (Entries{{u"t", u"true"},
                                          {u"f", u"false"},
                                          {u"u", u"4294967295"},
                                          {u"d", u"1.500000"},
                                          {u"bin", u"+/8AQQ=="},
                                          {u"empty", u""}}));
    std::vector<uint8_t> decoded;
    ASSERT_TRUE(parser.GetBinary(u"bin", decoded));
    EXPECT_EQ(decoded, std::vector<uint8_t>(bytes, bytes + sizeof bytes));
    EXPECT_FALSE(parser.GetBinary(u"empty", decoded)) << "decodes to nothing";
    EXPECT_FALSE(parser.GetBinary(u"f", decoded)) << "not base-64";
    EXPECT_EQ(decoded, std::vector<uint8_t>(bytes, bytes + sizeof bytes));
}

TEST(ConfFileParser, RandomEntriesSurviveSaveAndLoad)
{
    std::mt19937 random(1234);
    const std::u16string alphabet = u"abcXYZ019 =*/.,;\t\u00E9\u20AC\u4E00\u2F2F\r\n";
    auto randomText = [&](size_t minLength)
    {
        std::u16string text;
        const size_t length = minLength + random() % 12;
        while (text.size() < length)
            text += alphabet[random() % alphabet.size()];
        return text;
    };
    for (int round = 0; round < 50; ++round)
    {
        CMemFileSystem fs;
        CConfFileParser writer(&fs);
        writer.SetPath(u"/r.ini");
        Entries model;
        for (int i = 0; i < 20; ++i)
        {
            std::u16string key = randomText(1);
            std::u16string value = randomText(1);
            writer.SetString(key, value);
            // The model: what a line "key=value" gives back after the file's own line rules.
            const std::u16string line = key + u"=" + value;
            if (line.find(u"\r\n") != std::u16string::npos || line[0] == u'*' || line[0] == u'\u2F2F')
                continue;
            const size_t equals = line.find(u'=', 1);
            if (line.size() >= 3 && equals + 1 < line.size())
                model.emplace_back(line.substr(0, equals), line.substr(equals + 1));
        }
        ASSERT_TRUE(writer.Save());
        CConfFileParser reader(&fs);
        ASSERT_TRUE(reader.Load(u"/r.ini"));
        // A line split by a CR LF inside a value adds its pieces; only compare the clean lines.
        Entries clean;
        for (const auto& entry : EntriesOf(reader))
            if (std::find(model.begin(), model.end(), entry) != model.end())
                clean.push_back(entry);
        EXPECT_EQ(clean, model) << "round " << round;
    }
}
