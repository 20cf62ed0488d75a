#include "Tools/PasswordGenerator.h"

#include <gtest/gtest.h>

#include <map>

namespace
{
class CFixedEntropy : public IPasswordEntropySource
{
public:
    CFixedEntropy(uint32_t tick, int32_t x, int32_t y) : m_Tick(tick), m_X(x), m_Y(y) {}
    uint32_t TickCountMs() const override { return m_Tick; }
    void CursorPosition(int32_t& x, int32_t& y) const override
    {
        x = m_X;
        y = m_Y;
    }

private:
    uint32_t m_Tick;
    int32_t m_X;
    int32_t m_Y;
};

SPwdGenPrefs Settings(bool lower, bool upper, bool digits, bool punctuation, int length = 10,
                      bool noSimilar = false, int count = 1)
{
    SPwdGenPrefs settings;
    settings.allowLowercase = lower;
    settings.allowUppercase = upper;
    settings.allowNumeric = digits;
    settings.allowPunctuation = punctuation;
    settings.noSimilarChars = noSimilar;
    settings.passwordLength = length;
    settings.passwordsToGenerate = count;
    return settings;
}

const std::u16string Punctuation = u"#=!-^~@$%*&()_=+/\\{}[];:',.`|";
} // namespace

TEST(PasswordStrength, ExamplesOfTheDefaults)
{
    struct SCase
    {
        int length;
        uint64_t score;
        const char16_t* key;
        uint32_t colour;
        bool emphasis;
    };
    const SCase cases[] = {
        {10, 669, u"PWDGEN_DLG_PWD_STRGH_STRONG_LABEL", 13332024, false},
        {8, 10, u"PWDGEN_DLG_PWD_STRGH_WEAK_LABEL", 1973960, true},
        {9, 84, u"PWDGEN_DLG_PWD_STRGH_STRONG_LABEL", 13332024, false},
        {16, 2092, u"PWDGEN_DLG_PWD_STRGH_FANT_LABEL", 2010484, true}, // (63^16 mod 2^64) / 2
    };
    for (const SCase& c : cases)
    {
        const SPasswordStrength strength = RatePasswordStrength(Settings(true, true, true, false, c.length));
        EXPECT_EQ(strength.score, c.score) << c.length;
        EXPECT_EQ(std::u16string(strength.labelKey), c.key) << c.length;
        EXPECT_EQ(strength.colour, c.colour) << c.length;
        EXPECT_EQ(strength.emphasis, c.emphasis) << c.length;
    }
}

TEST(PasswordStrength, OtherSettings)
{
    EXPECT_EQ(RatePasswordStrength(Settings(false, false, true, false, 6)).score, 0u); // 11^6 / 2
    const SPasswordStrength none = RatePasswordStrength(Settings(false, false, false, false, 20));
    EXPECT_EQ(std::u16string(none.labelKey), u"PWDGEN_DLG_PWD_STRGH_WEAK_LABEL");
    EXPECT_EQ(none.score, 0u);

    // Lower case only, length 12: 27^12 / 2 = 75047317648499560, sqrt = 273947654.9..., S = 261
    // (strong: too short for fantastic).
    EXPECT_EQ(RatePasswordStrength(Settings(true, false, false, false, 12)).score, 261u);
    EXPECT_EQ(std::u16string(RatePasswordStrength(Settings(true, false, false, false, 12)).labelKey),
              u"PWDGEN_DLG_PWD_STRGH_STRONG_LABEL");
    // All four sets (N = 91) are not halved: 92^9 = 472161363286556672, sqrt = 687139988.1..., S = 655.
    EXPECT_EQ(RatePasswordStrength(Settings(true, true, true, true, 9)).score, 655u);
    // Digits and punctuation, length 8: 40^8 / 2 = 3276800000000, sqrt = 1810193.3..., S = 1;
    // length 10: 40^10 / 2 = 5242880000000000, sqrt = 72407734.2..., S = 69 (normal).
    const SPasswordStrength normal = RatePasswordStrength(Settings(false, false, true, true, 10));
    EXPECT_EQ(normal.score, 69u);
    EXPECT_EQ(std::u16string(normal.labelKey), u"PWDGEN_DLG_PWD_STRGH_NORM_LABEL");
    EXPECT_EQ(normal.colour, SPasswordStrength::DefaultColour);
    EXPECT_FALSE(normal.emphasis);
}

