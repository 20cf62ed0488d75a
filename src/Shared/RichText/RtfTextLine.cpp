#include "Shared/RichText/RtfTextLine.h"

#include "Shared/Base/Archive.h"
#include "Shared/Log/Log.h"
#include "Shared/RichText/RichTextArchiveError.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

namespace
{
uint8_t BlockFlags(const CRtfTextBlockInfo& block)
{
    uint8_t flags = 0;
    if (block.HasFont())
        flags |= SRtfTextSegment::HasFont;
    if (block.HasTextColour())
        flags |= SRtfTextSegment::HasTextColour;
    if (block.HasBackColour())
        flags |= SRtfTextSegment::HasBackColour;
    if (block.Marker())
        flags |= SRtfTextSegment::Marker;
    return flags;
}

int32_t TextLength(const std::u16string& text)
{
    return static_cast<int32_t>(std::min<size_t>(text.size(), std::numeric_limits<int32_t>::max()));
}

template <class TValue, class TGetter>
std::optional<TValue> LastBlockValue(const std::vector<CRtfTextBlockInfo>& blocks, int32_t position,
                                     TGetter getter)
{
    std::optional<TValue> value;
    for (const CRtfTextBlockInfo& block : blocks)
    {
        if (block.Start() > position)
            break;
        if (auto field = getter(block))
            value = std::move(field);
    }
    return value;
}

void LogShortLine()
{
    LogMessage(
        u"Error: Cannot load Rich Text Line object, object size is too small in storage file/location");
}
} // namespace

void CRtfTextLine::SetText(std::u16string text)
{
    m_Text = std::move(text);
    Invalidate();
}

void CRtfTextLine::SetAlignment(int32_t alignment)
{
    m_Alignment = std::clamp(alignment, AlignLeft, AlignRight);
}

size_t CRtfTextLine::AddObject(CRtfObjectInfo object)
{
    const auto at =
        std::upper_bound(m_Objects.begin(), m_Objects.end(), object.Position(),
                         [](int32_t position, const CRtfObjectInfo& o) { return position < o.Position(); });
    const size_t index = static_cast<size_t>(at - m_Objects.begin());
    m_Objects.insert(at, std::move(object));
    Invalidate();
    return index;
}

void CRtfTextLine::RemoveObject(size_t index)
{
    if (index >= m_Objects.size())
        throw std::invalid_argument("CRtfTextLine::RemoveObject: index out of range");
    m_Objects.erase(m_Objects.begin() + static_cast<std::ptrdiff_t>(index));
    Invalidate();
}

void CRtfTextLine::SetObjects(std::vector<CRtfObjectInfo> objects)
{
    std::stable_sort(objects.begin(), objects.end(),
                     [](const CRtfObjectInfo& a, const CRtfObjectInfo& b)
                     { return a.Position() < b.Position(); });
    m_Objects = std::move(objects);
    Invalidate();
}

const CRtfObjectInfo* CRtfTextLine::FindObject(int32_t position) const
{
    const auto at = std::lower_bound(m_Objects.begin(), m_Objects.end(), position,
                                     [](const CRtfObjectInfo& o, int32_t p) { return o.Position() < p; });
    return at != m_Objects.end() && at->Position() == position ? &*at : nullptr;
}

size_t CRtfTextLine::AddBlock(CRtfTextBlockInfo block)
{
    const auto at =
        std::upper_bound(m_Blocks.begin(), m_Blocks.end(), block.Start(),
                         [](int32_t start, const CRtfTextBlockInfo& b) { return start < b.Start(); });
    const size_t index = static_cast<size_t>(at - m_Blocks.begin());
    m_Blocks.insert(at, std::move(block));
    Invalidate();
    return index;
}

void CRtfTextLine::RemoveBlock(size_t index)
{
    if (index >= m_Blocks.size())
        throw std::invalid_argument("CRtfTextLine::RemoveBlock: index out of range");
    m_Blocks.erase(m_Blocks.begin() + static_cast<std::ptrdiff_t>(index));
    Invalidate();
}

void CRtfTextLine::SetBlocks(std::vector<CRtfTextBlockInfo> blocks)
{
    std::stable_sort(blocks.begin(), blocks.end(),
                     [](const CRtfTextBlockInfo& a, const CRtfTextBlockInfo& b)
                     { return a.Start() < b.Start(); });
    m_Blocks = std::move(blocks);
    Invalidate();
}

std::optional<SFontDescription> CRtfTextLine::EffectiveFont(int32_t position) const
{
    return LastBlockValue<SFontDescription>(m_Blocks, position,
                                            [](const CRtfTextBlockInfo& b) { return b.Font(); });
}

std::optional<RichTextColour> CRtfTextLine::EffectiveTextColour(int32_t position) const
{
    return LastBlockValue<RichTextColour>(m_Blocks, position,
                                          [](const CRtfTextBlockInfo& b) { return b.TextColour(); });
}

std::optional<RichTextColour> CRtfTextLine::EffectiveBackColour(int32_t position) const
{
    return LastBlockValue<RichTextColour>(m_Blocks, position,
                                          [](const CRtfTextBlockInfo& b) { return b.BackColour(); });
}

size_t CRtfTextLine::SegmentCount(ESegmentList list) const
{
    return Segments(list).size();
}

