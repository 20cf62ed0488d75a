#pragma once
// The generated one-to-one case folding data (CaseFoldTable.cpp, written by
// GenerateCaseFoldTable.py). A BMP unit folds to unit + delta (modulo 2^16), where the delta comes
// from the 256-entry block selected by the unit's high byte; most blocks share the all-zero one.
// Supplementary code points fold by runs of equal deltas. Surrogate units map to themselves here.
#include <cstddef>
#include <cstdint>

namespace CaseFoldTable
{
struct SSupplementaryRun
{
    uint32_t first;
    uint32_t last;
    int32_t delta;
};

extern const uint8_t BlockIndex[256];
extern const uint16_t BlockDeltas[][256];
extern const SSupplementaryRun SupplementaryRuns[];
extern const size_t SupplementaryRunCount;
} // namespace CaseFoldTable
