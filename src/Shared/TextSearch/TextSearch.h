#pragma once
// The one text matcher used by the global search and by the editor's find and replace: a parsed
// query and its three options. A CTextSearch is built per search and read-only afterwards, so
// one object may be shared by several threads.
#include "Shared/TextSearch/WordFinder.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct SBooleanSearchKeyword
{
    int32_t kind = 2;    // CTextSearch::EKeywordKind
    std::u16string word; // folded when the search ignores case
};

class CTextSearch
{
public:
    enum EKeywordKind : int32_t
    {
        KeywordRequired = 0, // written "+word"
        KeywordExcluded = 1, // written "-word"
        KeywordOptional = 2  // written "word"
    };
    enum EMatchResult : int32_t
    {
        MatchFound = 0,
        MatchExcluded = 1, // an excluded word occurs
        MatchNone = 2
    };

    // An empty query gives no keywords. A plain query is one required keyword holding the whole
    // text, blanks included. A boolean query is split at white space; "+" and "-" set the kind
    // of the word that starts right after them, wherever they stand ("abc+def" is "+def").
    CTextSearch(std::u16string_view query, bool matchCase, bool wholeWords, bool boolean);

    // No excluded word, every required word and at least one required or optional word give
    // MatchFound; any excluded word gives MatchExcluded first; a query without keywords, or of
    // excluded words only, never gives MatchFound.
    int32_t Match(std::u16string_view text) const;

    bool IsMatchCase() const { return m_MatchCase; }
    bool IsWholeWords() const { return m_WholeWords; }
    bool IsBoolean() const { return m_Boolean; }
    const std::vector<SBooleanSearchKeyword>& Keywords() const { return m_Keywords; }

    // True when Find from position 0 gives a position; works on texts of any length.
    static bool Contains(std::u16string_view text, std::u16string_view word, bool matchCase, bool wholeWords);
    // The first acceptable occurrence at or after `start` (a negative start counts as 0), or -1.
    // With whole words an occurrence needs a separator or the text's edge on both sides; a
    // trailing blank or tab of the word is searched for but the boundary is tested before it.
    static int32_t Find(std::u16string_view text, std::u16string_view word, bool matchCase, bool wholeWords,
                        int32_t start);
    // A case-sensitive search first; when it finds nothing, a case-insensitive one from the same
    // start. Neither uses the whole-word rule.
    static int32_t FindAnyCase(std::u16string_view text, std::u16string_view word, int32_t start);

private:
    void ParseBooleanQuery(std::u16string_view query);
    void AddKeyword(int32_t kind, std::u16string_view word);
    bool Contains(size_t keywordIndex, std::u16string_view text) const;
    // Positions are 32-bit; a longer text is refused with one log line.
    static bool HasPositionableLength(std::u16string_view text);
    static int32_t FindFrom(const CWordFinder& finder, std::u16string_view text, int32_t start);

    bool m_MatchCase;
    bool m_WholeWords;
    bool m_Boolean;
    std::vector<SBooleanSearchKeyword> m_Keywords;
    std::vector<CWordFinder> m_Finders; // one per keyword, same order
};