const SRtfTextSegment& CRtfTextLine::Segment(ESegmentList list, size_t index) const
{
    const std::vector<SRtfTextSegment>& segments = Segments(list);
    if (index >= segments.size())
        throw std::invalid_argument("CRtfTextLine::Segment: index out of range");
    return segments[index];
}

const std::vector<SRtfTextSegment>& CRtfTextLine::Segments(ESegmentList list) const
{
    BuildSegmentsIfNeeded();
    return list == ESegmentList::AllChanges ? m_AllChangeSegments : m_FontChangeSegments;
}

void CRtfTextLine::Invalidate()
{
    m_AllChangeSegments.clear();
    m_FontChangeSegments.clear();
}

void CRtfTextLine::BuildSegmentsIfNeeded() const
{
    if (!m_AllChangeSegments.empty() || !m_FontChangeSegments.empty())
        return;
    BuildSegments(ESegmentList::AllChanges, m_AllChangeSegments);
    BuildSegments(ESegmentList::FontChanges, m_FontChangeSegments);
}

void CRtfTextLine::BuildSegments(ESegmentList list, std::vector<SRtfTextSegment>& out) const
{
    const int32_t length = TextLength(m_Text);
    size_t nextObject = 0;
    int32_t pieceStart = 0;
    uint8_t pieceFlags = 0;
    for (const CRtfTextBlockInfo& block : m_Blocks)
    {
        if (list == ESegmentList::FontChanges && !block.HasFont())
            continue;
        const int32_t start = std::max(block.Start(), 0);
        // A block past the end of the text formats nothing (an empty text still takes the
        // flags of a block at 0).
        if (start >= length && start > 0)
            break;
        if (start > pieceStart)
        {
            AddPieceCutAtObjects(pieceStart, start - 1, pieceFlags, nextObject, out);
            pieceStart = start;
            pieceFlags = 0;
        }
        pieceFlags |= BlockFlags(block);
    }
    if (length == 0)
        out.push_back({0, 0, pieceFlags});
    else
        AddPieceCutAtObjects(pieceStart, length - 1, pieceFlags, nextObject, out);
}

void CRtfTextLine::AddPieceCutAtObjects(int32_t start, int32_t end, uint8_t flags, size_t& nextObject,
                                        std::vector<SRtfTextSegment>& out) const
{
    int32_t from = start;
    for (; nextObject < m_Objects.size(); ++nextObject)
    {
        const int32_t position = m_Objects[nextObject].Position();
        if (position > end)
            break;
        // Objects outside the text, or a second object on one position, take no character.
        if (position < from)
            continue;
        if (position > from)
            out.push_back({from, position - 1, flags});
        out.push_back({position, position, static_cast<uint8_t>(flags | SRtfTextSegment::IsObject)});
        from = position + 1;
    }
    if (from <= end)
        out.push_back({from, end, flags});
}

int CRtfTextLine::Serialize(CArchiveWriter& out) const
{
    out.WriteString(m_Text);
    out.WriteI32(m_Alignment);
    out.WriteU32(static_cast<uint32_t>(m_Objects.size()));
    for (const CRtfObjectInfo& object : m_Objects)
    {
        if (const int result = object.Serialize(out))
            return result;
    }
    out.WriteU32(static_cast<uint32_t>(m_Blocks.size()));
    for (const CRtfTextBlockInfo& block : m_Blocks)
    {
        if (const int result = block.Serialize(out))
            return result;
    }
    return 0;
}

int CRtfTextLine::Serialize(CArchiveReader& in, int version)
{
    if (version != Version)
    {
        LogMessage(u"Error: Cannot load Rich Text Line object, version number is unsupported - %d", version);
        return 1;
    }
    int result = 2;
    try
    {
        result = Load(in, version);
    }
    catch (const CRichTextArchiveError& error)
    {
        if (!error.Logged())
            LogShortLine();
    }
    catch (const std::exception&)
    {
        LogShortLine();
    }
    Invalidate();
    return result;
}

int CRtfTextLine::Load(CArchiveReader& in, int version)
{
    m_Text = ReadStringOrThrow(in);
    m_Alignment = static_cast<int32_t>(ReadU32OrThrow(in));
    if (const int result = LoadObjects(in, version))
        return result;
    return LoadBlocks(in, version);
}

int CRtfTextLine::LoadObjects(CArchiveReader& in, int version)
{
    const uint32_t count = ReadU32OrThrow(in);
    std::vector<CRtfObjectInfo> objects;
    // Each element is read before it is stored, so a hostile count allocates nothing.
    for (uint32_t i = 0; i < count; ++i)
    {
        CRtfObjectInfo object;
        if (const int result = object.Serialize(in, version))
            return result;
        objects.push_back(std::move(object));
    }
    SetObjects(std::move(objects));
    return 0;
}

int CRtfTextLine::LoadBlocks(CArchiveReader& in, int version)
{
    const uint32_t count = ReadU32OrThrow(in);
    std::vector<CRtfTextBlockInfo> blocks;
    for (uint32_t i = 0; i < count; ++i)
    {
        CRtfTextBlockInfo block;
        if (const int result = block.Serialize(in, version))
            return result;
        blocks.push_back(std::move(block));
    }
    SetBlocks(std::move(blocks));
    return 0;
}
