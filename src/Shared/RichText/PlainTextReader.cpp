#include "Shared/RichText/PlainTextReader.h"

#include "Shared/Base/TextConv.h"

namespace
{
size_t SequenceLength(uint8_t lead)
{
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return 2;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 3;
    if (lead >= 0xF0 && lead <= 0xF4)
        return 4;
    return 0;
}

// The second byte's range for leads whose first continuation is restricted.
bool IsValidSecondByte(uint8_t lead, uint8_t second)
{
    if (lead == 0xE0)
        return second >= 0xA0 && second <= 0xBF;
    if (lead == 0xED)
        return second >= 0x80 && second <= 0x9F;
    if (lead == 0xF0)
        return second >= 0x90 && second <= 0xBF;
    if (lead == 0xF4)
        return second >= 0x80 && second <= 0x8F;
    return second >= 0x80 && second <= 0xBF;
}

std::u16string Utf16BeBytesToText(std::string_view bytes)
{
    std::u16string text(bytes.size() / 2, u'\0');
    for (size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char16_t>((static_cast<uint8_t>(bytes[2 * i]) << 8) |
                                        static_cast<uint8_t>(bytes[2 * i + 1]));
    return text;
}
} // namespace

bool IsValidUtf8(std::string_view bytes)
{
    for (size_t at = 0; at < bytes.size();)
    {
        const uint8_t lead = static_cast<uint8_t>(bytes[at]);
        const size_t length = SequenceLength(lead);
        if (length == 0 || bytes.size() - at < length)
            return false;
        if (length > 1 && !IsValidSecondByte(lead, static_cast<uint8_t>(bytes[at + 1])))
            return false;
        for (size_t i = 2; i < length; ++i)
            if ((static_cast<uint8_t>(bytes[at + i]) & 0xC0) != 0x80)
                return false;
        at += length;
    }
    return true;
}

std::u16string DecodePlainTextBytes(std::string_view bytes)
{
    if (bytes.starts_with("\xEF\xBB\xBF"))
        return Utf8ToUtf16(bytes.substr(3));
    if (bytes.starts_with("\xFF\xFE"))
        return Utf16LeBytesToText(bytes.substr(2));
    if (bytes.starts_with("\xFE\xFF"))
        return Utf16BeBytesToText(bytes.substr(2));
    if (IsValidUtf8(bytes))
        return Utf8ToUtf16(bytes);
    return Cp1252ToUtf16(bytes);
}

void ReadPlainText(std::string_view bytes, CRichTextDocument& document)
{
    document.BuildFromPlainText(DecodePlainTextBytes(bytes));
}
