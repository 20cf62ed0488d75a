#include "Shared/TextSearch/TextSearch.h"

#include "Shared/Log/Log.h"
#include "Shared/TextSearch/CaseFolding.h"

#include <limits>

namespace
{
// The blanks, line breaks and the Unicode space characters a user may type between words.
bool IsQuerySpace(char16_t unit)
{
    return (unit >= 0x09 && unit <= 0x0D) || unit == 0x20 || unit == 0x85 || unit == 0xA0 || unit == 0x1680 ||
           (unit >= 0x2000 && unit <= 0x200A) || unit == 0x2028 || unit == 0x2029 || unit == 0x202F ||
           unit == 0x205F || unit == 0x3000;
}

constexpr size_t MaxPosition = size_t(std::numeric_limits<int32_t>::max());
} // namespace

CTextSearch::CTextSearch(std::u16string_view query, bool matchCase, bool wholeWords, bool boolean)
    : m_MatchCase(matchCase), m_WholeWords(wholeWords), m_Boolean(boolean)
{
    if (query.empty())
        return;
    if (boolean)
        ParseBooleanQuery(query);
    else
        AddKeyword(KeywordRequired, query);
}

void CTextSearch::ParseBooleanQuery(std::u16string_view query)
{
    int32_t kind = KeywordOptional;
    size_t wordStart = 0;
    for (size_t i = 0; i <= query.size(); ++i)
    {
        if (i == query.size() || IsQuerySpace(query[i]))
        {
            if (i > wordStart)
                AddKeyword(kind, query.substr(wordStart, i - wordStart));
            kind = KeywordOptional;
            wordStart = i + 1;
        }
        else if (query[i] == u'+' || query[i] == u'-')
        {
            kind = query[i] == u'+' ? KeywordRequired : KeywordExcluded;
            wordStart = i + 1;
        }
    }
}

void CTextSearch::AddKeyword(int32_t kind, std::u16string_view word)
{
    m_Keywords.push_back(SBooleanSearchKeyword{kind, m_MatchCase ? std::u16string(word) : FoldCase(word)});
    m_Finders.emplace_back(m_Keywords.back().word, m_MatchCase, m_WholeWords);
}

bool CTextSearch::Contains(size_t keywordIndex, std::u16string_view text) const
{
    return m_Finders[keywordIndex].Find(text) != CWordFinder::NotFound;
}

int32_t CTextSearch::Match(std::u16string_view text) const
{
    for (size_t i = 0; i < m_Keywords.size(); ++i)
    {
        if (m_Keywords[i].kind == KeywordExcluded && Contains(i, text))
            return MatchExcluded;
    }
    int32_t result = MatchNone;
    for (size_t i = 0; i < m_Keywords.size(); ++i)
    {
        const int32_t kind = m_Keywords[i].kind;
        if (kind == KeywordExcluded)
            continue;
        if (Contains(i, text))
            result = MatchFound;
        else if (kind == KeywordRequired)
            return MatchNone;
    }
    return result;
}

bool CTextSearch::Contains(std::u16string_view text, std::u16string_view word, bool matchCase,
                           bool wholeWords)
{
    return CWordFinder(word, matchCase, wholeWords).Find(text) != CWordFinder::NotFound;
}

bool CTextSearch::HasPositionableLength(std::u16string_view text)
{
    if (text.size() <= MaxPosition)
        return true;
    LogMessage(u"Error: CTextSearch::Find: the text has %llu characters, more than a position can hold.",
               static_cast<unsigned long long>(text.size()));
    return false;
}

int32_t CTextSearch::FindFrom(const CWordFinder& finder, std::u16string_view text, int32_t start)
{
    const size_t found = finder.Find(text, start < 0 ? 0 : size_t(start));
    return found == CWordFinder::NotFound ? -1 : int32_t(found);
}

int32_t CTextSearch::Find(std::u16string_view text, std::u16string_view word, bool matchCase, bool wholeWords,
                          int32_t start)
{
    if (!HasPositionableLength(text))
        return -1;
    return FindFrom(CWordFinder(word, matchCase, wholeWords), text, start);
}

int32_t CTextSearch::FindAnyCase(std::u16string_view text, std::u16string_view word, int32_t start)
{
    if (!HasPositionableLength(text))
        return -1;
    const int32_t exact = FindFrom(CWordFinder(word, true, false), text, start);
    return exact >= 0 ? exact : FindFrom(CWordFinder(word, false, false), text, start);
}
