#include "Shared/TextSearch/WordFinder.h"

#include "Shared/TextSearch/CaseFolding.h"

#include <algorithm>
#include <vector>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace
{
bool IsBlankOrTab(char16_t unit)
{
    return unit == u' ' || unit == u'\t';
}

#if defined(__SSE2__)
struct SVectorTest
{
    __m128i orMask;
    __m128i first;
    __m128i second;
};

inline __m128i PassesTest(const char16_t* units, const SVectorTest& test)
{
    const __m128i value = _mm_or_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(units)), test.orMask);
    return _mm_or_si128(_mm_cmpeq_epi16(value, test.first), _mm_cmpeq_epi16(value, test.second));
}

// One bit per position p .. p+15 whose two tested units both pass.
inline uint32_t CandidateBits(const char16_t* at, size_t offsetA, size_t offsetB, const SVectorTest& a,
                              const SVectorTest& b)
{
    const __m128i low = _mm_and_si128(PassesTest(at + offsetA, a), PassesTest(at + offsetB, b));
    const __m128i high = _mm_and_si128(PassesTest(at + offsetA + 8, a), PassesTest(at + offsetB + 8, b));
    return uint32_t(_mm_movemask_epi8(_mm_packs_epi16(low, high)));
}
#endif
} // namespace

CWordFinder::CWordFinder(std::u16string_view word, bool matchCase, bool wholeWords)
    : m_Word(matchCase ? std::u16string(word) : FoldCase(word)), m_MatchCase(matchCase),
      m_WholeWords(wholeWords),
      m_BoundaryLength(!word.empty() && IsBlankOrTab(word.back()) ? word.size() - 1 : word.size())
{
    ChoosePrefilter();
}

// The prefilter tests units whose possible text forms fit one SUnitTest; when no unit of the
// word qualifies (only surrogates, or letters with many case forms) every position is compared.
bool CWordFinder::BuildUnitTest(char16_t unit, bool matchCase, SUnitTest& test)
{
    const std::vector<char16_t> forms = matchCase ? std::vector<char16_t>{unit} : UnitsFoldingTo(unit);
    if (forms.empty())
        return false;
    for (uint16_t orMask : {uint16_t(0), uint16_t(0x20)})
    {
        std::vector<uint16_t> images;
        for (char16_t form : forms)
            images.push_back(uint16_t(form | orMask));
        std::sort(images.begin(), images.end());
        images.erase(std::unique(images.begin(), images.end()), images.end());
        if (images.size() <= 2)
        {
            test = SUnitTest{orMask, images.front(), images.back()};
            return true;
        }
    }
    return false;
}

// Testing the first and the last usable unit spreads the two tests apart; a trailing blank is
// passed over because blanks are too common to filter anything out.
void CWordFinder::ChoosePrefilter()
{
    std::vector<size_t> usable;
    std::vector<SUnitTest> tests;
    for (size_t i = 0; i < m_Word.size(); ++i)
    {
        SUnitTest test;
        if (BuildUnitTest(m_Word[i], m_MatchCase, test))
        {
            usable.push_back(i);
            tests.push_back(test);
        }
    }
    if (usable.empty())
        return;
    size_t chosenB = usable.size() - 1;
    for (size_t i = usable.size(); i-- > 1;)
    {
        if (!IsBlankOrTab(m_Word[usable[i]]))
        {
            chosenB = i;
            break;
        }
    }
    m_HasPrefilter = true;
    m_OffsetA = usable.front();
    m_TestA = tests.front();
    m_OffsetB = usable[chosenB];
    m_TestB = tests[chosenB];
}

size_t CWordFinder::Find(std::u16string_view text, size_t start) const
{
    if (m_Word.empty() || m_Word.size() > text.size() || start > text.size() - m_Word.size())
        return NotFound;
    return m_HasPrefilter ? FindWithPrefilter(text, start) : FindByComparing(text, start);
}

bool CWordFinder::IsAcceptedAt(std::u16string_view text, size_t position) const
{
    return MatchesAt(text, position) && (!m_WholeWords || IsWholeWordAt(text, position));
}

bool CWordFinder::MatchesAt(std::u16string_view text, size_t position) const
{
    if (m_MatchCase)
        return text.substr(position, m_Word.size()) == m_Word;
    for (size_t i = 0; i < m_Word.size(); ++i)
    {
        if (FoldUnitAt(text, position + i) != m_Word[i])
            return false;
    }
    return true;
}

bool CWordFinder::IsWholeWordAt(std::u16string_view text, size_t position) const
{
    const size_t end = position + m_BoundaryLength;
    return (position == 0 || !IsWordChar(text[position - 1])) &&
           (end >= text.size() || !IsWordChar(text[end]));
}

size_t CWordFinder::FindWithPrefilter(std::u16string_view text, size_t start) const
{
    const size_t last = text.size() - m_Word.size();
    size_t position = start;
#if defined(__SSE2__)
    const SVectorTest a{_mm_set1_epi16(short(m_TestA.orMask)), _mm_set1_epi16(short(m_TestA.first)),
                        _mm_set1_epi16(short(m_TestA.second))};
    const SVectorTest b{_mm_set1_epi16(short(m_TestB.orMask)), _mm_set1_epi16(short(m_TestB.first)),
                        _mm_set1_epi16(short(m_TestB.second))};
    // The loads reach position + 15 + the larger offset, which stays inside the text while
    // position + 15 <= last.
    for (; position + 15 <= last; position += 16)
    {
        uint32_t bits = CandidateBits(text.data() + position, m_OffsetA, m_OffsetB, a, b);
        while (bits != 0)
        {
            const size_t candidate = position + size_t(__builtin_ctz(bits));
            if (IsAcceptedAt(text, candidate))
                return candidate;
            bits &= bits - 1;
        }
    }
#endif
    return FindByComparing(text, position);
}

size_t CWordFinder::FindByComparing(std::u16string_view text, size_t start) const
{
    const size_t last = text.size() - m_Word.size();
    for (size_t position = start; position <= last; ++position)
    {
        if (IsAcceptedAt(text, position))
            return position;
    }
    return NotFound;
}
