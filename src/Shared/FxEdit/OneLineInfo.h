#pragma once
// One paragraph as the editor holds it: the paragraph itself plus how it is wrapped on screen.
// The wrap cache counts as valid only while it has one height per row. Copying a line or
// assigning a paragraph to it copies the paragraph only and empties the cache, so a line put
// back from elsewhere is always laid out again; moving keeps the cache (lines move when others
// are inserted or removed, and their wrapping does not change by that).
#include "Shared/RichText/RtfTextLine.h"

#include <cstdint>
#include <vector>

struct SLineLayout
{
    std::vector<int32_t> rowBreaks;  // character offsets at which rows 1..n-1 begin
    std::vector<int32_t> rowHeights; // pixels, one per row
    std::vector<int32_t> rowWidths;  // pixels of text on each row
    std::vector<int32_t> rowIndents; // pixels from the text area's left edge (alignment)
};

class COneLineInfo : public CRtfTextLine
{
public:
    static constexpr int32_t MissingRowHeight = 5;

    COneLineInfo() = default;
    explicit COneLineInfo(const CRtfTextLine& line) : CRtfTextLine(line) {}
    COneLineInfo(const COneLineInfo& other) : CRtfTextLine(other) {}
    COneLineInfo(COneLineInfo&&) noexcept = default;
    COneLineInfo& operator=(const COneLineInfo& other);
    COneLineInfo& operator=(COneLineInfo&&) noexcept = default;
    COneLineInfo& operator=(const CRtfTextLine& line);
    ~COneLineInfo() = default;

    const CRtfTextLine& Paragraph() const { return *this; }
    int32_t Length() const { return static_cast<int32_t>(Text().size()); }

    bool IsLayoutValid() const { return m_Layout.rowHeights.size() == m_Layout.rowBreaks.size() + 1; }
    const SLineLayout& Layout() const { return m_Layout; }
    void SetLayout(SLineLayout layout) { m_Layout = std::move(layout); }
    void ClearLayout() { m_Layout = SLineLayout(); }

    int32_t RowCount() const { return static_cast<int32_t>(m_Layout.rowBreaks.size()) + 1; }
    int32_t RowHeight(int32_t row) const;
    int32_t Height() const;              // all rows
    int32_t RowStart(int32_t row) const; // character offsets; rows outside give the line's ends
    int32_t RowEnd(int32_t row) const;

    // Layout positions give each row one extra place at its end, so the caret can stand at the
    // end of a wrapped row and at the start of the next one although both are one offset.
    int32_t LastLayoutPosition() const { return Length() + RowCount() - 1; }
    int32_t LayoutToOffset(int32_t position) const;
    // An offset at a row break maps to the start of the later row.
    int32_t OffsetToLayout(int32_t offset) const;
    int32_t RowOfLayoutPosition(int32_t position) const;
    int32_t RowLayoutStart(int32_t row) const { return RowStart(row) + row; }
    int32_t RowLayoutEnd(int32_t row) const { return RowEnd(row) + row; }

private:
    SLineLayout m_Layout;
};
