#include "Shared/RichText/ResolvedSegments.h"

CFontNumbering::CFontNumbering(const SFontDescription& defaultFont)
{
    NumberFromMap(defaultFont);
    m_LastAddress = &defaultFont;
}

int CFontNumbering::Number(const SFontDescription& font)
{
    if (&font == m_LastAddress)
        return m_LastNumber;
    int number = -1;
    for (const int recent : m_Recent)
    {
        if (*m_Fonts[static_cast<size_t>(recent)] == font)
        {
            number = recent;
            break;
        }
    }
    if (number < 0)
    {
        number = NumberFromMap(font);
        m_Recent[m_RecentNext] = number;
        m_RecentNext = (m_RecentNext + 1) % RecentCount;
    }
    m_LastAddress = &font;
    m_LastNumber = number;
    return number;
}

int CFontNumbering::NumberFromMap(const SFontDescription& font)
{
    const auto [at, added] = m_Numbers.try_emplace(font, static_cast<int>(m_Fonts.size()));
    if (added)
        m_Fonts.push_back(&at->first);
    return at->second;
}

void ResolveSegmentFormats(const CRichTextDocument& document, CFontNumbering& fonts,
                           std::vector<SResolvedSegment>& out)
{
    for (const CRtfTextLine& line : document.Lines())
    {
        const std::vector<CRtfTextBlockInfo>& blocks = line.Blocks();
        size_t nextBlock = 0;
        const SFontDescription* font = nullptr;
        SResolvedSegment format;
        // The effective format at each segment's first character: the blocks are walked once,
        // as the segments come in ascending order.
        for (const SRtfTextSegment& segment : line.Segments(CRtfTextLine::ESegmentList::AllChanges))
        {
            for (; nextBlock < blocks.size() && blocks[nextBlock].Start() <= segment.start; ++nextBlock)
            {
                const CRtfTextBlockInfo& block = blocks[nextBlock];
                if (block.HasFont())
                    font = &*block.Font();
                if (block.HasTextColour())
                    format.textColour = *block.TextColour();
                if (block.HasBackColour())
                    format.backColour = *block.BackColour();
            }
            // Only a font in force at a segment is numbered: one that a later block at the same
            // start replaces is never written.
            format.font = font ? fonts.Number(*font) : 0;
            out.push_back(format);
        }
    }
}
