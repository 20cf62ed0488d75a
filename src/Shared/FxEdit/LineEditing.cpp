#include "Shared/FxEdit/LineEditing.h"

#include <algorithm>

namespace
{
int32_t ClampOffset(const CRtfTextLine& line, int32_t offset)
{
    return std::clamp<int32_t>(offset, 0, static_cast<int32_t>(line.Text().size()));
}

bool HasAnyField(const CRtfTextBlockInfo& block)
{
    return block.HasFont() || block.HasTextColour() || block.HasBackColour();
}

// Later fields override earlier ones, as blocks do in a paragraph.
void FoldInto(CRtfTextBlockInfo& into, const CRtfTextBlockInfo& block)
{
    if (block.HasFont())
        into.SetFont(block.Font());
    if (block.HasTextColour())
        into.SetTextColour(block.TextColour());
    if (block.HasBackColour())
        into.SetBackColour(block.BackColour());
}

CRtfTextBlockInfo ShiftedBlock(const CRtfTextBlockInfo& block, int32_t delta)
{
    CRtfTextBlockInfo shifted = block;
    shifted.SetStart(block.Start() + delta);
    return shifted;
}

CRtfObjectInfo ShiftedObject(const CRtfObjectInfo& object, int32_t delta)
{
    CRtfObjectInfo shifted = object;
    shifted.SetPosition(object.Position() + delta);
    return shifted;
}

// A block that sets back, at a boundary, the fields `set` changed to what `original` had there.
CRtfTextBlockInfo RestoringBlock(int32_t start, const CRtfTextBlockInfo& set,
                                 const CRtfTextBlockInfo& original, const SFontDescription& defaultFont)
{
    CRtfTextBlockInfo block(start);
    if (set.HasFont())
        block.SetFont(original.HasFont() ? original.Font() : defaultFont);
    if (set.HasTextColour())
        block.SetTextColour(original.HasTextColour() ? *original.TextColour() : DefaultRichTextColour);
    if (set.HasBackColour())
        block.SetBackColour(original.HasBackColour() ? *original.BackColour() : DefaultRichTextColour);
    return block;
}

CRtfTextBlockInfo WithoutFieldsOf(const CRtfTextBlockInfo& block, const CRtfTextBlockInfo& fields)
{
    CRtfTextBlockInfo stripped = block;
    if (fields.HasFont())
        stripped.SetFont(std::nullopt);
    if (fields.HasTextColour())
        stripped.SetTextColour(std::nullopt);
    if (fields.HasBackColour())
        stripped.SetBackColour(std::nullopt);
    return stripped;
}

CRtfTextLine Assembled(const CRtfTextLine& like, std::u16string text, std::vector<CRtfTextBlockInfo> blocks,
                       std::vector<CRtfObjectInfo> objects)
{
    CRtfTextLine result(std::move(text));
    result.SetAlignment(like.Alignment());
    result.SetBlocks(std::move(blocks));
    result.SetObjects(std::move(objects));
    return result;
}

// Blocks and objects after `count` characters were inserted at `offset`: a block starting there
// keeps its place at the paragraph's start and otherwise moves with the following text.
void InsertIntoFormats(std::vector<CRtfTextBlockInfo>& blocks, std::vector<CRtfObjectInfo>& objects,
                       int32_t offset, int32_t count)
{
    if (count == 0)
        return;
    for (CRtfTextBlockInfo& block : blocks)
        if (block.Start() > offset || (block.Start() == offset && offset > 0))
            block.SetStart(block.Start() + count);
    for (CRtfObjectInfo& object : objects)
        if (object.Position() >= offset)
            object.SetPosition(object.Position() + count);
}

// Blocks and objects after [from, to) was removed.
void RemoveFromFormats(std::vector<CRtfTextBlockInfo>& blocks, std::vector<CRtfObjectInfo>& objects,
                       int32_t from, int32_t to)
{
    const int32_t count = to - from;
    // Blocks that began inside the range were all in force at its end; folded into one block at
    // its start they give the following characters the format they had.
    std::vector<CRtfTextBlockInfo> kept;
    kept.reserve(blocks.size() + 1);
    CRtfTextBlockInfo combined(from);
    bool anyCombined = false;
    for (const CRtfTextBlockInfo& block : blocks)
    {
        if (block.Start() < from)
            kept.push_back(block);
        else if (block.Start() <= to && count > 0)
        {
            FoldInto(combined, block);
            anyCombined = true;
        }
    }
    if (anyCombined && HasAnyField(combined))
        kept.push_back(combined);
    for (const CRtfTextBlockInfo& block : blocks)
        if (block.Start() > to || (block.Start() >= from && count == 0))
            kept.push_back(ShiftedBlock(block, -count));
    blocks = std::move(kept);

    std::erase_if(objects, [&](const CRtfObjectInfo& object)
                  { return object.Position() >= from && object.Position() < to; });
    for (CRtfObjectInfo& object : objects)
        if (object.Position() >= to)
            object.SetPosition(object.Position() - count);
}
} // namespace

