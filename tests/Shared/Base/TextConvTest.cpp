#include "Shared/Base/TextConv.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>

TEST(TextConv, Utf8RoundTripsEveryPlane)
{
    std::mt19937 random(11);
    for (int round = 0; round < 200; ++round)
    {
        std::u16string text;
        for (int i = 0; i < 40; ++i)
        {
            char32_t cp = random() % 0x110000;
            if (cp >= 0xD800 && cp <= 0xDFFF)
                cp = 0x41;
            if (cp < 0x10000)
                text.push_back(static_cast<char16_t>(cp));
            else
            {
                text.push_back(static_cast<char16_t>(0xD800 + ((cp - 0x10000) >> 10)));
                text.push_back(static_cast<char16_t>(0xDC00 + ((cp - 0x10000) & 0x3FF)));
            }
        }
        ASSERT_EQ(text, Utf8ToUtf16(Utf16ToUtf8(text)));
    }
    EXPECT_EQ("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", Utf16ToUtf8(u"\u00E9\u20AC\U0001F600"));
}

TEST(TextConv, MalformedUtf8AndLoneSurrogatesBecomeReplacementCharacters)
{
    EXPECT_EQ(u"\uFFFD\uFFFD", Utf8ToUtf16("\xC0\x80"));           // overlong NUL
    EXPECT_EQ(u"\uFFFD\uFFFD\uFFFD", Utf8ToUtf16("\xED\xA0\x80")); // encoded surrogate
    EXPECT_EQ(u"a\uFFFD\uFFFD", Utf8ToUtf16("a\xE2\x82"));         // cut short
    EXPECT_EQ(u"\uFFFDb", Utf8ToUtf16("\xF8"
                                      "b"));
    EXPECT_EQ(u"\uFFFD\uFFFD\uFFFD\uFFFD", Utf8ToUtf16("\xF4\x90\x80\x80")); // above U+10FFFF
    EXPECT_EQ("\xEF\xBF\xBD"
              "x",
              Utf16ToUtf8(u"\xD800x"));
    EXPECT_EQ("x\xEF\xBF\xBD", Utf16ToUtf8(u"x\xDC00"));
}

TEST(TextConv, Cp1252MapsTheHighControlsAndRoundTripsEveryByte)
{
    EXPECT_EQ(u"\u20AC\u0081\u201A\u0178\u00FF", Cp1252ToUtf16("\x80\x81\x82\x9F\xFF"));
    std::string all;
    for (int b = 0; b < 256; ++b)
        all.push_back(static_cast<char>(b));
    const std::u16string wide = Cp1252ToUtf16(all);
    EXPECT_EQ(all, Utf16ToCp1252(wide));
    for (char16_t ch : wide)
        EXPECT_TRUE(IsCp1252Representable(ch));
    EXPECT_FALSE(IsCp1252Representable(0x0100));
    EXPECT_FALSE(IsCp1252Representable(0x0080));
    EXPECT_EQ("a?b?", Utf16ToCp1252(u"a\u0100b\u4E2D"));
    EXPECT_EQ("#", Utf16ToCp1252(u"\u4E2D", '#'));
}

TEST(TextConv, Utf16LeBytesIgnoreAnOddTrailingByte)
{
    const std::string bytes("A\0\xAC\x20Z", 5);
    EXPECT_EQ(u"A\u20AC", Utf16LeBytesToText(bytes));
    EXPECT_EQ(std::string("A\0\xAC\x20", 4), TextToUtf16LeBytes(u"A\u20AC"));
}

TEST(TextConv, AsciiCaseAndDecimalText)
{
    EXPECT_EQ(u"abc\u00C4z", AsciiToLower(u"AbC\u00C4z"));
    EXPECT_TRUE(EqualsNoCaseAscii(u"German.LNG", u"german.lng"));
    EXPECT_FALSE(EqualsNoCaseAscii(u"\u00C4", u"\u00E4"));
    EXPECT_FALSE(EqualsNoCaseAscii(u"ab", u"abc"));
    EXPECT_EQ(u"0", ToU16(0));
    EXPECT_EQ(u"-42", ToU16(-42));
    EXPECT_EQ(u"-9223372036854775808", ToU16(LLONG_MIN));
    EXPECT_EQ(u"9223372036854775807", ToU16(LLONG_MAX));
}
