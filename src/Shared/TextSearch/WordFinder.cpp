#include "Shared/TextSearch/WordFinder.h"

#include "Shared/TextSearch/CaseFolding.h"

#include <algorithm>
#include <array>

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace
{
bool IsBlankOrTab(char16_t unit)
{
    return unit == u' ' || unit == u'\t';
}

#if defined(__SSE2__)
// The candidate scans run 16 (SSE2) or 32 (AVX2) positions per step. TwoA and TwoB say whether a
// unit test has a second value; with one value the second comparison is left out.
struct SSse2Test
{
    __m128i orMask;
    __m128i first;
    __m128i second;
};

template <bool Two> inline __m128i Passes128(const char16_t* units, const SSse2Test& test)
{
    const __m128i value = _mm_or_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(units)), test.orMask);
    const __m128i passes = _mm_cmpeq_epi16(value, test.first);
    if constexpr (Two)
        return _mm_or_si128(passes, _mm_cmpeq_epi16(value, test.second));
    return passes;
}

// One bit per position at .. at+15 whose two tested units both pass.
template <bool TwoA, bool TwoB>
inline uint32_t CandidateBits128(const char16_t* at, size_t offsetA, size_t offsetB, const SSse2Test& a,
                                 const SSse2Test& b)
{
    const __m128i low = _mm_and_si128(Passes128<TwoA>(at + offsetA, a), Passes128<TwoB>(at + offsetB, b));
    const __m128i high =
        _mm_and_si128(Passes128<TwoA>(at + offsetA + 8, a), Passes128<TwoB>(at + offsetB + 8, b));
    return uint32_t(_mm_movemask_epi8(_mm_packs_epi16(low, high)));
}

struct SAvx2Test
{
    __m256i orMask;
    __m256i first;
    __m256i second;
};

template <bool Two>
__attribute__((target("avx2"))) inline __m256i Passes256(const char16_t* units, const SAvx2Test& test)
{
    const __m256i value =
        _mm256_or_si256(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(units)), test.orMask);
    const __m256i passes = _mm256_cmpeq_epi16(value, test.first);
    if constexpr (Two)
        return _mm256_or_si256(passes, _mm256_cmpeq_epi16(value, test.second));
    return passes;
}

// One bit per position at .. at+31; the lane-wise pack is put back in order by the permute.
template <bool TwoA, bool TwoB>
__attribute__((target("avx2"))) inline uint32_t
CandidateBits256(const char16_t* at, size_t offsetA, size_t offsetB, const SAvx2Test& a, const SAvx2Test& b)
{
    const __m256i low = _mm256_and_si256(Passes256<TwoA>(at + offsetA, a), Passes256<TwoB>(at + offsetB, b));
    const __m256i high =
        _mm256_and_si256(Passes256<TwoA>(at + offsetA + 16, a), Passes256<TwoB>(at + offsetB + 16, b));
    const __m256i packed = _mm256_permute4x64_epi64(_mm256_packs_epi16(low, high), 0xD8);
    return uint32_t(_mm256_movemask_epi8(packed));
}

bool HasAvx2()
{
    static const bool hasAvx2 = __builtin_cpu_supports("avx2");
    return hasAvx2;
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
    SFoldingUnits forms;
    if (matchCase)
        forms.units[forms.count++] = unit;
    else
        forms = UnitsFoldingTo(unit);
    if (forms.count == 0)
        return false;
    size_t fewestImages = 3;
    for (uint16_t orMask : {uint16_t(0), uint16_t(0x20)})
    {
        std::array<uint16_t, SFoldingUnits::Capacity> images{};
        size_t imageCount = 0;
        for (char16_t form : forms)
        {
            const auto image = uint16_t(form | orMask);
            if (std::find(images.begin(), images.begin() + imageCount, image) == images.begin() + imageCount)
                images[imageCount++] = image;
        }
        if (imageCount < fewestImages)
        {
            fewestImages = imageCount;
            const auto [low, high] = std::minmax_element(images.begin(), images.begin() + imageCount);
            test = SUnitTest{orMask, *low, *high};
        }
    }
    return fewestImages <= 2;
}