CRtfTextBlockInfo FormatAt(const CRtfTextLine& line, int32_t offset)
{
    CRtfTextBlockInfo format(offset);
    for (const CRtfTextBlockInfo& block : line.Blocks())
    {
        if (block.Start() > offset)
            break;
        FoldInto(format, block);
    }
    return format;
}

CRtfTextLine WithInsertedText(const CRtfTextLine& line, int32_t offset, std::u16string_view text)
{
    offset = ClampOffset(line, offset);
    const std::u16string_view old(line.Text());
    std::u16string newText;
    newText.reserve(old.size() + text.size());
    newText.append(old.substr(0, static_cast<size_t>(offset)))
        .append(text)
        .append(old.substr(static_cast<size_t>(offset)));
    std::vector<CRtfTextBlockInfo> blocks = line.Blocks();
    std::vector<CRtfObjectInfo> objects = line.Objects();
    InsertIntoFormats(blocks, objects, offset, static_cast<int32_t>(text.size()));
    return Assembled(line, std::move(newText), std::move(blocks), std::move(objects));
}

void InsertLineText(CRtfTextLine& line, int32_t offset, std::u16string_view text)
{
    if (!text.empty())
        line = WithInsertedText(line, offset, text);
}

CRtfTextLine WithRemovedText(const CRtfTextLine& line, int32_t from, int32_t to)
{
    from = ClampOffset(line, from);
    to = std::max(from, ClampOffset(line, to));
    std::vector<CRtfTextBlockInfo> blocks = line.Blocks();
    std::vector<CRtfObjectInfo> objects = line.Objects();
    RemoveFromFormats(blocks, objects, from, to);
    const std::u16string_view old(line.Text());
    std::u16string newText;
    newText.reserve(old.size() - static_cast<size_t>(to - from));
    newText.append(old.substr(0, static_cast<size_t>(from))).append(old.substr(static_cast<size_t>(to)));
    return Assembled(line, std::move(newText), std::move(blocks), std::move(objects));
}

CRtfTextLine WithReplacedRanges(const CRtfTextLine& line, const std::vector<int32_t>& starts, int32_t length,
                                std::u16string_view replacement)
{
    const std::u16string_view old(line.Text());
    const auto count = static_cast<int32_t>(replacement.size());
    std::u16string newText;
    newText.reserve(old.size() + starts.size() * replacement.size());
    std::vector<CRtfTextBlockInfo> blocks = line.Blocks();
    std::vector<CRtfObjectInfo> objects = line.Objects();
    size_t copied = 0;
    int32_t shift = 0;
    for (const int32_t start : starts)
    {
        const int32_t from =
            std::clamp<int32_t>(start, static_cast<int32_t>(copied), static_cast<int32_t>(old.size()));
        const int32_t to = std::min<int32_t>(from + length, static_cast<int32_t>(old.size()));
        newText.append(old.substr(copied, static_cast<size_t>(from) - copied)).append(replacement);
        copied = static_cast<size_t>(to);
        // The formats go through the same steps as one removal and one insertion each.
        RemoveFromFormats(blocks, objects, from + shift, to + shift);
        InsertIntoFormats(blocks, objects, from + shift, count);
        shift += count - (to - from);
    }
    newText.append(old.substr(copied));
    return Assembled(line, std::move(newText), std::move(blocks), std::move(objects));
}

void RemoveLineText(CRtfTextLine& line, int32_t from, int32_t to)
{
    if (ClampOffset(line, from) < ClampOffset(line, to))
        line = WithRemovedText(line, from, to);
}

