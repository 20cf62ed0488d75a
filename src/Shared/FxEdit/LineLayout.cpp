#include "Shared/FxEdit/LineLayout.h"

#include <algorithm>
#include <array>

namespace
{
constexpr int32_t AttachmentIconSize = 32;

class CRowBuilder
{
public:
    CRowBuilder(const CRtfTextLine& line, const SLineLayoutContext& context)
        : m_Line(line), m_Context(context)
    {
    }

    SLineLayout Build(const SLayoutHint* hint);

private:
    struct SPiece
    {
        int32_t start = 0;
        int32_t end = 0;
        int32_t width = 0;
        int32_t fitWidth = 0; // without hanging white space
        int32_t height = 0;
        bool breakAfter = false;
        bool single = false; // a tab or an object: never cut
    };

    void StartFontRun(int32_t offset);
    int32_t NextFontChange(int32_t offset) const;
    SPiece NextPiece(int32_t start, int32_t limit);
    void MeasureTab(SPiece& piece) const;
    void Place(const SPiece& piece);
    void PlacePiece(SPiece piece);
    int32_t LongestFittingPrefix(const SPiece& piece);
    void FinishRow(int32_t breakOffset, int32_t width, int32_t height, int32_t lookahead);
    void WrapAtLastBreak(int32_t lookahead);
    int32_t ReusableRowStart(const SLayoutHint& hint);
    bool ResyncWithOld(int32_t rowStart);
    void ComputeIndents();

    const CRtfTextLine& m_Line;
    const SLineLayoutContext& m_Context;
    SLineLayout m_Out;
    const SLayoutHint* m_Hint = nullptr;
    bool m_Resynced = false;
    SFontDescription m_Font;
    int32_t m_SpaceWidth = 0;
    int32_t m_FontHeight = 0;
    size_t m_NextBlock = 0;

