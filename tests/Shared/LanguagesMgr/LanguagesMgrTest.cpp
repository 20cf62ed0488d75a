#include "Shared/LanguagesMgr/LanguagesMgr.h"

#include "CapturedLog.h"
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/TextConv.h"
#include "Shared/Config/ConfFileParser.h"
#include "Shared/LanguagesMgr/AppFolders.h"
#include "Shared/LanguagesMgr/InterfaceInfoParser.h"
#include "Shared/LanguagesMgr/SystemLanguage.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace
{
const SAppCompatibility kApp{u"Test Project", 214};

std::string Module(std::u16string_view description, std::u16string_view build)
{
    return "\xFF\xFE" + TextToUtf16LeBytes(u"ProjectSignature=Test Project\r\nFileDescription=" +
                                           std::u16string(description) + u"\r\nRequiredAppBuildNumber=" +
                                           std::u16string(build) + u"\r\nK=v\r\n");
}

// Sets an environment variable for the scope of a test and restores it afterwards.
class CScopedEnv
{
public:
    CScopedEnv(const char* name, const char* value) : m_Name(name)
    {
        const char* old = std::getenv(name);
        m_Had = old != nullptr;
        if (old)
            m_Old = old;
        if (value)
            setenv(name, value, 1);
        else
            unsetenv(name);
    }
    ~CScopedEnv()
    {
        if (m_Had)
            setenv(m_Name, m_Old.c_str(), 1);
        else
            unsetenv(m_Name);
    }
    CScopedEnv(const CScopedEnv&) = delete;
    CScopedEnv& operator=(const CScopedEnv&) = delete;

private:
    const char* m_Name;
    bool m_Had = false;
    std::string m_Old;
};
} // namespace

TEST(LanguagesMgr, ListsTheBuiltInModuleAndTheCompatibleFiles)
{
    CMemFileSystem fs;
    const std::u16string folder = AppFolderPath(u"/app", EAppFolder::Languages);
    EXPECT_EQ(folder, u"/app/Languages/");
    fs.Bytes(folder + u"a.lng") = Module(u"Alpha", u"214");
    fs.Bytes(folder + u"b.lng") = Module(u"Beta", u"0214");
    fs.Bytes(folder + u"c.LNG") = Module(u"Gamma", u"214");
    fs.Bytes(folder + u"notes.txt") = Module(u"Text", u"214");
    CCapturedLog log;
    CLanguagesMgr manager(folder, kApp, u"English (Default)", &fs);
    ASSERT_EQ(manager.Modules().size(), 3u);
    EXPECT_EQ(manager.Modules()[0].fileName, u"");
    EXPECT_EQ(manager.Modules()[0].description, u"English (Default)");
    EXPECT_EQ(manager.Modules()[1].fileName, u"a.lng");
    EXPECT_EQ(manager.Modules()[2].description, u"Gamma");
    EXPECT_EQ(manager.FindByDescription(u"Alpha"), 1);
    EXPECT_EQ(manager.FindByDescription(u"Beta"), -1);
    EXPECT_EQ(log.Lines(),
              (std::vector<std::u16string>{
                  u"Starting search for language modules installed...", u"    Language module a.lng found.",
                  u"Error: Language module b.lng has wrong version - 0214 instead of 214",
                  u"    Info: Language module b.lng found, but it is incompatible with current application "
                  u"version. "
                  u"Skipped.",
                  u"    Language module c.LNG found.",
                  u"Search for language modules finished. 2 language modules found."}));
}

TEST(LanguagesMgr, MissingFolderLeavesOnlyTheBuiltInModule)
{
    CMemFileSystem fs;
    CCapturedLog log;
    CLanguagesMgr manager(u"/nowhere/", kApp, u"English (Default)", &fs);
    EXPECT_EQ(manager.Modules().size(), 1u);
    EXPECT_EQ(log.Lines().back(), u"Search for language modules finished. 0 language modules found.");
}