// Testing the first and the last usable unit spreads the two tests apart; a trailing blank is
// passed over because blanks are too common to filter anything out.
void CWordFinder::ChoosePrefilter()
{
    size_t offsetA = 0;
    while (offsetA < m_Word.size() && !BuildUnitTest(m_Word[offsetA], m_MatchCase, m_TestA))
        ++offsetA;
    if (offsetA == m_Word.size())
        return;
    m_HasPrefilter = true;
    m_OffsetA = m_OffsetB = offsetA;
    m_TestB = m_TestA;
    for (bool blanksAllowed : {false, true})
    {
        for (size_t offsetB = m_Word.size() - 1; offsetB > offsetA; --offsetB)
        {
            SUnitTest test;
            if ((blanksAllowed || !IsBlankOrTab(m_Word[offsetB])) &&
                BuildUnitTest(m_Word[offsetB], m_MatchCase, test))
            {
                m_OffsetB = offsetB;
                m_TestB = test;
                return;
            }
        }
    }
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

#if defined(__SSE2__)
// Positions whose tested units pass are compared in full, in order. The loads of a step reach
// position + step - 1 + the larger offset, which stays inside the text while
// position + step - 1 <= last. Returns NotFound with `position` at the first unscanned position.
template <bool TwoA, bool TwoB>
__attribute__((target("avx2"))) size_t CWordFinder::ScanAvx2(std::u16string_view text, size_t& position,
                                                             size_t last) const
{
    const SAvx2Test a{_mm256_set1_epi16(short(m_TestA.orMask)), _mm256_set1_epi16(short(m_TestA.first)),
                      _mm256_set1_epi16(short(m_TestA.second))};
    const SAvx2Test b{_mm256_set1_epi16(short(m_TestB.orMask)), _mm256_set1_epi16(short(m_TestB.first)),
                      _mm256_set1_epi16(short(m_TestB.second))};
    for (; position + 31 <= last; position += 32)
    {
        uint32_t bits = CandidateBits256<TwoA, TwoB>(text.data() + position, m_OffsetA, m_OffsetB, a, b);
        for (; bits != 0; bits &= bits - 1)
        {
            const size_t candidate = position + size_t(__builtin_ctz(bits));
            if (IsAcceptedAt(text, candidate))
                return candidate;
        }
    }
    return NotFound;
}

template <bool TwoA, bool TwoB>
size_t CWordFinder::ScanSse2(std::u16string_view text, size_t& position, size_t last) const
{
    const SSse2Test a{_mm_set1_epi16(short(m_TestA.orMask)), _mm_set1_epi16(short(m_TestA.first)),
                      _mm_set1_epi16(short(m_TestA.second))};
    const SSse2Test b{_mm_set1_epi16(short(m_TestB.orMask)), _mm_set1_epi16(short(m_TestB.first)),
                      _mm_set1_epi16(short(m_TestB.second))};
    for (; position + 15 <= last; position += 16)
    {
        uint32_t bits = CandidateBits128<TwoA, TwoB>(text.data() + position, m_OffsetA, m_OffsetB, a, b);
        for (; bits != 0; bits &= bits - 1)
        {
            const size_t candidate = position + size_t(__builtin_ctz(bits));
            if (IsAcceptedAt(text, candidate))
                return candidate;
        }
    }
    return NotFound;
}

template <bool TwoA, bool TwoB>
size_t CWordFinder::ScanVectors(std::u16string_view text, size_t& position) const
{
    const size_t last = text.size() - m_Word.size();
    if (HasAvx2())
    {
        const size_t found = ScanAvx2<TwoA, TwoB>(text, position, last);
        if (found != NotFound)
            return found;
    }
    return ScanSse2<TwoA, TwoB>(text, position, last);
}
#endif

size_t CWordFinder::FindWithPrefilter(std::u16string_view text, size_t start) const
{
    size_t position = start;
#if defined(__SSE2__)
    const bool twoA = m_TestA.first != m_TestA.second;
    const bool twoB = m_TestB.first != m_TestB.second;
    const size_t found =
        twoA ? (twoB ? ScanVectors<true, true>(text, position) : ScanVectors<true, false>(text, position))
             : (twoB ? ScanVectors<false, true>(text, position) : ScanVectors<false, false>(text, position));
    if (found != NotFound)
        return found;
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
