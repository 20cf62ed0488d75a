#pragma once
// One paragraph as the editor holds it: the paragraph itself plus how it is wrapped on screen.
// The wrap cache counts as valid only while it has one height per row. Copying a line or
// assigning a paragraph to it copies the paragraph only and empties the cache, so a line put
// back from elsewhere is always laid out again; moving keeps the cache (lines move when others
// are inserted or removed, and their wrapping does not change by that).
#include "Shared/RichText/RtfTextLine.h"

#include <cstdint>
#include <optional>
#include <vector>

struct SLineLayout
{
    std::vector<int32_t> rowBreaks;  // character offsets at which rows 1..n-1 begin
    std::vector<int32_t> rowHeights; // pixels, one per row
    std::vector<int32_t> rowWidths;  // pixels of text on each row
    std::vector<int32_t> rowIndents; // pixels from the text area's left edge (alignment)
    // Where the text stopped mattering to each row's end: the row's break was decided by the
    // text before this offset, so a change at or after it cannot move the next row's start.
    std::vector<int32_t> rowLookahead;
};

// What a re-layout may reuse after one paragraph replaced another: the old layout, and the
// changed part. Before `changeStart` the texts and fonts are equal; from `newEnd` on the new
// paragraph equals the old one from `newEnd - delta` on. Only what affects widths counts: the
// text, the fonts, the objects' sizes and the alignment.
struct SLayoutHint
{
    SLineLayout old;
    int32_t changeStart = 0;
    int32_t newEnd = 0;
    int32_t delta = 0;
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
    void SetLayout(SLineLayout layout)
    {
        m_Layout = std::move(layout);
        m_Hint.reset();
    }
    void ClearLayout()
    {
        m_Layout = SLineLayout();
        m_Hint.reset();
    }
    // Puts `line` in place of the paragraph, keeping a hint for laying it out again from the part
    // that changed, and gives back the paragraph it replaced (moved out, not copied).
    CRtfTextLine ReplaceParagraph(CRtfTextLine line);
    const std::optional<SLayoutHint>& Hint() const { return m_Hint; }

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
    std::optional<SLayoutHint> m_Hint;
};