    int32_t m_RowStart = 0;
    int32_t m_X = 0;
    int32_t m_LastBreak = -1;
    int32_t m_WidthAfterBreak = 0;
    int32_t m_HeightUpToBreak = 0;
    int32_t m_HeightAfterBreak = 0;
};

void CRowBuilder::StartFontRun(int32_t offset)
{
    const auto& blocks = m_Line.Blocks();
    while (m_NextBlock < blocks.size() && blocks[m_NextBlock].Start() <= offset)
    {
        if (blocks[m_NextBlock].HasFont())
            m_Font = *blocks[m_NextBlock].Font();
        ++m_NextBlock;
    }
    const SFxExtent space = m_Context.host->MeasureText(u" ", m_Font);
    m_SpaceWidth = space.width;
    m_FontHeight = space.height;
}

int32_t CRowBuilder::NextFontChange(int32_t offset) const
{
    const auto& blocks = m_Line.Blocks();
    for (size_t i = m_NextBlock; i < blocks.size(); ++i)
        if (blocks[i].HasFont() && blocks[i].Start() > offset)
            return blocks[i].Start();
    return static_cast<int32_t>(m_Line.Text().size());
}

CRowBuilder::SPiece CRowBuilder::NextPiece(int32_t start, int32_t limit)
{
    const std::u16string& text = m_Line.Text();
    SPiece piece;
    piece.start = start;
    piece.height = m_FontHeight;
    const char16_t first = text[static_cast<size_t>(start)];
    if (first == u'\t' || first == CRtfObjectInfo::ObjectCharacter)
    {
        piece.end = start + 1;
        piece.single = true;
        piece.breakAfter = true;
        if (first == u'\t')
            return piece; // measured when placed: its width depends on where it stands
        if (const CRtfObjectInfo* object = m_Line.FindObject(start))
        {
            const SFxExtent extent = ObjectExtent(*object);
            piece.width = piece.fitWidth = extent.width;
            piece.height = std::max(extent.height, 1);
            return piece;
        }
    }
    int32_t end = start;
    while (end < limit)
    {
        const char16_t c = text[static_cast<size_t>(end)];
        if (end > start && (c == u'\t' || c == CRtfObjectInfo::ObjectCharacter))
            break;
        ++end;
        if (IsWrapOpportunity(c))
        {
            piece.breakAfter = true;
            break;
        }
    }
    piece.end = end;
    const SFxExtent extent = m_Context.host->MeasureText(
        std::u16string_view(text).substr(static_cast<size_t>(start), end - start), m_Font);
    piece.width = extent.width;
    piece.height = std::max(extent.height, m_FontHeight);
    piece.fitWidth = IsFxWhiteSpace(text[static_cast<size_t>(end - 1)])
                         ? std::max(0, extent.width - m_SpaceWidth)
                         : extent.width;
    return piece;
}

void CRowBuilder::MeasureTab(SPiece& piece) const
{
    const int32_t stop = std::max(1, m_Context.tabStopWidth);
    piece.width = stop - m_X % stop;
    piece.fitWidth = 0; // a tab hangs like other white space
}

void CRowBuilder::Place(const SPiece& piece)
{
    m_X += piece.width;
    m_WidthAfterBreak += piece.width;
    m_HeightAfterBreak = std::max(m_HeightAfterBreak, piece.height);
    if (piece.breakAfter)
    {
        m_LastBreak = piece.end;
        m_HeightUpToBreak = std::max(m_HeightUpToBreak, m_HeightAfterBreak);
        m_HeightAfterBreak = 0;
        m_WidthAfterBreak = 0;
    }
}

void CRowBuilder::FinishRow(int32_t breakOffset, int32_t width, int32_t height, int32_t lookahead)
{
    m_Out.rowBreaks.push_back(breakOffset);
    m_Out.rowWidths.push_back(width);
    m_Out.rowHeights.push_back(height > 0 ? height : m_FontHeight);
    m_Out.rowLookahead.push_back(lookahead);
    m_RowStart = breakOffset;
    m_LastBreak = -1;
    m_HeightUpToBreak = 0;
    if (m_Hint != nullptr && ResyncWithOld(breakOffset))
        m_Resynced = true;
}

void CRowBuilder::WrapAtLastBreak(int32_t lookahead)
{
    const int32_t carriedWidth = m_WidthAfterBreak;
    const int32_t carriedHeight = m_HeightAfterBreak;
    FinishRow(m_LastBreak, m_X - carriedWidth, m_HeightUpToBreak, lookahead);
    m_X = carriedWidth;
    m_WidthAfterBreak = carriedWidth;
    m_HeightAfterBreak = carriedHeight;
}

int32_t CRowBuilder::LongestFittingPrefix(const SPiece& piece)
{
    const std::u16string_view text(m_Line.Text());
    int32_t low = 1; // at least one character per row
    int32_t high = piece.end - piece.start - 1;
    while (low < high)
    {
        const int32_t mid = (low + high + 1) / 2;
        const int32_t width =
            m_Context.host
                ->MeasureText(text.substr(static_cast<size_t>(piece.start), static_cast<size_t>(mid)), m_Font)
                .width;
        if (width <= m_Context.width)
            low = mid;
        else
            high = mid - 1;
    }
    return low;
}

void CRowBuilder::PlacePiece(SPiece piece)
{
    while (piece.start < piece.end && !m_Resynced)
    {
        if (piece.single && m_Line.Text()[static_cast<size_t>(piece.start)] == u'\t')
            MeasureTab(piece);
        if (m_Context.width <= 0 || piece.fitWidth == 0 || m_X + piece.fitWidth <= m_Context.width)
        {
            Place(piece);
            return;
        }
        // Finding where the overflowing piece ends may have read the character after it.
        const int32_t lookahead = piece.end + 1;
        if (m_LastBreak > m_RowStart)
        {
            WrapAtLastBreak(lookahead);
            continue;
        }
        if (m_X > 0)
        {
            FinishRow(piece.start, m_X, std::max(m_HeightUpToBreak, m_HeightAfterBreak), lookahead);
            m_X = 0;
            m_WidthAfterBreak = 0;
            m_HeightAfterBreak = 0;
            continue;
        }
        if (piece.single || piece.end - piece.start == 1)
        {
            Place(piece);
            return;
        }
        const int32_t prefix = LongestFittingPrefix(piece);
        SPiece head = piece;
        head.end = piece.start + prefix;
        head.breakAfter = false;
        const std::u16string_view text(m_Line.Text());
        head.width = head.fitWidth =
            m_Context.host
                ->MeasureText(text.substr(static_cast<size_t>(head.start), static_cast<size_t>(prefix)),
                              m_Font)
                .width;
        Place(head);
        piece.start = head.end;
        const SFxExtent rest = m_Context.host->MeasureText(
            text.substr(static_cast<size_t>(piece.start), static_cast<size_t>(piece.end - piece.start)),
            m_Font);
        piece.fitWidth -= piece.width - rest.width;
        piece.width = rest.width;
    }
}

void CRowBuilder::ComputeIndents()
{
    for (int32_t rowWidth : m_Out.rowWidths)
    {
        const int32_t free = std::max(0, m_Context.width - rowWidth);
        int32_t indent = 0;
        if (m_Line.Alignment() == CRtfTextLine::AlignCentre)
            indent = free / 2;
        else if (m_Line.Alignment() == CRtfTextLine::AlignRight)
            indent = free;
        m_Out.rowIndents.push_back(indent);
    }
}

int32_t CRowBuilder::ReusableRowStart(const SLayoutHint& hint)
{
    // The last old row whose start was decided by text before the change.
    const SLineLayout& old = hint.old;
    size_t row =
        static_cast<size_t>(std::upper_bound(old.rowBreaks.begin(), old.rowBreaks.end(), hint.changeStart) -
                            old.rowBreaks.begin());
    while (row > 0 && old.rowLookahead[row - 1] > hint.changeStart)
        --row;
    m_Out.rowBreaks.assign(old.rowBreaks.begin(), old.rowBreaks.begin() + static_cast<std::ptrdiff_t>(row));
    m_Out.rowHeights.assign(old.rowHeights.begin(),
                            old.rowHeights.begin() + static_cast<std::ptrdiff_t>(row));
    m_Out.rowWidths.assign(old.rowWidths.begin(), old.rowWidths.begin() + static_cast<std::ptrdiff_t>(row));
    m_Out.rowLookahead.assign(old.rowLookahead.begin(),
                              old.rowLookahead.begin() + static_cast<std::ptrdiff_t>(row));
    return row == 0 ? 0 : old.rowBreaks[row - 1];
}

bool CRowBuilder::ResyncWithOld(int32_t rowStart)
{
    // From here on the text equals the old text shifted by delta, and a row starting at an old
    // row start is laid out exactly as that old row and all after it.
    if (rowStart < m_Hint->newEnd)
        return false;
    const SLineLayout& old = m_Hint->old;
    const auto found = std::lower_bound(old.rowBreaks.begin(), old.rowBreaks.end(), rowStart - m_Hint->delta);
    if (found == old.rowBreaks.end() || *found != rowStart - m_Hint->delta)
        return false;
    const auto oldRow = static_cast<size_t>(found - old.rowBreaks.begin()) + 1; // the row that starts there
    for (auto next = found + 1; next != old.rowBreaks.end(); ++next)
        m_Out.rowBreaks.push_back(*next + m_Hint->delta);
    m_Out.rowHeights.insert(m_Out.rowHeights.end(),
                            old.rowHeights.begin() + static_cast<std::ptrdiff_t>(oldRow),
                            old.rowHeights.end());
    m_Out.rowWidths.insert(m_Out.rowWidths.end(), old.rowWidths.begin() + static_cast<std::ptrdiff_t>(oldRow),
                           old.rowWidths.end());
    for (size_t row = oldRow; row < old.rowLookahead.size(); ++row)
        m_Out.rowLookahead.push_back(old.rowLookahead[row] + m_Hint->delta);
    return true;
}

SLineLayout CRowBuilder::Build(const SLayoutHint* hint)
{
    m_Font = *m_Context.defaultFont;
    int32_t offset = 0;
    if (hint != nullptr && !hint->old.rowLookahead.empty() &&
        hint->old.rowLookahead.size() == hint->old.rowHeights.size())
    {
        m_Hint = hint;
        offset = ReusableRowStart(*hint);
        m_RowStart = offset;
    }
    StartFontRun(offset);
    const auto length = static_cast<int32_t>(m_Line.Text().size());
    while (offset < length && !m_Resynced)
    {
        const int32_t runEnd = NextFontChange(offset);
        while (offset < runEnd && !m_Resynced)
        {
            const SPiece piece = NextPiece(offset, runEnd);
            PlacePiece(piece);
            offset = piece.end;
        }
        if (offset < length && !m_Resynced)
            StartFontRun(offset);
    }
    if (!m_Resynced)
    {
        m_Hint = nullptr;
        FinishRow(length, m_X, std::max(m_HeightUpToBreak, m_HeightAfterBreak), length);
        m_Out.rowBreaks.pop_back(); // the last row ends with the text, not at a break
    }
    if (m_Context.fixedRowHeight > 0)
        std::fill(m_Out.rowHeights.begin(), m_Out.rowHeights.end(), m_Context.fixedRowHeight);
    ComputeIndents();
    return std::move(m_Out);
}
} // namespace

