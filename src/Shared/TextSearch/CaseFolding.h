#pragma once
// Case-insensitive comparison of UTF-16 text by simple Unicode case folding: every character maps
// to exactly one character of the same encoded length, so a folded text keeps the positions of the
// original. A surrogate pair folds as one code point; a lone surrogate stays as it is.
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

// Folds one BMP unit on its own (surrogate units unchanged).
char16_t FoldUnit(char16_t unit);
// Folds any code point (U+0000..U+10FFFF).
char32_t FoldCodePoint(char32_t codePoint);
// The folded unit at `index` of `text`, taking a surrounding surrogate pair into account.
char16_t FoldUnitAt(std::u16string_view text, size_t index);
std::u16string FoldCase(std::u16string_view text);

// The BMP units that fold to one unit: never more than four (theta, iota and Cyrillic te have the
// most).
struct SFoldingUnits
{
    static constexpr size_t Capacity = 4;

    std::array<char16_t, Capacity> units{};
    size_t count = 0;

    const char16_t* begin() const { return units.data(); }
    const char16_t* end() const { return units.data() + count; }
};

// Every non-surrogate BMP unit whose folding is `folded` (itself included when it folds to
// itself), in increasing order. Used to build search prefilters that never miss a candidate;
// allocates nothing, so a search word is cheap to prepare.
SFoldingUnits UnitsFoldingTo(char16_t folded);
