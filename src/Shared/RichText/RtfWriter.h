#pragma once
// The RTF writer, for export and for the "Rich Text Format" clipboard data. Pictures and
// attachments are not written. The font table's family, pitch and TrueType keywords and the code
// page of non-ASCII characters come from the installed IRichTextPlatform.
#include "Shared/RichText/RichTextDocument.h"

#include <string>

// `defaultFont` is the application's default note font: it stands for text no block formats.
std::u16string ToRtf(const CRichTextDocument& document, const SFontDescription& defaultFont);
