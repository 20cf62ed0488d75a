#pragma once
// UTF-16 text (std::u16string) and its conversions. Invalid input never throws: bad UTF-8
// sequences and lone surrogates become U+FFFD.
#include <string>
#include <string_view>

std::u16string Utf8ToUtf16(std::string_view text);
std::string Utf16ToUtf8(std::u16string_view text);

// Windows-1252 ("ANSI" on the systems whose files we read). Undefined bytes 0x81, 0x8D, 0x8F,
// 0x90, 0x9D map to the same code points, as the platform does.
std::u16string Cp1252ToUtf16(std::string_view bytes);
// Characters without a Windows-1252 form become `replacement`.
std::string Utf16ToCp1252(std::u16string_view text, char replacement = '?');
bool IsCp1252Representable(char16_t ch);

// Reads UTF-16LE bytes (an odd trailing byte is ignored) and writes them back.
std::u16string Utf16LeBytesToText(std::string_view bytes);
std::string TextToUtf16LeBytes(std::u16string_view text);

// Simple case mapping for ASCII only; TextSearch has the full one.
std::u16string AsciiToLower(std::u16string_view text);
bool EqualsNoCaseAscii(std::u16string_view a, std::u16string_view b);

// Decimal number as UTF-16 text.
std::u16string ToU16(long long value);
