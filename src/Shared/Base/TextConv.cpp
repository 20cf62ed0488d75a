#include "Shared/Base/TextConv.h"

#include <cstdint>

namespace
{
constexpr char16_t Replacement = 0xFFFD;

// Code points of bytes 0x80-0x9F; the five bytes Windows-1252 leaves undefined keep their own value.
constexpr char16_t Cp1252High[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                     0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                     0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                     0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

bool IsHighSurrogate(char32_t c)
{
    return c >= 0xD800 && c <= 0xDBFF;
}

bool IsLowSurrogate(char32_t c)
{
    return c >= 0xDC00 && c <= 0xDFFF;
}

void AppendUtf16(std::u16string& out, char32_t cp)
{
    if (cp < 0x10000)
    {
        out.push_back(static_cast<char16_t>(cp));
        return;
    }
    cp -= 0x10000;
    out.push_back(static_cast<char16_t>(0xD800 + (cp >> 10)));
    out.push_back(static_cast<char16_t>(0xDC00 + (cp & 0x3FF)));
}

void AppendUtf8(std::string& out, char32_t cp)
{
    if (cp < 0x80)
        out.push_back(static_cast<char>(cp));
    else if (cp < 0x800)
    {
        out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
    else if (cp < 0x10000)
    {
        out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
    else
    {
        out.push_back(static_cast<char>(0xF0 | (cp >> 18)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
}

// Decodes one UTF-8 sequence at `pos`; a malformed one (overlong, surrogate, beyond U+10FFFF,
// truncated) yields U+FFFD and consumes only its first byte so that resynchronisation is quick.
char32_t DecodeUtf8(std::string_view text, size_t& pos)
{
    const auto lead = static_cast<unsigned char>(text[pos++]);
    if (lead < 0x80)
        return lead;
    int extra = 0;
    char32_t cp = 0;
    char32_t minimum = 0;
    if ((lead & 0xE0) == 0xC0)
    {
        extra = 1;
        cp = lead & 0x1F;
        minimum = 0x80;
    }
    else if ((lead & 0xF0) == 0xE0)
    {
        extra = 2;
        cp = lead & 0x0F;
        minimum = 0x800;
    }
    else if ((lead & 0xF8) == 0xF0)
    {
        extra = 3;
        cp = lead & 0x07;
        minimum = 0x10000;
    }
    else
        return Replacement;
    if (text.size() - pos < static_cast<size_t>(extra))
        return Replacement;
    for (int i = 0; i < extra; ++i)
    {
        const auto next = static_cast<unsigned char>(text[pos + i]);
        if ((next & 0xC0) != 0x80)
            return Replacement;
        cp = (cp << 6) | (next & 0x3F);
    }
    if (cp < minimum || cp > 0x10FFFF || IsHighSurrogate(cp) || IsLowSurrogate(cp))
        return Replacement;
    pos += extra;
    return cp;
}

char16_t LowerAscii(char16_t c)
{
    return (c >= u'A' && c <= u'Z') ? static_cast<char16_t>(c + 32) : c;
}
} // namespace

std::u16string Utf8ToUtf16(std::string_view text)
{
    std::u16string out;
    out.reserve(text.size());
    size_t pos = 0;
    while (pos < text.size())
        AppendUtf16(out, DecodeUtf8(text, pos));
    return out;
}

std::string Utf16ToUtf8(std::u16string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i)
    {
        char32_t c = text[i];
        if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1]))
        {
            c = 0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00);
            ++i;
        }
        else if (IsHighSurrogate(c) || IsLowSurrogate(c))
            c = Replacement;
        AppendUtf8(out, c);
    }
    return out;
}

std::u16string Cp1252ToUtf16(std::string_view bytes)
{
    std::u16string out;
    out.reserve(bytes.size());
    for (char b : bytes)
    {
        const auto byte = static_cast<unsigned char>(b);
        out.push_back(byte >= 0x80 && byte < 0xA0 ? Cp1252High[byte - 0x80] : static_cast<char16_t>(byte));
    }
    return out;
}

bool IsCp1252Representable(char16_t ch)
{
    if (ch < 0x80 || (ch >= 0xA0 && ch <= 0xFF))
        return true;
    for (char16_t mapped : Cp1252High)
        if (mapped == ch)
            return true;
    return false;
}

std::string Utf16ToCp1252(std::u16string_view text, char replacement)
{
    std::string out;
    out.reserve(text.size());
    for (char16_t ch : text)
    {
        if (ch < 0x80 || (ch >= 0xA0 && ch <= 0xFF))
        {
            out.push_back(static_cast<char>(ch));
            continue;
        }
        char mapped = replacement;
        for (int i = 0; i < 32; ++i)
            if (Cp1252High[i] == ch)
                mapped = static_cast<char>(0x80 + i);
        out.push_back(mapped);
    }
    return out;
}

std::u16string Utf16LeBytesToText(std::string_view bytes)
{
    std::u16string out;
    out.reserve(bytes.size() / 2);
    for (size_t i = 0; i + 1 < bytes.size(); i += 2)
        out.push_back(static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                            (static_cast<unsigned char>(bytes[i + 1]) << 8)));
    return out;
}

std::string TextToUtf16LeBytes(std::u16string_view text)
{
    std::string out;
    out.reserve(text.size() * 2);
    for (char16_t ch : text)
    {
        out.push_back(static_cast<char>(ch & 0xFF));
        out.push_back(static_cast<char>(ch >> 8));
    }
    return out;
}

std::u16string AsciiToLower(std::u16string_view text)
{
    std::u16string out(text);
    for (char16_t& ch : out)
        ch = LowerAscii(ch);
    return out;
}

bool EqualsNoCaseAscii(std::u16string_view a, std::u16string_view b)
{
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (LowerAscii(a[i]) != LowerAscii(b[i]))
            return false;
    return true;
}

std::u16string ToU16(long long value)
{
    // Work in unsigned so that the most negative value has a magnitude.
    unsigned long long magnitude =
        value < 0 ? 0ull - static_cast<unsigned long long>(value) : static_cast<unsigned long long>(value);
    std::u16string digits;
    do
    {
        digits.insert(digits.begin(), static_cast<char16_t>(u'0' + magnitude % 10));
        magnitude /= 10;
    } while (magnitude != 0);
    if (value < 0)
        digits.insert(digits.begin(), u'-');
    return digits;
}
