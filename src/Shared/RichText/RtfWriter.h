#pragma once
// The RTF writer, for export and for the "Rich Text Format" clipboard data. Pictures and
// attachments are not written. The font table's family, pitch and TrueType keywords and the code
// page of non-ASCII characters come from the installed IRichTextPlatform.
#include "Shared/RichText/RichTextDocument.h"

#include <string>
#include <string_view>

// `defaultFont` is the application's default note font: it stands for text no block formats.
std::u16string ToRtf(const CRichTextDocument& document, const SFontDescription& defaultFont);

// The writer's text as the bytes of an RTF file or of the clipboard's RTF data. The writer
// escapes every text character outside ASCII, so only its one-character fallbacks (below 256)
// and font face names can be wider: a unit below 256 becomes one byte (its Windows-1252 or
// Latin-1 reading is the fallback), a wider one "\uN?", which readers take inside a font table
// as well.
std::string RtfTextToBytes(std::u16string_view rtf);
