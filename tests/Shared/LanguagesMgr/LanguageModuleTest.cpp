#include "Shared/LanguagesMgr/LanguageModule.h"

#include "CapturedLog.h"
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/TextConv.h"
#include "Shared/LanguagesMgr/LanguageLineRules.h"
#include "Shared/LanguagesMgr/LanguageModuleWriter.h"
#include "Shared/LanguagesMgr/StringTemplate.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace
{
const SAppCompatibility kApp{u"Test Project", 214};

std::string ModuleFile(std::u16string_view header, std::u16string_view body)
{
    return "\xFF\xFE" + TextToUtf16LeBytes(std::u16string(header) + std::u16string(body));
}

constexpr std::u16string_view kGoodHeader = u"ProjectSignature=Test Project\r\n"
                                            u"FileDescription=Testish\r\n"
                                            u"RequiredAppBuildNumber=214\r\n";

struct SHeaderCase
{
    std::u16string_view header;
    std::u16string_view logLine;
    std::u16string_view description;
};
} // namespace

TEST(LanguageModuleHeader, EachFailureIsLoggedInOrderAndRejects)
{
    const SHeaderCase cases[] = {
        {u"RequiredAppBuildNumber=214\r\nProjectSignature=Test Project\r\n",
         u"Error: Language module m.lng has no FileDescription= tag", u""},
        {u"FileDescription=\r\nRequiredAppBuildNumber=214\r\n",
         u"Error: Language module m.lng has no FileDescription= tag", u""},
        {u"FileDescription=D\r\nProjectSignature=Test Project\r\n",
         u"Error: Language module m.lng has no RequiredAppBuildNumber= tag", u"D"},
        {u"FileDescription=D\r\nRequiredAppBuildNumber=0214\r\nProjectSignature=Test Project\r\n",
         u"Error: Language module m.lng has wrong version - 0214 instead of 214", u"D"},
        {u"FileDescription=D\r\nRequiredAppBuildNumber=213\r\n",
         u"Error: Language module m.lng has wrong version - 213 instead of 214", u"D"},
        {u"FileDescription=D\r\nRequiredAppBuildNumber=214\r\nProjectSignature=\r\n",
         u"Error: Language module m.lng is missing signature tag ProjectSignature=", u"D"},
        {u"FileDescription=D\r\nRequiredAppBuildNumber=214\r\nProjectSignature=Other\r\n",
         u"Error: Language module m.lng has wrong signature tag - Other instead of Test Project", u"D"},
    };
    for (const SHeaderCase& test : cases)
    {
        CCapturedLog log;
        std::u16string description;
        EXPECT_FALSE(CheckLanguageModuleHeader(test.header, u"m.lng", kApp, description));
        EXPECT_EQ(log.Lines(), std::vector<std::u16string>{std::u16string(test.logLine)});
        EXPECT_EQ(description, test.description);
    }
    CCapturedLog log;
    std::u16string description;
    EXPECT_TRUE(CheckLanguageModuleHeader(u"A=1\r\nRequiredAppBuildNumber=214\r\nFileDescription=Fine\r\n"
                                          u"ProjectSignature=Test Project",
                                          u"m.lng", kApp, description));
    EXPECT_EQ(description, u"Fine");
    EXPECT_TRUE(log.Lines().empty());
}

TEST(LanguageModule, LoadRepairsMissingAndMisformattedStrings)
{
    const std::u16string_view english[] = {
        u"A_PLAIN=Plain text",
        u"B_FORMAT=Open ^fileName failed: %s",
        u"C_MISSING=Only in English %d",
        u"/ comment line=ignored",
        u"not a key line",
        u"D_TABS=one\ttwo",
        u"E_GOOD=File ^f of ^n",
    };
    CMemFileSystem fs;
    fs.Bytes(u"/Languages/de.lng") = ModuleFile(kGoodHeader, u"B_FORMAT=Fehler %s bei ^fileName\r\n"
                                                             u"A_PLAIN=Schlicht ^ mit %d\r\n"
                                                             u"D_TABS=eins\\tzwei\r\n"
                                                             u"E_GOOD=Datei ^a von ^b\r\n"
                                                             u"F_EXTRA=&Nur hier\r\n");
    CCapturedLog log;
    CLanguageModule module(&fs);
    ASSERT_TRUE(module.LoadModule(u"/Languages/de.lng", kApp, english));
    EXPECT_EQ(module.Name(), u"de.lng");
    EXPECT_EQ(log.Lines(),
              (std::vector<std::u16string>{
                  u"Warning: String C_MISSING=Only in English %d is missing in language module de.lng",
                  u"Warning: String B_FORMAT=Fehler %s bei ^fileName has incorrect format. Will be used "
                  u"English version of this string. Language module - de.lng. Default markings - ^s, "
                  u"localized markings - s^"}));
    EXPECT_EQ(module.GetString(u"A_PLAIN"), u"Schlicht ^ mit %d")
        << "English without markings is never replaced";
    EXPECT_EQ(module.GetString(u"B_FORMAT"), u"Open ^fileName failed: %s");
    EXPECT_EQ(module.GetString(u"C_MISSING"), u"Only in English %d");
    EXPECT_EQ(module.GetString(u"D_TABS"), u"eins\tzwei");
    EXPECT_EQ(module.GetString(u"E_GOOD"), u"Datei ^a von ^b") << "tag names are not compared";
    EXPECT_EQ(module.GetString(u"F_EXTRA"), u"Nur hier");
    EXPECT_EQ(module.GetString(u"FileDescription"), u"Testish");
    EXPECT_TRUE(std::is_sorted(module.Lines().begin(), module.Lines().end()));
}

