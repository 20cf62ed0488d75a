#pragma once
// Text changes inside one paragraph that keep its format blocks and objects in step with the
// characters they belong to. All offsets are character offsets; out-of-range arguments are
// clamped to the text.
#include "Shared/RichText/RtfTextLine.h"

#include <string_view>
#include <vector>

// The format fields in force at `offset`: every block starting at or before it, folded in order.
CRtfTextBlockInfo FormatAt(const CRtfTextLine& line, int32_t offset);

// The same as InsertLineText and RemoveLineText on a copy, building the new text with a single
// allocation (paragraphs can be megabytes long, and every keystroke makes one of these).
CRtfTextLine WithInsertedText(const CRtfTextLine& line, int32_t offset, std::u16string_view text);
CRtfTextLine WithRemovedText(const CRtfTextLine& line, int32_t from, int32_t to);
// The same as replacing [start, start + length) by `replacement` for each of `starts` in turn
// (ascending, not overlapping, offsets into `line` as it is), building the text once.
CRtfTextLine WithReplacedRanges(const CRtfTextLine& line, const std::vector<int32_t>& starts, int32_t length,
                                std::u16string_view replacement);

// Inserts plain text at `offset`; the new characters take the format of the character before
// them (of the first character at offset 0). Object characters in `text` are not objects.
void InsertLineText(CRtfTextLine& line, int32_t offset, std::u16string_view text);
// Removes [from, to); characters after the range keep their format and objects in the range go.
void RemoveLineText(CRtfTextLine& line, int32_t from, int32_t to);
// The part [from, to) as a paragraph of its own, starting with the format in force at `from`.
CRtfTextLine CopyLinePart(const CRtfTextLine& line, int32_t from, int32_t to);
// Appends `tail` so that its characters keep their own format, not the one `line` ends with.
// `defaultFont` stands in for a font `tail` leaves unset.
void AppendLine(CRtfTextLine& line, const CRtfTextLine& tail, const SFontDescription& defaultFont);
// Replaces [from, to) by `part` (a paragraph of its own, formats and objects included).
void ReplaceLinePart(CRtfTextLine& line, int32_t from, int32_t to, const CRtfTextLine& part,
                     const SFontDescription& defaultFont);
// Sets the fields present in `format` on [from, to), keeping the other fields as they were and the
// characters after `to` as they were (`defaultFont` stands in for a font no block set there).
void ApplyLineFormat(CRtfTextLine& line, int32_t from, int32_t to, const CRtfTextBlockInfo& format,
                     const SFontDescription& defaultFont);
