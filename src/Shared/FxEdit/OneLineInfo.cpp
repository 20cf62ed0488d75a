#include "Shared/FxEdit/OneLineInfo.h"

#include <algorithm>
#include <cstring>
#include <numeric>

COneLineInfo& COneLineInfo::operator=(const COneLineInfo& other)
{
    if (this != &other)
    {
        CRtfTextLine::operator=(other);
        ClearLayout();
    }
    return *this;
}

COneLineInfo& COneLineInfo::operator=(const CRtfTextLine& line)
{
    CRtfTextLine::operator=(line);
    ClearLayout();
    return *this;
}

namespace
{
bool SameFontBlock(const CRtfTextBlockInfo& a, const CRtfTextBlockInfo& b, int32_t shift)
{
    return a.Start() + shift == b.Start() && a.Font() == b.Font();
}

bool SameObjectSize(const CRtfObjectInfo& a, const CRtfObjectInfo& b, int32_t shift)
{
    return a.Position() + shift == b.Position() && a.Type() == b.Type() && a.Param1() == b.Param1() &&
           a.Param2() == b.Param2() && a.Picture().has_value() == b.Picture().has_value() &&
           (!a.Picture() || a.Picture()->Header().width == b.Picture()->Header().width) &&
           (!a.Picture() || a.Picture()->Header().height == b.Picture()->Header().height);
}

std::vector<CRtfTextBlockInfo> FontBlocks(const CRtfTextLine& line)
{
    std::vector<CRtfTextBlockInfo> blocks;
    for (const CRtfTextBlockInfo& block : line.Blocks())
        if (block.HasFont())
            blocks.push_back(block);
    return blocks;
}

// Long paragraphs are compared in blocks with memcmp, which is many times faster than a loop
// over single units; only the block that differs is searched unit by unit.
constexpr size_t CompareBlockUnits = 2048;

size_t CommonPrefix(const char16_t* a, const char16_t* b, size_t count)
{
    size_t done = 0;
    while (done + CompareBlockUnits <= count &&
           std::memcmp(a + done, b + done, CompareBlockUnits * sizeof(char16_t)) == 0)
        done += CompareBlockUnits;
    while (done < count && a[done] == b[done])
        ++done;
    return done;
}

// The number of equal units before `aEnd` and `bEnd`, at most `count`.
size_t CommonSuffix(const char16_t* aEnd, const char16_t* bEnd, size_t count)
{
    size_t done = 0;
    while (done + CompareBlockUnits <= count &&
           std::memcmp(aEnd - done - CompareBlockUnits, bEnd - done - CompareBlockUnits,
                       CompareBlockUnits * sizeof(char16_t)) == 0)
        done += CompareBlockUnits;
    while (done < count &&
           aEnd[-1 - static_cast<std::ptrdiff_t>(done)] == bEnd[-1 - static_cast<std::ptrdiff_t>(done)])
        ++done;
    return done;
}

// Every element is equal before the change or equal (shifted) after it; anything that changed
// in between makes the hint unusable.
template <class T, class Same, class Position>
bool OnlyShifted(const std::vector<T>& before, const std::vector<T>& after, int32_t changeStart,
                 int32_t oldEnd, int32_t newEnd, int32_t delta, Same same, Position position)
{
    size_t head = 0;
    while (head < before.size() && head < after.size() && position(before[head]) < changeStart &&
           same(before[head], after[head], 0))
        ++head;
    size_t tail = 0;
    while (tail < before.size() - head && tail < after.size() - head &&
           position(before[before.size() - 1 - tail]) >= oldEnd &&
           position(after[after.size() - 1 - tail]) >= newEnd &&
           same(before[before.size() - 1 - tail], after[after.size() - 1 - tail], delta))
        ++tail;
    return head + tail == before.size() && head + tail == after.size();
}
} // namespace

