#pragma once
// The RTF reader, for importing RTF files and notes of other programs into the rich text model.
// It understands groups and destinations, the font and colour tables, character formats (font,
// size, bold, italic, underline, text and background colour), hidden text (left out), paragraph
// alignment, tabs,
// Unicode characters with their fallback text, 8-bit text in the document's code pages and
// pictures; every other destination is skipped.
#include "Shared/RichText/RichTextDocument.h"

#include <string>
#include <string_view>

// Reads RTF bytes. Text that no font formats takes `defaultFont`'s face with the size the RTF
// names (12 points when it names none). On success `document` is replaced; on failure (not RTF,
// groups nested more than MaxRtfGroupDepth deep, unbalanced groups, a \bin longer than the data)
// one error line is logged and `document` is left as it was. A caller that logs the failure in
// its own words passes `failure`, which then receives the reason instead of the log.
bool ReadRtf(std::string_view rtf, const SFontDescription& defaultFont, CRichTextDocument& document,
             std::u16string* failure = nullptr);
// The same for RTF held as UTF-16 text, as the RTF writer and the clipboard hand it over: code
// units above 0x7F stand for themselves instead of code page bytes.
bool ReadRtf(std::u16string_view rtf, const SFontDescription& defaultFont, CRichTextDocument& document,
             std::u16string* failure = nullptr);

constexpr size_t MaxRtfGroupDepth = 512;
