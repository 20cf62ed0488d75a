#include "Shared/TextSearch/CaseFolding.h"

#include "Shared/TextSearch/CaseFoldTable.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace
{
bool IsHighSurrogate(char16_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLowSurrogate(char16_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

char32_t CombineSurrogates(char16_t high, char16_t low)
{
    return 0x10000 + ((char32_t(high) - 0xD800) << 10) + (char32_t(low) - 0xDC00);
}

char16_t HighSurrogateOf(char32_t codePoint)
{
    return char16_t(0xD800 + ((codePoint - 0x10000) >> 10));
}

char16_t LowSurrogateOf(char32_t codePoint)
{
    return char16_t(0xDC00 + ((codePoint - 0x10000) & 0x3FF));
}

// (folded, original) for every unit that folding changes, sorted by the folded unit.
const std::vector<std::pair<char16_t, char16_t>>& ChangedUnitsByFolding()
{
    static const std::vector<std::pair<char16_t, char16_t>> pairs = []
    {
        std::vector<std::pair<char16_t, char16_t>> list;
        for (uint32_t unit = 0; unit <= 0xFFFF; ++unit)
        {
            const char16_t folded = FoldUnit(char16_t(unit));
            if (folded != unit)
                list.emplace_back(folded, char16_t(unit));
        }
        std::sort(list.begin(), list.end());
        return list;
    }();
    return pairs;
}
} // namespace

char16_t FoldUnit(char16_t unit)
{
    const uint8_t block = CaseFoldTable::BlockIndex[unit >> 8];
    return char16_t(unit + CaseFoldTable::BlockDeltas[block][unit & 0xFF]);
}

char32_t FoldCodePoint(char32_t codePoint)
{
    if (codePoint <= 0xFFFF)
        return FoldUnit(char16_t(codePoint));
    const CaseFoldTable::SSupplementaryRun* runs = CaseFoldTable::SupplementaryRuns;
    const CaseFoldTable::SSupplementaryRun* end = runs + CaseFoldTable::SupplementaryRunCount;
    const auto* run =
        std::upper_bound(runs, end, codePoint,
                         [](char32_t cp, const CaseFoldTable::SSupplementaryRun& r) { return cp < r.first; });
    if (run == runs)
        return codePoint;
    --run;
    return codePoint <= run->last ? char32_t(int64_t(codePoint) + run->delta) : codePoint;
}

char16_t FoldUnitAt(std::u16string_view text, size_t index)
{
    const char16_t unit = text[index];
    if (IsHighSurrogate(unit) && index + 1 < text.size() && IsLowSurrogate(text[index + 1]))
        return HighSurrogateOf(FoldCodePoint(CombineSurrogates(unit, text[index + 1])));
    if (IsLowSurrogate(unit) && index > 0 && IsHighSurrogate(text[index - 1]))
        return LowSurrogateOf(FoldCodePoint(CombineSurrogates(text[index - 1], unit)));
    return FoldUnit(unit);
}

std::u16string FoldCase(std::u16string_view text)
{
    std::u16string folded(text.size(), u'\0');
    for (size_t i = 0; i < text.size(); ++i)
        folded[i] = FoldUnitAt(text, i);
    return folded;
}

SFoldingUnits UnitsFoldingTo(char16_t folded)
{
    SFoldingUnits result;
    if (IsHighSurrogate(folded) || IsLowSurrogate(folded))
        return result;
    if (FoldUnit(folded) == folded)
        result.units[result.count++] = folded;
    const auto& pairs = ChangedUnitsByFolding();
    auto range = std::equal_range(pairs.begin(), pairs.end(), std::make_pair(folded, char16_t(0)),
                                  [](const auto& a, const auto& b) { return a.first < b.first; });
    // Inserted in order: at most four units, so no sort is needed.
    for (auto it = range.first; it != range.second && result.count < SFoldingUnits::Capacity; ++it)
    {
        size_t at = result.count++;
        for (; at > 0 && result.units[at - 1] > it->second; --at)
            result.units[at] = result.units[at - 1];
        result.units[at] = it->second;
    }
    return result;
}
