#include "Shared/TextSearch/CaseFolding.h"
#include "Shared/TextSearch/TextSearch.h"

#include <gtest/gtest.h>

#include <random>

namespace
{
int32_t FindWhole(std::u16string_view text, std::u16string_view word, bool matchCase = false)
{
    return CTextSearch::Find(text, word, matchCase, true, 0);
}

// The straightforward definition: fold both texts completely, then compare at every position.
size_t ModelFind(std::u16string_view text, std::u16string_view word, bool matchCase, bool wholeWords,
                 size_t start)
{
    if (word.empty() || word.size() > text.size())
        return CWordFinder::NotFound;
    const std::u16string foldedText = matchCase ? std::u16string(text) : FoldCase(text);
    const std::u16string foldedWord = matchCase ? std::u16string(word) : FoldCase(word);
    const size_t boundary = (word.back() == u' ' || word.back() == u'\t') ? word.size() - 1 : word.size();
    for (size_t p = start; p + word.size() <= text.size(); ++p)
    {
        if (foldedText.compare(p, word.size(), foldedWord) != 0)
            continue;
        const bool before = p == 0 || !CWordFinder::IsWordChar(text[p - 1]);
        const bool after = p + boundary >= text.size() || !CWordFinder::IsWordChar(text[p + boundary]);
        if (!wholeWords || (before && after))
            return p;
    }
    return CWordFinder::NotFound;
}
} // namespace

TEST(TextSearchFind, WholeWordsAtEdgesAndSeparators)
{
    EXPECT_EQ(FindWhole(u"a cat.", u"cat"), 2);
    EXPECT_EQ(FindWhole(u"concatenate", u"cat"), -1);
    EXPECT_EQ(FindWhole(u"cat", u"cat"), 0);
    EXPECT_EQ(FindWhole(u"cats cat", u"cat"), 5);
    EXPECT_EQ(FindWhole(u"bobcat", u"cat"), -1);
    EXPECT_EQ(FindWhole(u"(cat)", u"cat"), 1);
    EXPECT_EQ(FindWhole(u"cat_cat", u"cat"), 0);
    EXPECT_EQ(FindWhole(u"1cat cat2 cat", u"cat"), 10);
    EXPECT_EQ(FindWhole(u"x\tCAT\n", u"cat"), 2);
    EXPECT_EQ(FindWhole(u"x\tCAT\n", u"cat", true), -1);
}

TEST(TextSearchFind, WholeWordsNextToLatin1AndOtherScripts)
{
    // Latin-1 letters separate words; everything from 255 up is a word character.
    EXPECT_EQ(FindWhole(u"\u00E9cat", u"cat"), 1);
    EXPECT_EQ(FindWhole(u"cat\u00E9", u"cat"), 0);
    EXPECT_EQ(FindWhole(u"\u00FEcat", u"cat"), 1);
    EXPECT_EQ(FindWhole(u"\u00FFcat", u"cat"), -1);
    EXPECT_EQ(FindWhole(u"\u0436cat", u"cat"), -1);
    EXPECT_EQ(FindWhole(u"cat\u4E2D", u"cat"), -1);
    EXPECT_EQ(FindWhole(u"\u0436\u0430\u0440 \u0416\u0410\u0420", u"\u0436\u0430\u0440"), 0);
    EXPECT_EQ(FindWhole(u"\u0436\u0430\u0440\u0430", u"\u0436\u0430\u0440"), -1);
}

TEST(TextSearchFind, TrailingBlankIsSearchedButNotPartOfTheBoundary)
{
    EXPECT_EQ(FindWhole(u"cats cat dog", u"cat "), 5);
    EXPECT_EQ(FindWhole(u"bobcat dog", u"cat "), -1);
    EXPECT_EQ(FindWhole(u"cat", u"cat "), -1);
    EXPECT_EQ(FindWhole(u"cat\tx", u"cat\t"), 0);
    // The boundary test happens after the last letter, which is the blank itself.
    EXPECT_EQ(FindWhole(u"a cat x", u"cat "), 2);
    EXPECT_EQ(FindWhole(u"a cat  x", u"cat  "), 2);
    EXPECT_EQ(FindWhole(u"a cat x", u"a c"), -1);
}

