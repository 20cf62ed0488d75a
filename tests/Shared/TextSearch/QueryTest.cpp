#include "Shared/TextSearch/TextSearch.h"

#include <gtest/gtest.h>

namespace
{
using Keywords = std::vector<std::pair<int32_t, std::u16string>>;

Keywords Parse(std::u16string_view query, bool matchCase = true, bool boolean = true)
{
    Keywords list;
    const CTextSearch search(query, matchCase, false, boolean);
    for (const SBooleanSearchKeyword& keyword : search.Keywords())
        list.emplace_back(keyword.kind, keyword.word);
    return list;
}

constexpr int32_t Req = CTextSearch::KeywordRequired;
constexpr int32_t Exc = CTextSearch::KeywordExcluded;
constexpr int32_t Opt = CTextSearch::KeywordOptional;
} // namespace

TEST(TextSearchQuery, SignsSetTheKindOfTheWordStartingAfterThem)
{
    EXPECT_EQ(Parse(u"+red -blue green"), (Keywords{{Req, u"red"}, {Exc, u"blue"}, {Opt, u"green"}}));
    EXPECT_EQ(Parse(u"abc+def"), (Keywords{{Req, u"def"}}));
    EXPECT_EQ(Parse(u"a-b"), (Keywords{{Exc, u"b"}}));
    EXPECT_EQ(Parse(u"x-y+z w"), (Keywords{{Req, u"z"}, {Opt, u"w"}}));
    EXPECT_EQ(Parse(u"-+word"), (Keywords{{Req, u"word"}}));
    EXPECT_EQ(Parse(u"well-"), Keywords{});
    // A sign followed by white space only affects the empty word, so the next word is optional.
    EXPECT_EQ(Parse(u"+ red"), (Keywords{{Opt, u"red"}}));
    EXPECT_EQ(Parse(u"AND OR NOT"), (Keywords{{Opt, u"AND"}, {Opt, u"OR"}, {Opt, u"NOT"}}));
    EXPECT_EQ(Parse(u"\"quoted words\""), (Keywords{{Opt, u"\"quoted"}, {Opt, u"words\""}}));
}

TEST(TextSearchQuery, WhiteSpaceSeparatesAndIsNeverPartOfAWord)
{
    EXPECT_EQ(Parse(u"  one\t\ttwo\r\nthree  "), (Keywords{{Opt, u"one"}, {Opt, u"two"}, {Opt, u"three"}}));
    EXPECT_EQ(Parse(u"one\u00A0two\u3000three"), (Keywords{{Opt, u"one"}, {Opt, u"two"}, {Opt, u"three"}}));
}

TEST(TextSearchQuery, EmptyAndSignOnlyQueriesHaveNoKeywords)
{
    EXPECT_EQ(Parse(u""), Keywords{});
    EXPECT_EQ(Parse(u"", true, false), Keywords{});
    EXPECT_EQ(Parse(u"   "), Keywords{});
    EXPECT_EQ(Parse(u"+ - +-"), Keywords{});
    EXPECT_EQ(CTextSearch(u"+ -", false, false, true).Match(u"anything + -"), CTextSearch::MatchNone);
}

TEST(TextSearchQuery, PlainQueryIsOnePhraseAndCaseIsFoldedWhenIgnored)
{
    EXPECT_EQ(Parse(u" Red  -Blue ", true, false), (Keywords{{Req, u" Red  -Blue "}}));
    EXPECT_EQ(Parse(u"ÄRGER Straße ΟΔΟΣ", false, false), (Keywords{{Req, u"ärger straße οδοσ"}}));
    EXPECT_EQ(Parse(u"+ÄRGER -Dog", false, true), (Keywords{{Req, u"ärger"}, {Exc, u"dog"}}));

    const CTextSearch phrase(u"red fox", false, false, false);
    EXPECT_EQ(phrase.Match(u"A RED FOX ran"), CTextSearch::MatchFound);
    EXPECT_EQ(phrase.Match(u"red and fox"), CTextSearch::MatchNone);
}

TEST(TextSearchMatch, ThreeOutcomes)
{
    const CTextSearch query(u"+red -blue green", false, false, true);
    EXPECT_EQ(query.Match(u"a red car"), CTextSearch::MatchFound);
    EXPECT_EQ(query.Match(u"RED and green"), CTextSearch::MatchFound);
    EXPECT_EQ(query.Match(u"red, green and blue"), CTextSearch::MatchExcluded);
    EXPECT_EQ(query.Match(u"blue"), CTextSearch::MatchExcluded);
    EXPECT_EQ(query.Match(u"green only"), CTextSearch::MatchNone);
    EXPECT_EQ(query.Match(u""), CTextSearch::MatchNone);

    const CTextSearch excludedOnly(u"-blue", false, false, true);
    EXPECT_EQ(excludedOnly.Match(u"red"), CTextSearch::MatchNone);
    EXPECT_EQ(excludedOnly.Match(u"blue"), CTextSearch::MatchExcluded);

    const CTextSearch optional(u"cat dog", false, false, true);
    EXPECT_EQ(optional.Match(u"a dog"), CTextSearch::MatchFound);
    EXPECT_EQ(optional.Match(u"a bird"), CTextSearch::MatchNone);

    // The excluded pass runs first even when a required word is missing.
    EXPECT_EQ(CTextSearch(u"+cat -dog", false, false, true).Match(u"dog"), CTextSearch::MatchExcluded);
    EXPECT_EQ(CTextSearch(u"", false, false, true).Match(u"anything"), CTextSearch::MatchNone);
}

TEST(TextSearchMatch, OptionsApplyToEveryKeyword)
{
    const CTextSearch caseSensitive(u"+Red -Blue", true, false, true);
    EXPECT_EQ(caseSensitive.Match(u"Red blue"), CTextSearch::MatchFound);
    EXPECT_EQ(caseSensitive.Match(u"red"), CTextSearch::MatchNone);

    const CTextSearch wholeWords(u"+cat -dog", false, true, true);
    EXPECT_EQ(wholeWords.Match(u"concatenate hotdog"), CTextSearch::MatchNone);
    EXPECT_EQ(wholeWords.Match(u"a cat, hotdogs"), CTextSearch::MatchFound);
    EXPECT_EQ(wholeWords.Match(u"a cat, a dog"), CTextSearch::MatchExcluded);
}