CRtfTextLine COneLineInfo::ReplaceParagraph(CRtfTextLine line)
{
    std::optional<SLayoutHint> hint;
    if (IsLayoutValid() && line.Alignment() == Alignment())
    {
        const std::u16string& before = Text();
        const std::u16string& after = line.Text();
        const size_t shorter = std::min(before.size(), after.size());
        const auto prefix = static_cast<int32_t>(CommonPrefix(before.data(), after.data(), shorter));
        const auto suffix =
            static_cast<int32_t>(CommonSuffix(before.data() + before.size(), after.data() + after.size(),
                                              shorter - static_cast<size_t>(prefix)));
        const int32_t delta = static_cast<int32_t>(after.size()) - static_cast<int32_t>(before.size());
        const int32_t oldEnd = static_cast<int32_t>(before.size()) - suffix;
        const int32_t newEnd = static_cast<int32_t>(after.size()) - suffix;
        const bool fontsShifted =
            OnlyShifted(FontBlocks(*this), FontBlocks(line), prefix, oldEnd, newEnd, delta, SameFontBlock,
                        [](const CRtfTextBlockInfo& block) { return block.Start(); });
        const bool objectsShifted =
            OnlyShifted(Objects(), line.Objects(), prefix, oldEnd, newEnd, delta, SameObjectSize,
                        [](const CRtfObjectInfo& object) { return object.Position(); });
        if (fontsShifted && objectsShifted)
            hint = SLayoutHint{std::move(m_Layout), prefix, newEnd, delta};
    }
    CRtfTextLine old = std::move(static_cast<CRtfTextLine&>(*this));
    static_cast<CRtfTextLine&>(*this) = std::move(line);
    ClearLayout();
    m_Hint = std::move(hint);
    return old;
}

int32_t COneLineInfo::RowHeight(int32_t row) const
{
    if (row < 0 || static_cast<size_t>(row) >= m_Layout.rowHeights.size())
        return MissingRowHeight;
    return m_Layout.rowHeights[static_cast<size_t>(row)];
}

int32_t COneLineInfo::Height() const
{
    if (!IsLayoutValid())
        return MissingRowHeight * RowCount();
    return std::accumulate(m_Layout.rowHeights.begin(), m_Layout.rowHeights.end(), 0);
}

int32_t COneLineInfo::RowStart(int32_t row) const
{
    if (row <= 0)
        return 0;
    if (row > static_cast<int32_t>(m_Layout.rowBreaks.size()))
        return Length();
    return m_Layout.rowBreaks[static_cast<size_t>(row - 1)];
}

int32_t COneLineInfo::RowEnd(int32_t row) const
{
    if (row < 0)
        return 0;
    if (row >= static_cast<int32_t>(m_Layout.rowBreaks.size()))
        return Length();
    return m_Layout.rowBreaks[static_cast<size_t>(row)];
}

int32_t COneLineInfo::RowOfLayoutPosition(int32_t position) const
{
    // Row r begins at layout position RowStart(r) + r, which grows strictly with r.
    int32_t low = 0;
    int32_t high = RowCount() - 1;
    while (low < high)
    {
        const int32_t mid = (low + high + 1) / 2;
        if (RowLayoutStart(mid) <= position)
            low = mid;
        else
            high = mid - 1;
    }
    return low;
}

int32_t COneLineInfo::LayoutToOffset(int32_t position) const
{
    if (position <= 0)
        return 0;
    const int32_t row = RowOfLayoutPosition(position);
    return std::min(RowStart(row) + (position - RowLayoutStart(row)), RowEnd(row));
}

int32_t COneLineInfo::OffsetToLayout(int32_t offset) const
{
    offset = std::clamp(offset, 0, Length());
    const auto& breaks = m_Layout.rowBreaks;
    const auto before = std::upper_bound(breaks.begin(), breaks.end(), offset) - breaks.begin();
    return offset + static_cast<int32_t>(before);
}