TEST(TextSearchFind, StartEmptyAndOverlongWords)
{
    EXPECT_EQ(CTextSearch::Find(u"abcabc", u"abc", true, false, 0), 0);
    EXPECT_EQ(CTextSearch::Find(u"abcabc", u"abc", true, false, 1), 3);
    EXPECT_EQ(CTextSearch::Find(u"abcabc", u"abc", true, false, 4), -1);
    EXPECT_EQ(CTextSearch::Find(u"abcabc", u"abc", true, false, 100), -1);
    EXPECT_EQ(CTextSearch::Find(u"abcabc", u"abc", true, false, -5), 0);
    EXPECT_EQ(CTextSearch::Find(u"abc", u"", false, false, 0), -1);
    EXPECT_EQ(CTextSearch::Find(u"", u"a", false, false, 0), -1);
    EXPECT_EQ(CTextSearch::Find(u"abc", u"abcd", false, false, 0), -1);
    EXPECT_TRUE(CTextSearch::Contains(u"Hello World", u"WORLD", false, true));
    EXPECT_FALSE(CTextSearch::Contains(u"Hello World", u"WORLD", true, false));
}

TEST(TextSearchFind, AnyCasePrefersTheExactSpelling)
{
    EXPECT_EQ(CTextSearch::FindAnyCase(u"Word word", u"word", 0), 5);
    EXPECT_EQ(CTextSearch::FindAnyCase(u"Word WORD", u"word", 0), 0);
    EXPECT_EQ(CTextSearch::FindAnyCase(u"Word WORD", u"word", 1), 5);
    EXPECT_EQ(CTextSearch::FindAnyCase(u"password", u"WORD", 0), 4); // no whole-word rule
    EXPECT_EQ(CTextSearch::FindAnyCase(u"abc", u"x", 0), -1);
}

TEST(TextSearchFind, CaseInsensitiveBeyondAscii)
{
    EXPECT_EQ(CTextSearch::Find(u"\u041C\u041E\u0421\u041A\u0412\u0410",
                                u"\u043C\u043E\u0441\u043A\u0432\u0430", false, false, 0),
              0);
    EXPECT_EQ(CTextSearch::Find(u"\u1F4C\u0394\u039F\u03A3", u"\u1F44\u03B4\u03BF\u03C2", false, false, 0),
              0);
    EXPECT_EQ(CTextSearch::Find(u"THE \u212AELVIN", u"kelvin", false, true, 0), 4);
    EXPECT_EQ(CTextSearch::Find(u"GRO\u1E9EE", u"gro\u00DFe", false, false, 0), 0);
    EXPECT_EQ(CTextSearch::Find(u"x\U00010400y", u"\U00010428", false, false, 0), 1);
    EXPECT_EQ(CTextSearch::Find(u"x\U00010400y", u"\U00010428", true, false, 0), -1);
    // Long enough for the vector scan to run over the match.
    const std::u16string text = std::u16string(40, u'.') + u"\u00C9T\u00C9 " + std::u16string(40, u'.');
    EXPECT_EQ(CTextSearch::Find(text, u"\u00E9t\u00E9", false, true, 0), 40);
}

// Random texts over an alphabet rich in case variants, blanks, separators and surrogates; each
// search is checked against the plain definition at several start positions.
TEST(TextSearchFind, RandomSearchesAgreeWithModel)
{
    const std::u16string alphabet =
        u"aAbBkK\u212As\u017FS \t.,\u00E9\u00C9\u00FF\u0178\u03C3\u03C2\u03A3\u03B8\u03D1\u0398\u0436\u0416"
        u"\u4E2D\xD801\xDC00\xDC28\xD801";
    std::mt19937 random(20240611);
    auto pick = [&](size_t size)
    {
        std::u16string text;
        for (size_t i = 0; i < size; ++i)
            text += alphabet[random() % alphabet.size()];
        return text;
    };
    for (int round = 0; round < 4000; ++round)
    {
        const std::u16string text = pick(random() % 120);
        std::u16string word;
        if (!text.empty() && random() % 3 != 0)
        {
            const size_t from = random() % text.size();
            word = text.substr(from, 1 + random() % 5);
            if (random() % 2 == 0)
                word = FoldCase(word);
        }
        else
            word = pick(1 + random() % 3);
        const bool matchCase = random() % 2 == 0;
        const bool wholeWords = random() % 2 == 0;
        const CWordFinder finder(word, matchCase, wholeWords);
        for (size_t start : {size_t(0), size_t(random() % (text.size() + 2))})
            ASSERT_EQ(finder.Find(text, start), ModelFind(text, word, matchCase, wholeWords, start))
                << "round " << round << " start " << start;
    }
}
