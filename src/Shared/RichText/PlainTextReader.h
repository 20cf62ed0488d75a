#pragma once
// Plain text files for import: the encoding is recognised from the bytes and the text becomes a
// rich text document line by line.
#include "Shared/RichText/RichTextDocument.h"

#include <string>
#include <string_view>

// UTF-8 with or without its byte order mark, UTF-16 (either byte order) with its mark, and
// otherwise Windows-1252. Bytes that are valid UTF-8 and hold at least one sequence above 0x7F
// are taken as UTF-8; plain ASCII reads the same either way.
std::u16string DecodePlainTextBytes(std::string_view bytes);

// True when every sequence of `bytes` is well-formed UTF-8 (no overlong forms, no surrogates).
bool IsValidUtf8(std::string_view bytes);

// Replaces `document` by the decoded text, split into lines.
void ReadPlainText(std::string_view bytes, CRichTextDocument& document);
