#pragma once
// The password generator behind the password dialog: the alphabet made from the chosen character
// sets, random passwords drawn from it and a strength rating of the settings. The settings are
// the preference group SPwdGenPrefs, so the dialog reads and writes them straight through
// CPreferences::PwdGen().
#include "Prefs/ProjectPrefsGroups.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace PasswordCharacters
{
inline constexpr std::u16string_view Lowercase = u"abcdefghijklmnopqrstuvwxyz";
inline constexpr std::u16string_view Uppercase = u"ABCDEFGHIJKLMNOPQRSTUVWXYZ";
inline constexpr std::u16string_view Digits = u"0123456789";
// "=" stands in it twice on purpose, which makes it twice as likely.
inline constexpr std::u16string_view Punctuation = u"#=!-^~@$%*&()_=+/\\{}[];:',.`|";
inline constexpr std::u16string_view LookAlikes = u"1iIl8B6GC0O5S7T2Z";
} // namespace PasswordCharacters

// What generation reads from the platform: the millisecond tick count and the mouse cursor's
// screen position.
class IPasswordEntropySource
{
public:
    virtual ~IPasswordEntropySource() = default;
    virtual uint32_t TickCountMs() const = 0;
    virtual void CursorPosition(int32_t& x, int32_t& y) const = 0;
};

struct SPasswordStrength
{
    static constexpr uint32_t DefaultColour = 0xFEFFFF;

    const char16_t* labelKey = u"";
    uint32_t colour = DefaultColour; // 0x00BBGGRR
    bool emphasis = false;
    uint64_t score = 0; // the S of the rating; 0 when nothing is chosen
};

// The number of passwords and their length are used within 1..1000.
int ClampPasswordCount(int value);

// The chosen sets in the order lower case, upper case, digits, punctuation; with look-alikes
// excluded every character of the look-alike string is removed. Duplicates stay and count.
std::u16string PasswordAlphabet(const SPwdGenPrefs& settings);

// Generation is possible while at least one of the four sets is chosen.
bool CanGeneratePasswords(const SPwdGenPrefs& settings);

// Alphabet length N and length L give K = (N + 1)^L in wrapping 64-bit arithmetic, halved unless
// all four sets are chosen; the score is the integer part of sqrt(K) / 1048575.
SPasswordStrength RatePasswordStrength(const SPwdGenPrefs& settings);

// Seeds a rand()-style generator with the tick count; character j of password p is the
// alphabet's character at |v mod N| with v = (tick ^ (rand() + cursor x * cursor y) ^ j) + p in
// signed 32-bit arithmetic. Empty when the alphabet is empty.
std::vector<std::u16string> GeneratePasswords(const SPwdGenPrefs& settings,
                                              const IPasswordEntropySource& source);