TEST(PasswordGenerator, CountsAreClamped)
{
    EXPECT_EQ(ClampPasswordCount(0), 1);
    EXPECT_EQ(ClampPasswordCount(-7), 1);
    EXPECT_EQ(ClampPasswordCount(1000), 1000);
    EXPECT_EQ(ClampPasswordCount(5000), 1000);
    const CFixedEntropy entropy(1, 2, 3);
    const std::vector<std::u16string> one =
        GeneratePasswords(Settings(true, true, true, false, 5000, false, 0), entropy);
    ASSERT_EQ(one.size(), 1u);
    EXPECT_EQ(one[0].size(), 1000u);
    const std::vector<std::u16string> many =
        GeneratePasswords(Settings(true, false, false, false, 0, false, 5000), entropy);
    ASSERT_EQ(many.size(), 1000u);
    EXPECT_EQ(many[999].size(), 1u);
    // Length 5000 is rated as length 1000, length 0 as length 1 (62 + 1, halved: S = 0).
    EXPECT_EQ(RatePasswordStrength(Settings(true, true, true, false, 5000)).score,
              RatePasswordStrength(Settings(true, true, true, false, 1000)).score);
    EXPECT_EQ(RatePasswordStrength(Settings(true, true, true, false, 0)).score, 0u);
}

TEST(PasswordGenerator, AlphabetForEverySetCombination)
{
    const std::u16string parts[2][4] = {
        {u"abcdefghijklmnopqrstuvwxyz", u"ABCDEFGHIJKLMNOPQRSTUVWXYZ", u"0123456789", Punctuation},
        {u"abcdefghjkmnopqrstuvwxyz", u"ADEFHJKLMNPQRUVWXY", u"349", Punctuation},
    };
    for (int noSimilar = 0; noSimilar < 2; ++noSimilar)
    {
        for (int sets = 0; sets < 16; ++sets)
        {
            std::u16string expected;
            for (int set = 0; set < 4; ++set)
            {
                if (sets & (1 << set))
                    expected += parts[noSimilar][set];
            }
            const SPwdGenPrefs settings = Settings(sets & 1, sets & 2, sets & 4, sets & 8, 10, noSimilar);
            EXPECT_EQ(PasswordAlphabet(settings), expected) << sets << " " << noSimilar;
            EXPECT_EQ(CanGeneratePasswords(settings), sets != 0);
        }
    }
    EXPECT_EQ(PasswordAlphabet(Settings(true, true, true, true, 10, true)).size(), 24u + 18u + 3u + 29u);
}

// Hand-computed from the formula: seed 0 gives the draws 38, 7719, 21238, 2437, ...
TEST(PasswordGenerator, FollowsTheFormula)
{
    EXPECT_EQ(GeneratePasswords(Settings(true, true, true, false, 4, false, 2), CFixedEntropy(0, 0, 0)),
              (std::vector<std::u16string>{u"MEGu", u"0r8V"}));
    // A tick count with the top bit set makes v negative; the remainder is taken absolute.
    EXPECT_EQ(GeneratePasswords(Settings(true, true, true, true, 5), CFixedEntropy(0xFFFFFFFF, 1920, 1080)),
              (std::vector<std::u16string>{u"t4{y_"}));
    EXPECT_EQ(GeneratePasswords(Settings(false, false, true, false, 3), CFixedEntropy(0x80000000, -1, 1)),
              (std::vector<std::u16string>{u"199"}));
    EXPECT_TRUE(GeneratePasswords(Settings(false, false, false, false), CFixedEntropy(5, 5, 5)).empty());
}

TEST(PasswordGenerator, EveryAlphabetCharacterAppearsIn100000)
{
    const SPwdGenPrefs settingsList[] = {
        Settings(true, true, true, false, 1000, false, 100),
        Settings(true, true, true, true, 1000, true, 100),
        Settings(false, false, true, false, 1000, true, 100),
        Settings(false, false, false, true, 1000, false, 100),
    };
    for (const SPwdGenPrefs& settings : settingsList)
    {
        const std::u16string alphabet = PasswordAlphabet(settings);
        std::map<char16_t, int> counts;
        for (const std::u16string& password :
             GeneratePasswords(settings, CFixedEntropy(0x9E3779B9, 1187, 642)))
        {
            for (char16_t ch : password)
                ++counts[ch];
        }
        int total = 0;
        for (const auto& [ch, count] : counts)
        {
            EXPECT_NE(alphabet.find(ch), std::u16string::npos) << int(ch);
            total += count;
        }
        EXPECT_EQ(total, 100000);
        for (char16_t ch : alphabet)
            EXPECT_GT(counts[ch], 0) << "missing " << char(ch) << " from " << alphabet.size();
        if (settings.allowPunctuation && !settings.allowLowercase)
        {
            EXPECT_NEAR(double(counts[u'=']) / counts[u'#'], 2.0, 0.4);
        }
    }
}
