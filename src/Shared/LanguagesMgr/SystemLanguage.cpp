#include "Shared/LanguagesMgr/SystemLanguage.h"

#include <cstdlib>
#include <initializer_list>

namespace
{
struct SLocaleId
{
    std::string_view language;
    std::string_view territory; // empty: the language's primary identifier
    int id;
};

// Listed for the languages that have modules, and for the common others so that the answer is a
// real identifier; the first entry of each language is its primary one.
constexpr SLocaleId kLocaleIds[] = {
    {"fr", "", 1036},    {"fr", "FR", 1036},  {"fr", "BE", 2060},  {"fr", "CA", 3084},  {"fr", "CH", 4108},
    {"fr", "LU", 5132},  {"fr", "MC", 6156},  {"de", "", 1031},    {"de", "DE", 1031},  {"de", "CH", 2055},
    {"de", "AT", 3079},  {"de", "LU", 4103},  {"de", "LI", 5127},  {"it", "", 1040},    {"it", "IT", 1040},
    {"it", "CH", 2064},  {"pt", "", 2070},    {"pt", "BR", 1046},  {"pt", "PT", 2070},  {"es", "", 3082},
    {"es", "ES", 3082},  {"es", "MX", 2058},  {"es", "GT", 4106},  {"es", "CR", 5130},  {"es", "PA", 6154},
    {"es", "DO", 7178},  {"es", "VE", 8202},  {"es", "CO", 9226},  {"es", "PE", 10250}, {"es", "AR", 11274},
    {"es", "EC", 12298}, {"es", "CL", 13322}, {"es", "UY", 14346}, {"es", "PY", 15370}, {"es", "BO", 16394},
    {"es", "SV", 17418}, {"es", "HN", 18442}, {"es", "NI", 19466}, {"es", "PR", 20490}, {"es", "US", 21514},
    {"ru", "", 1049},    {"ru", "RU", 1049},  {"ru", "MD", 2073},  {"lv", "", 1062},    {"lt", "", 1063},
    {"tg", "", 1064},    {"ky", "", 1088},    {"tk", "", 1090},    {"uz", "", 1091},    {"uk", "", 1058},
    {"bg", "", 1026},    {"sv", "", 1053},    {"sv", "SE", 1053},  {"sv", "FI", 2077},  {"hu", "", 1038},
    {"tr", "", 1055},    {"zh", "", 2052},    {"zh", "CN", 2052},  {"zh", "TW", 1028},  {"zh", "HK", 3076},
    {"zh", "SG", 4100},  {"zh", "MO", 5124},  {"ko", "", 1042},    {"el", "", 1032},    {"nl", "", 1043},
    {"nl", "NL", 1043},  {"nl", "BE", 2067},  {"cs", "", 1029},    {"hr", "", 1050},    {"hr", "HR", 1050},
    {"hr", "BA", 4122},  {"bs", "", 5146},    {"en", "", 1033},    {"en", "US", 1033},  {"en", "GB", 2057},
    {"en", "AU", 3081},  {"en", "CA", 4105},  {"en", "NZ", 5129},  {"en", "IE", 6153},  {"ja", "", 1041},
    {"pl", "", 1045},    {"da", "", 1030},    {"fi", "", 1035},    {"nb", "", 1044},    {"no", "", 1044},
    {"nn", "", 2068},    {"ro", "", 1048},    {"sk", "", 1051},    {"sl", "", 1060},    {"et", "", 1061},
    {"he", "", 1037},    {"ar", "", 1025},    {"sr", "", 3098},    {"ca", "", 1027},    {"th", "", 1054},
    {"vi", "", 1066},    {"id", "", 1057},    {"hi", "", 1081},
};

struct SModuleChoice
{
    int id;
    std::u16string_view description;
};

constexpr std::u16string_view kFrench = u"Français (French)";
constexpr std::u16string_view kGerman = u"Deutsch (German)";
constexpr std::u16string_view kItalian = u"Italian";
constexpr std::u16string_view kPortuguese = u"Português (Portugal)";
constexpr std::u16string_view kSpanish = u"Español (Spanish)";
constexpr std::u16string_view kRussian = u"Русский (Russian)";
constexpr std::u16string_view kTraditionalChinese = u"繁體中文 (Traditional Chinese - Taiwan/Hong Kong)";
constexpr std::u16string_view kSimplifiedChineseTwHk = u"簡体中文 (Simplified Chinese - Taiwan/Hong Kong)";
constexpr std::u16string_view kDutch = u"Dutch";
constexpr std::u16string_view kCroatian = u"Hrvatski (Croatian)";

// Taiwan and Hong Kong (1028, 3076) take the traditional script while Singapore and Macao
// (4100, 5124) take the simplified one under the "Taiwan/Hong Kong" label; both pairings are
// what existing installations expect.
constexpr SModuleChoice kModuleChoices[] = {
    {1036, kFrench},
    {2060, kFrench},
    {3084, kFrench},
    {4108, kFrench},
    {5132, kFrench},
    {1031, kGerman},
    {2055, kGerman},
    {3079, kGerman},
    {4103, kGerman},
    {5127, kGerman},
    {1040, kItalian},
    {2064, kItalian},
    {1046, kPortuguese},
    {2070, kPortuguese},
    {1034, kSpanish},
    {2058, kSpanish},
    {3082, kSpanish},
    {4106, kSpanish},
    {5130, kSpanish},
    {6154, kSpanish},
    {7178, kSpanish},
    {8202, kSpanish},
    {9226, kSpanish},
    {10250, kSpanish},
    {11274, kSpanish},
    {12298, kSpanish},
    {13322, kSpanish},
    {14346, kSpanish},
    {15370, kSpanish},
    {16394, kSpanish},
    {17418, kSpanish},
    {18442, kSpanish},
    {19466, kSpanish},
    {20490, kSpanish},
    {1049, kRussian},
    {2073, kRussian},
    {1062, kRussian},
    {1063, kRussian},
    {1064, kRussian},
    {1088, kRussian},
    {1090, kRussian},
    {1091, kRussian},
    {2115, kRussian},
    {1058, u"Українська (Ukrainian)"},
    {1026, u"Български (Bulgarian)"},
    {1053, u"Svenska (Swedish)"},
    {1038, u"Magyar (Hungarian)"},
    {1055, u"Turkish"},
    {1028, kTraditionalChinese},
    {3076, kTraditionalChinese},
    {4100, kSimplifiedChineseTwHk},
    {5124, kSimplifiedChineseTwHk},
    {2052, u"简体中文 Mainland (Simplified Chinese - Mainland)"},
    {1042, u"한국어 (Korean)"},
    {1032, u"Ελληνικά (Greek)"},
    {1043, kDutch},
    {2067, kDutch},
    {1029, u"Czech"},
    {1050, kCroatian},
    {4122, kCroatian},
    {5146, kCroatian},
};

constexpr std::u16string_view kEnglishDescription = u"English (Default)";

std::string AsciiLower(std::string_view text)
{
    std::string lower(text);
    for (char& ch : lower)
        if (ch >= 'A' && ch <= 'Z')
            ch = static_cast<char>(ch - 'A' + 'a');
    return lower;
}

std::string AsciiUpper(std::string_view text)
{
    std::string upper(text);
    for (char& ch : upper)
        if (ch >= 'a' && ch <= 'z')
            ch = static_cast<char>(ch - 'a' + 'A');
    return upper;
}

// language[_territory][.codeset][@modifier]
void SplitLocale(std::string_view locale, std::string& language, std::string& territory,
                 std::string& modifier)
{
    const size_t at = locale.find('@');
    if (at != std::string_view::npos)
    {
        modifier = AsciiLower(locale.substr(at + 1));
        locale = locale.substr(0, at);
    }
    locale = locale.substr(0, locale.find('.'));
    const size_t separator = locale.find_first_of("_-");
    language = AsciiLower(locale.substr(0, separator));
    if (separator != std::string_view::npos)
        territory = AsciiUpper(locale.substr(separator + 1));
}
} // namespace

int LanguageIdFromLocale(std::string_view locale)
{
    std::string language, territory, modifier;
    SplitLocale(locale, language, territory, modifier);
    if (language == "uz" && modifier == "cyrillic")
        return 2115;
    int primary = 0;
    for (const SLocaleId& entry : kLocaleIds)
    {
        if (entry.language != language)
            continue;
        if (primary == 0)
            primary = entry.id;
        if (!territory.empty() && entry.territory == territory)
            return entry.id;
    }
    return primary != 0 ? primary : kLanguageIdEnglishUs;
}

std::string MessagesLocaleFromEnvironment()
{
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
    {
        const char* value = std::getenv(name);
        if (value && *value)
            return value;
    }
    return {};
}

int UserDefaultLanguageId()
{
    return LanguageIdFromLocale(MessagesLocaleFromEnvironment());
}

std::u16string DefaultModuleDescription(int languageId)
{
    for (const SModuleChoice& choice : kModuleChoices)
        if (choice.id == languageId)
            return std::u16string(choice.description);
    return std::u16string(kEnglishDescription);
}
