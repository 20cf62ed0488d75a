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
    const auto count = static_cast<int32_t>(text.size());
    const std::u16string_view old(line.Text());
    std::u16string newText;
    newText.reserve(old.size() + text.size());
    newText.append(old.substr(0, static_cast<size_t>(offset)))
        .append(text)
        .append(old.substr(static_cast<size_t>(offset)));

    std::vector<CRtfTextBlockInfo> blocks = line.Blocks();
    for (CRtfTextBlockInfo& block : blocks)
        if (block.Start() > offset || (block.Start() == offset && offset > 0))
            block.SetStart(block.Start() + count);
    std::vector<CRtfObjectInfo> objects = line.Objects();
    for (CRtfObjectInfo& object : objects)
        if (object.Position() >= offset)
            object.SetPosition(object.Position() + count);

    CRtfTextLine result(std::move(newText));
    result.SetAlignment(line.Alignment());
    result.SetBlocks(std::move(blocks));
    result.SetObjects(std::move(objects));
    return result;
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
    const int32_t count = to - from;

    // Blocks that began inside the range were all in force at its end; folded into one block at
    // its start they give the following characters the format they had.
    std::vector<CRtfTextBlockInfo> blocks;
    CRtfTextBlockInfo combined(from);
    bool anyCombined = false;
    for (const CRtfTextBlockInfo& block : line.Blocks())
    {
        if (block.Start() < from)
            blocks.push_back(block);
        else if (block.Start() <= to && count > 0)
        {
            FoldInto(combined, block);
            anyCombined = true;
        }
    }
    if (anyCombined && HasAnyField(combined))
        blocks.push_back(combined);
    for (const CRtfTextBlockInfo& block : line.Blocks())
        if (block.Start() > to || (block.Start() >= from && count == 0))
            blocks.push_back(ShiftedBlock(block, -count));

    std::vector<CRtfObjectInfo> objects;
    for (const CRtfObjectInfo& object : line.Objects())
    {
        if (object.Position() < from)
            objects.push_back(object);
        else if (object.Position() >= to)
            objects.push_back(ShiftedObject(object, -count));
    }

    const std::u16string_view old(line.Text());
    std::u16string newText;
    newText.reserve(old.size() - static_cast<size_t>(count));
    newText.append(old.substr(0, static_cast<size_t>(from))).append(old.substr(static_cast<size_t>(to)));
    CRtfTextLine result(std::move(newText));
    result.SetAlignment(line.Alignment());
    result.SetBlocks(std::move(blocks));
    result.SetObjects(std::move(objects));
    return result;
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
