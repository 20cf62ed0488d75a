#include "Tools/PasswordGenerator.h"

#include <algorithm>
#include <cmath>

namespace
{
// The platform's rand(): a linear congruential generator giving 15-bit values.
class CRandGenerator
{
public:
    explicit CRandGenerator(uint32_t seed) : m_State(seed) {}
    int32_t Next()
    {
        m_State = m_State * 214013u + 2531011u;
        return int32_t((m_State >> 16) & 0x7FFF);
    }

private:
    uint32_t m_State;
};

bool AllSetsChosen(const SPwdGenPrefs& settings)
{
    return settings.allowLowercase && settings.allowUppercase && settings.allowNumeric &&
           settings.allowPunctuation;
}

uint64_t WrappingPower(uint64_t base, int exponent)
{
    uint64_t product = 1;
    for (int i = 0; i < exponent; ++i)
        product *= base;
    return product;
}

SPasswordStrength StrengthFor(uint64_t score, int length)
{
    if (score < 30)
        return {u"PWDGEN_DLG_PWD_STRGH_WEAK_LABEL", 1973960, true, score};
    if (score < 70)
        return {u"PWDGEN_DLG_PWD_STRGH_NORM_LABEL", SPasswordStrength::DefaultColour, false, score};
    if (score >= 99 && length >= 16)
        return {u"PWDGEN_DLG_PWD_STRGH_FANT_LABEL", 2010484, true, score};
    return {u"PWDGEN_DLG_PWD_STRGH_STRONG_LABEL", 13332024, false, score};
}

// The operands are combined as unsigned values so that the signed 32-bit wrap-around is defined.
size_t AlphabetIndex(uint32_t tick, int32_t draw, uint32_t position, uint32_t password, size_t alphabetLength)
{
    const int32_t v = int32_t((tick ^ uint32_t(draw) ^ position) + password);
    return size_t(std::abs(v % int32_t(alphabetLength)));
}
} // namespace

int ClampPasswordCount(int value)
{
    return std::clamp(value, SPwdGenPrefs::MinCount, SPwdGenPrefs::MaxCount);
}

std::u16string PasswordAlphabet(const SPwdGenPrefs& settings)
{
    std::u16string alphabet;
    if (settings.allowLowercase)
        alphabet += PasswordCharacters::Lowercase;
    if (settings.allowUppercase)
        alphabet += PasswordCharacters::Uppercase;
    if (settings.allowNumeric)
        alphabet += PasswordCharacters::Digits;
    if (settings.allowPunctuation)
        alphabet += PasswordCharacters::Punctuation;
    if (settings.noSimilarChars)
        std::erase_if(alphabet, [](char16_t ch)
                      { return PasswordCharacters::LookAlikes.find(ch) != std::u16string_view::npos; });
    return alphabet;
}

bool CanGeneratePasswords(const SPwdGenPrefs& settings)
{
    return settings.allowLowercase || settings.allowUppercase || settings.allowNumeric ||
           settings.allowPunctuation;
}

SPasswordStrength RatePasswordStrength(const SPwdGenPrefs& settings)
{
    const size_t alphabetLength = PasswordAlphabet(settings).size();
    const int length = ClampPasswordCount(settings.passwordLength);
    if (alphabetLength == 0)
        return StrengthFor(0, length);
    uint64_t k = WrappingPower(alphabetLength + 1, length);
    if (!AllSetsChosen(settings))
        k >>= 1;
    const uint64_t score = uint64_t(std::floor(std::sqrt(double(k)) / 1048575.0));
    return StrengthFor(score, length);
}

std::vector<std::u16string> GeneratePasswords(const SPwdGenPrefs& settings,
                                              const IPasswordEntropySource& source)
{
    const std::u16string alphabet = PasswordAlphabet(settings);
    std::vector<std::u16string> passwords;
    if (alphabet.empty())
        return passwords;
    const int count = ClampPasswordCount(settings.passwordsToGenerate);
    const int length = ClampPasswordCount(settings.passwordLength);
    const uint32_t tick = source.TickCountMs();
    CRandGenerator random(tick);
    for (int p = 0; p < count; ++p)
    {
        std::u16string password;
        for (int j = 0; j < length; ++j)
        {
            int32_t x = 0;
            int32_t y = 0;
            source.CursorPosition(x, y);
            const int32_t draw = int32_t(uint32_t(random.Next()) + uint32_t(x) * uint32_t(y));
            password += alphabet[AlphabetIndex(tick, draw, uint32_t(j), uint32_t(p), alphabet.size())];
        }
        passwords.push_back(std::move(password));
    }
    return passwords;
}
