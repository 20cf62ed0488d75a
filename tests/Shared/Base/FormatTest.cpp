#include "Shared/Base/Format.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <string>

namespace
{
std::u16string Widen(const std::string& ascii)
{
    return std::u16string(ascii.begin(), ascii.end());
}

std::string RandomFlags(std::mt19937& random)
{
    std::string flags;
    for (char flag : std::string("-0+ #"))
        if (random() % 4 == 0)
            flags += flag;
    return flags;
}

std::string RandomWidthAndPrecision(std::mt19937& random)
{
    std::string spec;
    if (random() % 2)
        spec += std::to_string(random() % 14);
    if (random() % 2)
        spec += "." + std::to_string(random() % 12);
    return spec;
}
} // namespace

TEST(Format, ConversionsUsedByTheSystemsTexts)
{
    EXPECT_EQ(u"0000000042", FormatText(u"%010d", 42));
    EXPECT_EQ(u"-000000042", FormatText(u"%010d", -42));
    EXPECT_EQ(u"42   |", FormatText(u"%-5d|", 42));
    EXPECT_EQ(u"+5 ff FF 0xff", FormatText(u"%+d %x %X %#x", 5, 255, 255, 255));
    EXPECT_EQ(u"34 FF", FormatText(u"%hhX %hhX", 0x1234, -1));
    EXPECT_EQ(u"4294967295 18446744073709551615", FormatText(u"%u %llu", -1, -1ll));
    EXPECT_EQ(u"1 4294967297", FormatText(u"%d %I64d", 0x100000001ll, 0x100000001ll));
    EXPECT_EQ(u"3.142 1.500000 -0003.50", FormatText(u"%.3f %f %08.2f", 3.14159, 1.5, -3.5));
    EXPECT_EQ(u"\u00E9t\u00E9 | caf\u00E9", FormatText(u"%s | %s", "\xC3\xA9t\xC3\xA9", u"caf\u00E9"));
    EXPECT_EQ(u"   ab|ab   |ab", FormatText(u"%5s|%-5S|%.2s", u"ab", "ab", std::u16string(u"abc")));
    EXPECT_EQ(u"A 100% ", FormatText(u"%c %d%% ", u'A', 100));
    EXPECT_EQ(u"|  007", FormatText(u"|%.0d%5.3d", 0, 7));
    EXPECT_EQ(u"(null)", FormatText(u"%s", static_cast<const char16_t*>(nullptr)));
}

TEST(Format, IntegersMatchTheCLibraryForRandomSpecs)
{
    std::mt19937 random(3);
    const std::string conversions = "diuxXo";
    for (int i = 0; i < 5000; ++i)
    {
        const std::string spec = "%" + RandomFlags(random) + RandomWidthAndPrecision(random);
        const char conversion = conversions[random() % conversions.size()];
        const int value = static_cast<int>(random()) >> (random() % 31);
        const long long wide = (static_cast<long long>(random()) << 32 | random()) >> (random() % 63);
        char expected[128];
        std::snprintf(expected, sizeof(expected), (spec + conversion).c_str(), value);
        ASSERT_EQ(Widen(expected), FormatText(Widen(spec + conversion), value)) << spec + conversion;
        std::snprintf(expected, sizeof(expected), (spec + "ll" + conversion).c_str(), wide);
        ASSERT_EQ(Widen(expected), FormatText(Widen(spec + "ll" + conversion), wide)) << spec << conversion;
        std::snprintf(expected, sizeof(expected), (spec + "hh" + conversion).c_str(), value);
        ASSERT_EQ(Widen(expected), FormatText(Widen(spec + "hh" + conversion), value)) << spec << conversion;
        std::snprintf(expected, sizeof(expected), (spec + "h" + conversion).c_str(), value);
        ASSERT_EQ(Widen(expected), FormatText(Widen(spec + "h" + conversion), value)) << spec << conversion;
    }
}

TEST(Format, DoublesMatchTheCLibraryForRandomSpecs)
{
    std::mt19937 random(5);
    const std::string conversions = "feEgG";
    const double specials[] = {0.0, -0.0, 1e300, -1e-300, 0.5, 2.5, 1.0 / 0.0, -1.0 / 0.0};
    for (int i = 0; i < 3000; ++i)
    {
        const std::string spec = "%" + RandomFlags(random) + RandomWidthAndPrecision(random) +
                                 conversions[random() % conversions.size()];
        const double value = i % 10 == 0
                                 ? specials[(i / 10) % 8]
                                 : std::ldexp(static_cast<double>(random()) - 2e9, int(random() % 80) - 40);
        char expected[512];
        std::snprintf(expected, sizeof(expected), spec.c_str(), value);
        ASSERT_EQ(Widen(expected), FormatText(Widen(spec), value)) << spec;
    }
}

TEST(Format, WrongOrMissingArgumentsFailAndKeepTheTextSoFar)
{
    std::u16string out;
    const CFormatArg one[] = {CFormatArg(1)};
    EXPECT_FALSE(TryFormatText(out, u"a %d b %d", one));
    EXPECT_EQ(u"a 1 b ", out);
    const CFormatArg text[] = {CFormatArg(u"x")};
    EXPECT_FALSE(TryFormatText(out, u"%d", text));
    EXPECT_FALSE(TryFormatText(out, u"%f", one));
    EXPECT_FALSE(TryFormatText(out, u"%s", one));
    EXPECT_TRUE(TryFormatText(out, u"%s", text));
    EXPECT_EQ(u"x", out);
}

TEST(Format, NonConversionsPassThroughAndOutputIsBounded)
{
    EXPECT_EQ(u"%k 50%", FormatText(u"%k 50%"));
    std::u16string out;
    EXPECT_TRUE(TryFormatText(out, u"abcdefgh", {}, 5));
    EXPECT_EQ(u"abcde", out);
    const CFormatArg value[] = {CFormatArg(7)};
    EXPECT_TRUE(TryFormatText(out, u"%999999999999d", value, 10));
    EXPECT_EQ(u"          ", out);
    EXPECT_TRUE(TryFormatText(out, u"%.999999999999d", value, 4));
    EXPECT_EQ(u"0000", out);
}