TEST(LanguageModule, MissingKeysAndUnreadableFilesAreLogged)
{
    CMemFileSystem fs;
    fs.Bytes(u"/bad.lng") = ModuleFile(u"FileDescription=x\r\n", u"A=1\r\n");
    CCapturedLog log;
    CLanguageModule module(&fs);
    module.LoadBuiltIn(u"English (Default)", std::vector<std::u16string_view>{u"A=1", u"AB=2"});
    EXPECT_EQ(module.GetString(u"A"), u"1") << "a key is not found by a longer key's prefix";
    EXPECT_EQ(module.GetString(u"ABC"), u"");
    EXPECT_EQ(module.GetString(u""), u"");
    EXPECT_FALSE(module.LoadModule(u"/missing.lng", kApp, {}));
    EXPECT_FALSE(module.LoadModule(u"/bad.lng", kApp, {}));
    EXPECT_EQ(module.Name(), u"English (Default)") << "a failed load keeps the previous module";
    EXPECT_EQ(module.GetString(u"AB"), u"2");
    const auto lines = log.Lines();
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], u"Error: Cannot find resource ABC in English (Default) language module.");
    EXPECT_EQ(lines[1], u"Error: Cannot find resource  in English (Default) language module.");
    EXPECT_TRUE(lines[2].starts_with(u"Error: Cannot read language module /missing.lng, cause - "));
    EXPECT_EQ(lines[3], u"Error: Language module bad.lng has no RequiredAppBuildNumber= tag");
}

TEST(LanguageModule, RandomModulesAgreeWithTheRepairModel)
{
    std::mt19937 random(7);
    const std::u16string_view texts[] = {u"plain", u"^a",   u"%s ^b",   u"x|y",
                                         u"a\tb",  u"%d%%", u"%M only", u"\nline"};
    for (int round = 0; round < 40; ++round)
    {
        std::vector<std::u16string> englishOwned;
        std::u16string body;
        std::map<std::u16string, std::u16string> expected;
        for (int key = 0; key < 30; ++key)
        {
            const std::u16string name = u"K" + ToU16(key);
            const std::u16string englishText(texts[random() % std::size(texts)]);
            englishOwned.push_back(name + u"=" + englishText);
            const int choice = static_cast<int>(random() % 3);
            if (choice == 0)
            {
                expected[name] = englishText; // missing from the module
                continue;
            }
            const std::u16string translated(texts[random() % std::size(texts)]);
            body += name + u"=" + EscapeControlCharacters(translated) + u"\r\n";
            const std::u16string englishMarkings = ComputeMarkings(englishText);
            expected[name] = englishMarkings.empty() || englishMarkings == ComputeMarkings(translated)
                                 ? translated
                                 : englishText;
        }
        std::vector<std::u16string_view> english(englishOwned.begin(), englishOwned.end());
        CMemFileSystem fs;
        fs.Bytes(u"/r.lng") = ModuleFile(kGoodHeader, body);
        CLanguageModule module(&fs);
        ASSERT_TRUE(module.LoadModule(u"/r.lng", kApp, english));
        for (const auto& [key, text] : expected)
            EXPECT_EQ(module.GetString(key), text) << "round " << round << " key " << Utf16ToUtf8(key);
    }
}

TEST(LanguageModule, WrittenModulesLoadBack)
{
    const std::vector<std::u16string> lines{u"B=two\\nlines", u"A=one ^x"};
    CMemFileSystem fs;
    fs.Bytes(u"/w.lng") = MakeLanguageModuleFile(kApp, u"Written", u"comment", lines);
    EXPECT_EQ(fs.Bytes(u"/w.lng").substr(0, 10), std::string("\xFF\xFEP\0r\0o\0j\0", 10));
    CCapturedLog log;
    CLanguageModule module(&fs);
    ASSERT_TRUE(
        module.LoadModule(u"/w.lng", kApp, std::vector<std::u16string_view>{u"A=english ^y", u"B=x\ny"}));
    EXPECT_EQ(module.GetString(u"A"), u"one ^x");
    EXPECT_EQ(module.GetString(u"B"), u"two\nlines");
    EXPECT_TRUE(log.Lines().empty());
}

TEST(StringTemplate, ReplacesEveryTagOrLogsTheMissingOne)
{
    CCapturedLog log;
    std::u16string text = u"^N of ^N";
    EXPECT_TRUE(ReplaceTag(text, u"^N", u"^N3", u"EDITCTL_REPLACEMENT_INFO"));
    EXPECT_EQ(text, u"^N3 of ^N3") << "a value holding the tag is not replaced again";
    text = u"File not found.";
    EXPECT_FALSE(ReplaceTag(text, u"^filename", u"/a.ddb", u"ERR_FILE_DOES_NOT_EXISTS"));
    EXPECT_EQ(text, u"File not found.");
    EXPECT_EQ(log.Lines(),
              std::vector<std::u16string>{
                  u"Error: Cannot find ^filename tag in the ERR_FILE_DOES_NOT_EXISTS string resource."});

    CLanguageModule module;
    module.LoadBuiltIn(u"English (Default)",
                       std::vector<std::u16string_view>{u"ERR_X=Cannot open ^filename."});
    log.Connector().SetLanguageModule(&module);
    EXPECT_EQ(LoadLanguageStringWithTag(u"ERR_X", u"^filename", u"/b.ddb"), u"Cannot open /b.ddb.");
    log.Connector().SetLanguageModule(nullptr);
    EXPECT_EQ(LoadLanguageString(u"ERR_X"), u"ERR_X");
}
