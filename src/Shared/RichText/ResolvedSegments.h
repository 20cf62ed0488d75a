#pragma once
// The writers' first pass: the format of every segment of list A of every paragraph, resolved
// once in document order, with fonts numbered in order of first use. The second pass (writing)
// then reads these small records instead of walking the paragraphs' format blocks again.
#include "Shared/RichText/RichTextDocument.h"

#include <array>
#include <cstdint>
#include <map>
#include <vector>

struct SResolvedSegment
{
    int32_t font = 0; // number in the CFontNumbering that resolved it
    RichTextColour textColour = DefaultRichTextColour;
    RichTextColour backColour = DefaultRichTextColour;
};

// Distinct fonts, told apart by all 92 bytes of their description, numbered from 0 in order of
// first use. A document repeats the same few fonts in thousands of blocks, so the numbering
// first asks the block's own address and the most recently numbered fonts before its map.
class CFontNumbering
{
public:
    // The default font takes number 0.
    explicit CFontNumbering(const SFontDescription& defaultFont);

    int Number(const SFontDescription& font);
    size_t Count() const { return m_Fonts.size(); }
    const SFontDescription& Font(size_t number) const { return *m_Fonts[number]; }

private:
    static constexpr size_t RecentCount = 4;

    int NumberFromMap(const SFontDescription& font);

    std::map<SFontDescription, int> m_Numbers;
    std::vector<const SFontDescription*> m_Fonts;
    const SFontDescription* m_LastAddress = nullptr;
    int m_LastNumber = 0;
    std::array<int, RecentCount> m_Recent{};
    size_t m_RecentNext = 0;
};

// Appends the resolved format of each segment of list A of each line, objects included, in
// order. Text no block formats resolves to the default font (number 0) and the sentinel colours.
void ResolveSegmentFormats(const CRichTextDocument& document, CFontNumbering& fonts,
                           std::vector<SResolvedSegment>& out);

// Remembers the markup written for recent segment formats (a format's markup depends on nothing
// else), so that the thousands of segments of a long document build only a few dozen of them.
// Direct-mapped: a format whose slot holds another is built again.
template <class TMarkup> class CSegmentMarkupCache
{
public:
    template <class TBuild> const TMarkup& Get(const SResolvedSegment& format, const TBuild& build)
    {
        SSlot& slot = m_Slots[SlotOf(format)];
        if (!slot.used || slot.format.font != format.font || slot.format.textColour != format.textColour ||
            slot.format.backColour != format.backColour)
        {
            slot.used = true;
            slot.format = format;
            build(format, slot.markup);
        }
        return slot.markup;
    }

private:
    static constexpr size_t SlotCount = 64;

    struct SSlot
    {
        bool used = false;
        SResolvedSegment format;
        TMarkup markup{};
    };

    static size_t SlotOf(const SResolvedSegment& format)
    {
        const uint64_t mixed = (static_cast<uint64_t>(static_cast<uint32_t>(format.font)) * 0x9E3779B1u) ^
                               (static_cast<uint64_t>(format.textColour) * 0x85EBCA77u) ^
                               (static_cast<uint64_t>(format.backColour) * 0xC2B2AE3Du);
        return static_cast<size_t>((mixed ^ (mixed >> 17)) % SlotCount);
    }

    std::array<SSlot, SlotCount> m_Slots;
};
