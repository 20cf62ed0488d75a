#pragma once
// One search word prepared for repeated searching: the word as compared (folded when case is
// ignored), its whole-word boundary and a prefilter that tests two of its units for 16 or 32 text
// positions at a time (SSE2, or AVX2 where the processor has it) before a position is compared in full.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

class CWordFinder
{
public:
    static constexpr size_t NotFound = std::u16string_view::npos;

    CWordFinder(std::u16string_view word, bool matchCase, bool wholeWords);

    // The first acceptable occurrence at or after `start`, or NotFound. An empty word, or one
    // longer than the whole text, is never found.
    size_t Find(std::u16string_view text, size_t start = 0) const;

    const std::u16string& Word() const { return m_Word; }
    bool IsMatchCase() const { return m_MatchCase; }
    bool IsWholeWords() const { return m_WholeWords; }

    // Word characters are the ASCII letters and digits and every code from 255 up; all else
    // (Latin-1 letters included) separates words.
    static bool IsWordChar(char16_t unit) { return unit >= 255 || IsAsciiLetterOrDigit(unit); }

private:
    // A text unit passes when (unit | orMask) equals `first` or `second`.
    struct SUnitTest
    {
        uint16_t orMask = 0;
        uint16_t first = 0;
        uint16_t second = 0;
    };

    static bool IsAsciiLetterOrDigit(char16_t unit)
    {
        return (unit >= u'0' && unit <= u'9') || (unit >= u'a' && unit <= u'z') ||
               (unit >= u'A' && unit <= u'Z');
    }
    static bool BuildUnitTest(char16_t unit, bool matchCase, SUnitTest& test);

    void ChoosePrefilter();
    bool IsAcceptedAt(std::u16string_view text, size_t position) const;
    bool MatchesAt(std::u16string_view text, size_t position) const;
    bool IsWholeWordAt(std::u16string_view text, size_t position) const;
    template <bool TwoA, bool TwoB> size_t ScanVectors(std::u16string_view text, size_t& position) const;
    template <bool TwoA, bool TwoB>
    size_t ScanAvx2(std::u16string_view text, size_t& position, size_t last) const;
    template <bool TwoA, bool TwoB>
    size_t ScanSse2(std::u16string_view text, size_t& position, size_t last) const;
    size_t FindWithPrefilter(std::u16string_view text, size_t start) const;
    size_t FindByComparing(std::u16string_view text, size_t start) const;

    std::u16string m_Word;
    bool m_MatchCase;
    bool m_WholeWords;
    size_t m_BoundaryLength;
    bool m_HasPrefilter = false;
    size_t m_OffsetA = 0;
    size_t m_OffsetB = 0;
    SUnitTest m_TestA;
    SUnitTest m_TestB;
};