TEST(InterfaceInfoParser, AcceptsBuildsBetweenTheMinimumAndOurs)
{
    CConfFileParser info;
    const std::u16string base =
        u"ProjectSignature=Test Project\r\nFileDescription=Blue\r\nRequiredAppBuildNumber=";
    CInterfaceInfoParser checker(kApp);
    struct SCase
    {
        std::u16string build;
        bool accepted;
    };
    for (const SCase& test : {SCase{u"200", true}, SCase{u"214", true}, SCase{u"0214", true},
                              SCase{u"199", false}, SCase{u"215", false}})
    {
        const std::string bytes = "\xFF\xFE" + TextToUtf16LeBytes(base + test.build);
        ASSERT_TRUE(info.Parse(bytes.data(), bytes.size()));
        CCapturedLog log;
        std::u16string description;
        EXPECT_EQ(checker.Check(info, u"SkinInfo.ini", 200, description), test.accepted)
            << Utf16ToUtf8(test.build);
        EXPECT_EQ(description, test.accepted ? u"Blue" : u"");
        if (!test.accepted)
        {
            EXPECT_EQ(log.Lines(),
                      std::vector<std::u16string>{u"Skipped SkinInfo.ini file processing as it contains "
                                                  u"incompatible build numer " +
                                                  ToU16(WideTextToInt(test.build)) + u"."});
        }
    }
}

TEST(InterfaceInfoParser, RejectsWrongSignatureAndMissingDescription)
{
    CMemFileSystem fs;
    fs.Bytes(u"/s/SoundsInfo.ini") =
        "\xFF\xFE" + TextToUtf16LeBytes(u"ProjectSignature=Other\r\nRequiredAppBuildNumber=210\r\n");
    fs.Bytes(u"/t/SoundsInfo.ini") =
        "\xFF\xFE" + TextToUtf16LeBytes(u"ProjectSignature=Test Project\r\nRequiredAppBuildNumber=210\r\n");
    CInterfaceInfoParser checker(kApp, &fs);
    CCapturedLog log;
    std::u16string description;
    EXPECT_FALSE(checker.Check(u"/s/SoundsInfo.ini", 1, description));
    EXPECT_FALSE(checker.Check(u"/t/SoundsInfo.ini", 1, description));
    EXPECT_EQ(log.Lines(),
              (std::vector<std::u16string>{
                  u"Skipped /s/SoundsInfo.ini file processing as it contains incompatible build numer 210.",
                  u"Skipped /t/SoundsInfo.ini file processing as it has no desctin."}));
}

TEST(SystemLanguage, LocalesMapToLanguageIdsAndModuleDescriptions)
{
    struct SCase
    {
        const char* locale;
        int id;
        std::u16string_view description;
    };
    const SCase cases[] = {
        {"de_AT.UTF-8", 3079, u"Deutsch (German)"},
        {"de", 1031, u"Deutsch (German)"},
        {"fr_CA.utf8@euro", 3084, u"Français (French)"},
        {"fr_SN", 1036, u"Français (French)"},
        {"pt_BR", 1046, u"Português (Portugal)"},
        {"es_AR", 11274, u"Español (Spanish)"},
        {"es_US", 21514, u"English (Default)"},
        {"lt_LT", 1063, u"Русский (Russian)"},
        {"uz_UZ@cyrillic", 2115, u"Русский (Russian)"},
        {"zh_TW", 1028, u"繁體中文 (Traditional Chinese - Taiwan/Hong Kong)"},
        {"zh_HK", 3076, u"繁體中文 (Traditional Chinese - Taiwan/Hong Kong)"},
        {"zh_SG", 4100, u"簡体中文 (Simplified Chinese - Taiwan/Hong Kong)"},
        {"zh_CN.GB18030", 2052, u"简体中文 Mainland (Simplified Chinese - Mainland)"},
        {"hr_BA", 4122, u"Hrvatski (Croatian)"},
        {"bs_BA", 5146, u"Hrvatski (Croatian)"},
        {"sv_FI", 2077, u"English (Default)"},
        {"C", 1033, u"English (Default)"},
        {"", 1033, u"English (Default)"},
        {"xx_YY", 1033, u"English (Default)"},
    };
    for (const SCase& test : cases)
    {
        EXPECT_EQ(LanguageIdFromLocale(test.locale), test.id) << test.locale;
        EXPECT_EQ(DefaultModuleDescription(test.id), test.description) << test.locale;
    }
}

TEST(SystemLanguage, LcAllOverridesLcMessagesWhichOverridesLang)
{
    CScopedEnv all("LC_ALL", nullptr);
    CScopedEnv messages("LC_MESSAGES", "fr_BE.UTF-8");
    CScopedEnv lang("LANG", "de_DE.UTF-8");
    EXPECT_EQ(UserDefaultLanguageId(), 2060);
    {
        CScopedEnv override("LC_ALL", "it_CH");
        EXPECT_EQ(UserDefaultLanguageId(), 2064);
    }
    CScopedEnv noMessages("LC_MESSAGES", "");
    EXPECT_EQ(UserDefaultLanguageId(), 1031);
}
