#include "Shared/FxEdit/OneLineInfo.h"

#include <algorithm>
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