bool IsFxWhiteSpace(char16_t c)
{
    return c == u' ' || c == u'\t' || (c >= 0x2000 && c <= 0x200B) || c == 0x3000;
}

bool IsWrapOpportunity(char16_t c)
{
    if (IsFxWhiteSpace(c) || c == CRtfObjectInfo::ObjectCharacter)
        return true;
    const bool asciiPunctuation = (c >= u'!' && c <= u'/') || (c >= u':' && c <= u'@') ||
                                  (c >= u'[' && c <= u'`') || (c >= u'{' && c <= u'~');
    return asciiPunctuation || (c >= 0x2010 && c <= 0x2027) || (c >= 0x3001 && c <= 0x3003) || c == 0x00BF ||
           c == 0x00A1;
}

SFxExtent ObjectExtent(const CRtfObjectInfo& object)
{
    if (object.IsAttachment())
        return {AttachmentIconSize, AttachmentIconSize};
    if (object.Param1() != 0 && object.Param2() != 0)
        return {static_cast<int32_t>(std::min<uint32_t>(object.Param1(), 1u << 20)),
                static_cast<int32_t>(std::min<uint32_t>(object.Param2(), 1u << 20))};
    if (object.Picture() && !object.Picture()->IsEmpty())
    {
        const SDIBitmapHeader header = object.Picture()->Header();
        const int64_t height = header.height < 0 ? -static_cast<int64_t>(header.height) : header.height;
        return {static_cast<int32_t>(std::clamp<int64_t>(header.width, 1, 1 << 20)),
                static_cast<int32_t>(std::clamp<int64_t>(height, 1, 1 << 20))};
    }
    return {AttachmentIconSize, AttachmentIconSize};
}

