// Query and text from the input: byte 0 holds the options (bit 0 match case, bit 1 whole words,
// bit 2 boolean), byte 1 the query length in UTF-16 units, then the query and the text as
// UTF-16LE. Every search must agree with the plain definition on fully folded copies.
#include "Shared/TextSearch/CaseFolding.h"
#include "Shared/TextSearch/TextSearch.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace
{
std::u16string UnitsFrom(const uint8_t* data, size_t units)
{
    std::u16string text(units, u'\0');
    for (size_t i = 0; i < units; ++i)
        text[i] = char16_t(data[2 * i] | (data[2 * i + 1] << 8));
    return text;
}

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

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2)
        return 0;
    const bool matchCase = data[0] & 1;
    const bool wholeWords = data[0] & 2;
    const bool boolean = data[0] & 4;
    const size_t units = (size - 2) / 2;
    const size_t queryUnits = std::min<size_t>(data[1], units);
    const std::u16string query = UnitsFrom(data + 2, queryUnits);
    const std::u16string text = UnitsFrom(data + 2 + 2 * queryUnits, units - queryUnits);

    const CTextSearch search(query, matchCase, wholeWords, boolean);
    const int32_t result = search.Match(text);
    if (result < 0 || result > 2 || (search.Keywords().empty() && result != CTextSearch::MatchNone))
        __builtin_trap();
    for (const SBooleanSearchKeyword& keyword : search.Keywords())
    {
        if (keyword.word.empty())
            __builtin_trap();
    }

    const CWordFinder finder(query, matchCase, wholeWords);
    size_t start = 0;
    for (int step = 0; step < 4; ++step)
    {
        const size_t found = finder.Find(text, start);
        if (found != ModelFind(text, query, matchCase, wholeWords, start))
            __builtin_trap();
        if (found == CWordFinder::NotFound)
            break;
        start = found + 1;
    }
    const int32_t anyCase = CTextSearch::FindAnyCase(text, query, 0);
    if (anyCase < -1 || (anyCase >= 0 && size_t(anyCase) + query.size() > text.size()))
        __builtin_trap();
    return 0;
}
