#pragma once
// One paragraph of a rich text document ("line" means hard paragraph, not a wrapped row): its
// UTF-16 text without line breaks, its alignment, its format blocks sorted by start and its
// objects sorted by position. Every change empties the two derived segment lists; they are
// rebuilt together the next time either is asked for.
#include "Shared/RichText/RtfObjectInfo.h"
#include "Shared/RichText/RtfTextBlockInfo.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class CArchiveReader;
class CArchiveWriter;

// A run of a paragraph's text, `start` to `end` inclusive.
struct SRtfTextSegment
{
    // Flag bits: the presence flags of the blocks that begin the run, the object bit and the
    // blocks' transient marker. Bits 5-7 are free for the editor.
    static constexpr uint8_t HasFont = 0x01;
    static constexpr uint8_t HasTextColour = 0x02;
    static constexpr uint8_t HasBackColour = 0x04;
    static constexpr uint8_t IsObject = 0x08;
    static constexpr uint8_t Marker = 0x10;

    int32_t start = 0;
    int32_t end = 0;
    uint8_t flags = 0;

    bool IsObjectSegment() const { return (flags & IsObject) != 0; }
    bool operator==(const SRtfTextSegment&) const = default;
};

class CRtfTextLine
{
public:
    static constexpr int Version = 100;
    static constexpr int32_t AlignLeft = 0;
    static constexpr int32_t AlignCentre = 1;
    static constexpr int32_t AlignRight = 2;

    enum class ESegmentList
    {
        AllChanges, // split at every block start (list A: any font or colour change)
        FontChanges // split only at blocks that carry a font (list B)
    };

    CRtfTextLine() = default;
    explicit CRtfTextLine(std::u16string text) : m_Text(std::move(text)) {}

    const std::u16string& Text() const { return m_Text; }
    void SetText(std::u16string text);

    int32_t Alignment() const { return m_Alignment; }
    // Negative values become left, 2 and above become right.
    void SetAlignment(int32_t alignment);

    const std::vector<CRtfObjectInfo>& Objects() const { return m_Objects; }
    // Inserted after any object at the same position; returns its index.
    size_t AddObject(CRtfObjectInfo object);
    void RemoveObject(size_t index);                      // invalid_argument when out of range
    void SetObjects(std::vector<CRtfObjectInfo> objects); // sorted by position, stable
    // The object at character `position`, or null.
    const CRtfObjectInfo* FindObject(int32_t position) const;

    const std::vector<CRtfTextBlockInfo>& Blocks() const { return m_Blocks; }
    // Inserted after any block with the same start; returns its index.
    size_t AddBlock(CRtfTextBlockInfo block);
    void RemoveBlock(size_t index);                        // invalid_argument when out of range
    void SetBlocks(std::vector<CRtfTextBlockInfo> blocks); // sorted by start, stable

    // The value of the last block at or before `position` that carries the field; nothing when
    // no such block exists (the caller's default applies).
    std::optional<SFontDescription> EffectiveFont(int32_t position) const;
    std::optional<RichTextColour> EffectiveTextColour(int32_t position) const;
    std::optional<RichTextColour> EffectiveBackColour(int32_t position) const;

    size_t SegmentCount(ESegmentList list) const;
    // invalid_argument when `index` is out of range.
    const SRtfTextSegment& Segment(ESegmentList list, size_t index) const;
    const std::vector<SRtfTextSegment>& Segments(ESegmentList list) const;

    // Storage: string text, u32 alignment, u32 object count and the objects, u32 block count
    // and the blocks. Save returns 0 or the first failing element's result.
    int Serialize(CArchiveWriter& out) const;
    // Load returns 0, 1 for a version other than 100 (here or in an element), or 2; the first
    // failing element ends the load with its result. Objects and blocks come back sorted; the
    // alignment is kept as stored (the writers treat values other than 0, 1 and 2 themselves).
    int Serialize(CArchiveReader& in, int version);

    // Stored state only (text, alignment, objects, blocks).
    bool operator==(const CRtfTextLine& other) const
    {
        return m_Text == other.m_Text && m_Alignment == other.m_Alignment && m_Objects == other.m_Objects &&
               m_Blocks == other.m_Blocks;
    }

private:
    int Load(CArchiveReader& in, int version);
    int LoadObjects(CArchiveReader& in, int version);
    int LoadBlocks(CArchiveReader& in, int version);
    void Invalidate();
    void BuildSegmentsIfNeeded() const;
    void BuildSegments(ESegmentList list, std::vector<SRtfTextSegment>& out) const;
    void AddPieceCutAtObjects(int32_t start, int32_t end, uint8_t flags, size_t& nextObject,
                              std::vector<SRtfTextSegment>& out) const;

    std::u16string m_Text;
    int32_t m_Alignment = AlignLeft;
    std::vector<CRtfObjectInfo> m_Objects;
    std::vector<CRtfTextBlockInfo> m_Blocks;
    mutable std::vector<SRtfTextSegment> m_AllChangeSegments;
    mutable std::vector<SRtfTextSegment> m_FontChangeSegments;
};
