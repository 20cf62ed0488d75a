#include "Shared/LanguagesMgr/LanguageLineRules.h"

#include <gtest/gtest.h>

TEST(LanguageLineRules, MarkingsCollectTagsSeparatorsControlsAndConversions)
{
    EXPECT_EQ(ComputeMarkings(u"Open ^fileName failed: %s"), u"^s");
    EXPECT_EQ(ComputeMarkings(u"Fehler %s bei ^fileName"), u"s^");
    EXPECT_EQ(ComputeMarkings(u"a|b\n\tc^d\re"), u"|\n\t^");
    EXPECT_EQ(ComputeMarkings(u"%M%D%I"), u"") << "M, D and I after % are not conversions";
    EXPECT_EQ(ComputeMarkings(u"100%% of %d"), u"% d") << "the second % takes the blank as its conversion";
    EXPECT_EQ(ComputeMarkings(u"%%d"), u"%d") << "the second % starts a new conversion";
    EXPECT_EQ(ComputeMarkings(u"%^"), u"^") << "a conversion character is collected once";
    EXPECT_EQ(ComputeMarkings(u"ends with %"), u"");
    EXPECT_EQ(ComputeMarkings(u"plain text"), u"");
}

TEST(LanguageLineRules, ReplacementsTurnEscapesIntoCharactersAndDropSingleAmpersands)
{
    EXPECT_EQ(ApplyCharacterReplacements(u"a\\nb\\rc\\td"), u"a\nb\rc\td");
    EXPECT_EQ(ApplyCharacterReplacements(u"&Open"), u"Open");
    EXPECT_EQ(ApplyCharacterReplacements(u"Save &As"), u"Save As");
    EXPECT_EQ(ApplyCharacterReplacements(u"Drag&&Drop"), u"Drag&&Drop");
    EXPECT_EQ(ApplyCharacterReplacements(u"Tom & Jerry"), u"Tom & Jerry");
    EXPECT_EQ(ApplyCharacterReplacements(u"A && B"), u"A & B");
    EXPECT_EQ(ApplyCharacterReplacements(u"mail@@host"), u"mail&&host");
    EXPECT_EQ(ApplyCharacterReplacements(u"a&&&b"), u"a&&b");
}

TEST(LanguageLineRules, EscapesAreUndoneByLoading)
{
    const std::u16string text = u"line one\nline\ttwo\r\nend";
    const std::u16string escaped = EscapeControlCharacters(text);
    EXPECT_EQ(escaped, u"line one\\nline\\ttwo\\r\\nend");
    EXPECT_EQ(ApplyCharacterReplacements(escaped), text);
}

TEST(LanguageLineRules, KeyPrefixNeedsAnEqualsSignAfterTheFirstCharacter)
{
    EXPECT_EQ(KeyPrefixOf(u"KEY=Text=more"), u"KEY=");
    EXPECT_EQ(KeyPrefixOf(u"==x"), u"==");
    EXPECT_EQ(KeyPrefixOf(u"/KEY=comment"), u"");
    EXPECT_EQ(KeyPrefixOf(u"=x"), u"");
    EXPECT_EQ(KeyPrefixOf(u"no equals"), u"");
    EXPECT_EQ(KeyPrefixOf(u""), u"");
}
