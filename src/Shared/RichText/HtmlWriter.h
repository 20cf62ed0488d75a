#pragma once
// The HTML writer, for export and for the clipboard's "HTML Format" data. Pictures and
// attachments are not written. Characters from '0' to 'z' are written as they are, everything
// else (space included) as a decimal character reference; "<" and ">" are in that range and
// stay unescaped, as the exported files always had them. Colours are written with each
// component in unpadded hexadecimal ("#510A" for red 5, green 0x10, blue 0x0A).
#include "Shared/RichText/RichTextDocument.h"

#include <string>
#include <string_view>

// The web address named in the generator comment.
inline constexpr std::u16string_view ProductWebAddress = u"https://www.quillarium.example/";

// `title` goes into <title> unescaped when not empty; `defaultFont` is the application's default
// note font.
std::u16string ToHtml(const CRichTextDocument& document, std::u16string_view title,
                      const SFontDescription& defaultFont);
