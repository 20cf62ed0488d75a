#pragma once
// The plain text of a document, as kept in a note's plain text field and used by search, the
// text export and the clipboard's text: paragraphs joined with CR LF (none after the last). An
// object contributes nothing for a picture and its file name in square brackets for an
// attachment, so that a search finds attachments by name; the U+0014 that stands at an
// object's position in the model's text is not copied.
#include "Shared/RichText/RichTextDocument.h"

#include <string>

std::u16string ToPlainText(const CRichTextDocument& document);
// One paragraph by the same rule.
void AppendPlainText(std::u16string& out, const CRtfTextLine& line);
