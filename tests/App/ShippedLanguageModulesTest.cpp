// The shipped language modules must be exactly what make_language_modules writes from the
// current English table and translations, and must load without a single repair.
#include "App/AppIdentity.h"
#include "App/EnglishStrings.h"
#include "App/LanguageModuleBuilder.h"
#include "Shared/Base/File.h"
#include "Shared/Base/TextConv.h"
#include "Shared/LanguagesMgr/CapturedLog.h"
#include "Shared/LanguagesMgr/LanguageLineRules.h"
#include "Shared/LanguagesMgr/LanguageModule.h"
#include "Shared/LanguagesMgr/LanguagesMgr.h"
#include "Shared/LanguagesMgr/SystemLanguage.h"

#include <gtest/gtest.h>

#include <set>

namespace
{
const std::u16string kSourceDir = Utf8ToUtf16(QUILL_SOURCE_DIR);
const std::u16string kLanguagesDir = JoinPath(kSourceDir, u"data/Languages/");
const std::u16string kTranslationsDir = JoinPath(kSourceDir, u"tools/translations/");

struct SShippedModule
{
    std::u16string_view fileName;
    std::u16string_view description;
    const char* locale;
};

constexpr SShippedModule kShipped[] = {
    {u"German.lng", u"Deutsch (German)", "de_DE.UTF-8"},
    {u"French.lng", u"Français (French)", "fr_FR.UTF-8"},
};

std::string ReadFile(const std::u16string& path)
{
    std::string bytes;
    int cause = 0;
    EXPECT_TRUE(ReadWholeFile(DiskFileSystem(), path, bytes, cause)) << Utf16ToUtf8(path);
    return bytes;
}
} // namespace

TEST(EnglishStrings, EveryLineIsAnUpperCaseKeyWithTextAndKeysAreUnique)
{
    std::set<std::u16string_view> keys;
    for (std::u16string_view line : EnglishStrings())
    {
        const std::u16string_view prefix = KeyPrefixOf(line);
        ASSERT_FALSE(prefix.empty()) << Utf16ToUtf8(line);
        EXPECT_LT(prefix.size(), line.size()) << "no text: " << Utf16ToUtf8(line);
        for (char16_t ch : prefix.substr(0, prefix.size() - 1))
            EXPECT_TRUE((ch >= u'A' && ch <= u'Z') || (ch >= u'0' && ch <= u'9') || ch == u'_')
                << Utf16ToUtf8(line);
        EXPECT_TRUE(keys.insert(prefix).second) << "repeated key " << Utf16ToUtf8(prefix);
        EXPECT_EQ(ApplyCharacterReplacements(line), line) << "loading would change " << Utf16ToUtf8(line);
    }
}

TEST(ShippedLanguageModules, MatchWhatTheGeneratorWritesNow)
{
    for (const SShippedModule& shipped : kShipped)
    {
        const std::u16string name(shipped.fileName);
        const std::u16string source = name.substr(0, name.size() - 4) + u".txt";
        std::string generated;
        std::vector<std::string> problems;
        EXPECT_TRUE(BuildLanguageModuleFile(ReadFile(kTranslationsDir + source), EnglishStrings(),
                                            AppCompatibility(), generated, problems));
        for (const std::string& problem : problems)
            ADD_FAILURE() << Utf16ToUtf8(source) << ": " << problem;
        EXPECT_TRUE(generated == ReadFile(kLanguagesDir + name))
            << Utf16ToUtf8(name) << " is stale: run make_language_modules " << QUILL_SOURCE_DIR;
    }
}

TEST(ShippedLanguageModules, LoadWithoutAnyRepairAndAreListedForTheirLocale)
{
    CCapturedLog log;
    CLanguagesMgr manager(kLanguagesDir, AppCompatibility(), std::u16string(kDefaultLanguageModuleName));
    for (const SShippedModule& shipped : kShipped)
    {
        log.Clear();
        CLanguageModule module;
        ASSERT_TRUE(module.LoadModule(kLanguagesDir + std::u16string(shipped.fileName), AppCompatibility(),
                                      EnglishStrings()));
        EXPECT_EQ(log.Lines(), std::vector<std::u16string>{}) << "missing or misformatted strings";
        for (std::u16string_view english : EnglishStrings())
        {
            const std::u16string_view prefix = KeyPrefixOf(english);
            std::u16string text;
            ASSERT_TRUE(module.FindString(prefix.substr(0, prefix.size() - 1), text));
            EXPECT_NE(text, u"");
        }
        const std::u16string description = DefaultModuleDescription(LanguageIdFromLocale(shipped.locale));
        EXPECT_EQ(description, shipped.description);
        const int index = manager.FindByDescription(description);
        ASSERT_GT(index, 0) << Utf16ToUtf8(description);
        EXPECT_EQ(manager.Modules()[index].fileName, shipped.fileName);
    }
}

TEST(LanguageModuleBuilder, RejectsIncompleteUnknownAndMisformattedTranslations)
{
    const std::u16string_view english[] = {u"A=Open ^filename", u"B=Two\nlines", u"C=Plain"};
    const std::string source = "# comment\n"
                               "FileDescription=Test\n"
                               "A=Offen\n"
                               "B=Zwei\\nZeilen\r\n"
                               "D=Unknown\n"
                               "B=again\n"
                               "E=Save &As\n";
    std::string bytes;
    std::vector<std::string> problems;
    EXPECT_FALSE(BuildLanguageModuleFile(source, english, AppCompatibility(), bytes, problems));
    EXPECT_EQ(bytes, "");
    const std::vector<std::string> expected{
        "key given twice: B=", "markings differ from the English text: A=", "missing translation: C=",
        "key not in the English table: D=", "key not in the English table: E="};
    EXPECT_EQ(problems, expected);

    problems.clear();
    EXPECT_FALSE(BuildLanguageModuleFile("A=Open ^f\nB=x\\ny\nC=Save &As\n", english, AppCompatibility(),
                                         bytes, problems));
    EXPECT_EQ(problems, (std::vector<std::string>{"no FileDescription= line",
                                                  "\"&\" would be changed on loading: C="}));
}
