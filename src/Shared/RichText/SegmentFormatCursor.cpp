#include "Shared/RichText/SegmentFormatCursor.h"

CSegmentFormatCursor::CSegmentFormatCursor(const CRtfTextLine& line, const SFontDescription& defaultFont)
    : m_Blocks(line.Blocks())
{
    m_Format.font = &defaultFont;
}

const SSegmentFormat& CSegmentFormatCursor::At(int32_t position)
{
    for (; m_Next < m_Blocks.size() && m_Blocks[m_Next].Start() <= position; ++m_Next)
    {
        const CRtfTextBlockInfo& block = m_Blocks[m_Next];
        if (block.Font())
            m_Format.font = &*block.Font();
        if (block.TextColour())
            m_Format.textColour = *block.TextColour();
        if (block.BackColour())
            m_Format.backColour = *block.BackColour();
    }
    return m_Format;
}