SLineLayout ComputeLineLayout(const CRtfTextLine& line, const SLineLayoutContext& context,
                              const SLayoutHint* hint)
{
    return CRowBuilder(line, context).Build(hint);
}

int32_t RowTextWidth(const CRtfTextLine& line, const SLineLayoutContext& context, int32_t rowStart,
                     int32_t to)
{
    const std::u16string_view text(line.Text());
    to = std::min<int32_t>(to, static_cast<int32_t>(text.size()));
    SFontDescription font = *context.defaultFont;
    const auto& blocks = line.Blocks();
    size_t nextBlock = 0;
    auto advanceFont = [&](int32_t offset)
    {
        while (nextBlock < blocks.size() && blocks[nextBlock].Start() <= offset)
        {
            if (blocks[nextBlock].HasFont())
                font = *blocks[nextBlock].Font();
            ++nextBlock;
        }
    };
    int32_t x = 0;
    int32_t offset = rowStart;
    advanceFont(offset);
    while (offset < to)
    {
        const char16_t c = text[static_cast<size_t>(offset)];
        if (c == u'\t')
        {
            const int32_t stop = std::max(1, context.tabStopWidth);
            x += stop - x % stop;
            advanceFont(++offset);
            continue;
        }
        if (c == CRtfObjectInfo::ObjectCharacter)
        {
            if (const CRtfObjectInfo* object = line.FindObject(offset))
            {
                x += ObjectExtent(*object).width;
                advanceFont(++offset);
                continue;
            }
        }
        int32_t end = offset + 1;
        const int32_t fontChange =
            nextBlock < blocks.size() ? std::min<int32_t>(blocks[nextBlock].Start(), to) : to;
        while (end < fontChange && text[static_cast<size_t>(end)] != u'\t' &&
               text[static_cast<size_t>(end)] != CRtfObjectInfo::ObjectCharacter)
            ++end;
        x += context.host
                 ->MeasureText(text.substr(static_cast<size_t>(offset), static_cast<size_t>(end - offset)),
                               font)
                 .width;
        offset = end;
        advanceFont(offset);
    }
    return x;
}
