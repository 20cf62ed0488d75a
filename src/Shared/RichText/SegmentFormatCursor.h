#pragma once
// Resolves the format in force at the segments of one paragraph, walking its blocks once from
// the start (the writers ask for ascending positions, so a paragraph costs one pass over its
// blocks however many segments it has). Fields no block sets take the given defaults; colours
// default to DefaultRichTextColour.
#include "Shared/RichText/RtfTextLine.h"

struct SSegmentFormat
{
    const SFontDescription* font = nullptr; // never null once resolved
    RichTextColour textColour = DefaultRichTextColour;
    RichTextColour backColour = DefaultRichTextColour;
};

class CSegmentFormatCursor
{
public:
    CSegmentFormatCursor(const CRtfTextLine& line, const SFontDescription& defaultFont);

    // `position` must not be smaller than in the previous call.
    const SSegmentFormat& At(int32_t position);

private:
    const std::vector<CRtfTextBlockInfo>& m_Blocks;
    size_t m_Next = 0;
    SSegmentFormat m_Format;
};