CRtfTextLine CopyLinePart(const CRtfTextLine& line, int32_t from, int32_t to)
{
    from = ClampOffset(line, from);
    to = std::max(from, ClampOffset(line, to));
    CRtfTextLine part(line.Text().substr(static_cast<size_t>(from), static_cast<size_t>(to - from)));
    part.SetAlignment(line.Alignment());

    std::vector<CRtfTextBlockInfo> blocks;
    CRtfTextBlockInfo first = FormatAt(line, from);
    first.SetStart(0);
    if (HasAnyField(first))
        blocks.push_back(first);
    for (const CRtfTextBlockInfo& block : line.Blocks())
        if (block.Start() > from && block.Start() < to)
            blocks.push_back(ShiftedBlock(block, -from));

    std::vector<CRtfObjectInfo> objects;
    for (const CRtfObjectInfo& object : line.Objects())
        if (object.Position() >= from && object.Position() < to)
            objects.push_back(ShiftedObject(object, -from));
    part.SetBlocks(std::move(blocks));
    part.SetObjects(std::move(objects));
    return part;
}

void AppendLine(CRtfTextLine& line, const CRtfTextLine& tail, const SFontDescription& defaultFont)
{
    const auto length = static_cast<int32_t>(line.Text().size());
    std::vector<CRtfTextBlockInfo> blocks = line.Blocks();
    // Fields the head ends with but the tail does not set at its start go back to the defaults.
    const CRtfTextBlockInfo headEnd = FormatAt(line, length);
    const CRtfTextBlockInfo tailStart = FormatAt(tail, 0);
    CRtfTextBlockInfo unset = headEnd;
    unset = WithoutFieldsOf(unset, tailStart);
    if (!tail.Text().empty() && HasAnyField(unset))
        blocks.push_back(RestoringBlock(length, unset, CRtfTextBlockInfo(), defaultFont));
    for (const CRtfTextBlockInfo& block : tail.Blocks())
        blocks.push_back(ShiftedBlock(block, length));

    std::vector<CRtfObjectInfo> objects = line.Objects();
    for (const CRtfObjectInfo& object : tail.Objects())
        objects.push_back(ShiftedObject(object, length));

    line.SetText(line.Text() + tail.Text());
    line.SetBlocks(std::move(blocks));
    line.SetObjects(std::move(objects));
}

void ReplaceLinePart(CRtfTextLine& line, int32_t from, int32_t to, const CRtfTextLine& part,
                     const SFontDescription& defaultFont)
{
    from = ClampOffset(line, from);
    to = std::max(from, ClampOffset(line, to));
    CRtfTextLine result = CopyLinePart(line, 0, from);
    AppendLine(result, part, defaultFont);
    AppendLine(result, CopyLinePart(line, to, static_cast<int32_t>(line.Text().size())), defaultFont);
    result.SetAlignment(line.Alignment());
    line = std::move(result);
}

void ApplyLineFormat(CRtfTextLine& line, int32_t from, int32_t to, const CRtfTextBlockInfo& format,
                     const SFontDescription& defaultFont)
{
    from = ClampOffset(line, from);
    to = ClampOffset(line, to);
    if (from >= to || !HasAnyField(format))
        return;
    const auto length = static_cast<int32_t>(line.Text().size());
    const CRtfTextBlockInfo atEnd = FormatAt(line, to);

    std::vector<CRtfTextBlockInfo> blocks;
    for (const CRtfTextBlockInfo& block : line.Blocks())
        if (block.Start() <= from)
            blocks.push_back(block);
    blocks.push_back(ShiftedBlock(format, from - format.Start()));
    for (const CRtfTextBlockInfo& block : line.Blocks())
    {
        if (block.Start() <= from || block.Start() >= to)
            continue;
        CRtfTextBlockInfo stripped = WithoutFieldsOf(block, format);
        if (HasAnyField(stripped))
            blocks.push_back(stripped);
    }
    if (to < length)
        blocks.push_back(RestoringBlock(to, format, atEnd, defaultFont));
    for (const CRtfTextBlockInfo& block : line.Blocks())
        if (block.Start() >= to)
            blocks.push_back(block);
    line.SetBlocks(std::move(blocks));
}
