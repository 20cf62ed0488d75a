#include "Shared/Config/Base64.h"

namespace
{
constexpr char16_t kAlphabet[] = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char16_t kPad = u'=';

int SextetOf(char16_t ch)
{
    if (ch >= u'A' && ch <= u'Z')
        return ch - u'A';
    if (ch >= u'a' && ch <= u'z')
        return ch - u'a' + 26;
    if (ch >= u'0' && ch <= u'9')
        return ch - u'0' + 52;
    if (ch == u'+')
        return 62;
    if (ch == u'/')
        return 63;
    return -1;
}

// Decodes one 4-character group; `last` allows padding. Returns the byte count (1..3) or 0.
size_t DecodeGroup(std::u16string_view group, bool last, uint8_t out[3])
{
    size_t padding = 0;
    if (last && group[3] == kPad)
        padding = group[2] == kPad ? 2 : 1;
    uint32_t bits = 0;
    for (size_t i = 0; i < 4; ++i)
    {
        int sextet = i < 4 - padding ? SextetOf(group[i]) : 0;
        if (sextet < 0)
            return 0;
        bits = (bits << 6) | static_cast<uint32_t>(sextet);
    }
    out[0] = static_cast<uint8_t>(bits >> 16);
    out[1] = static_cast<uint8_t>(bits >> 8);
    out[2] = static_cast<uint8_t>(bits);
    return 3 - padding;
}
} // namespace

std::u16string EncodeBase64(const void* data, size_t size)
{
    const auto* bytes = static_cast<const uint8_t*>(data);
    std::u16string text;
    text.reserve((size + 2) / 3 * 4);
    for (size_t i = 0; i < size; i += 3)
    {
        const size_t count = size - i < 3 ? size - i : 3;
        uint32_t bits = static_cast<uint32_t>(bytes[i]) << 16;
        if (count > 1)
            bits |= static_cast<uint32_t>(bytes[i + 1]) << 8;
        if (count > 2)
            bits |= bytes[i + 2];
        text += kAlphabet[(bits >> 18) & 63];
        text += kAlphabet[(bits >> 12) & 63];
        text += count > 1 ? kAlphabet[(bits >> 6) & 63] : kPad;
        text += count > 2 ? kAlphabet[bits & 63] : kPad;
    }
    return text;
}

bool DecodeBase64(std::u16string_view text, std::vector<uint8_t>& bytes)
{
    bytes.clear();
    if (text.size() % 4 != 0)
        return false;
    bytes.reserve(text.size() / 4 * 3);
    for (size_t i = 0; i < text.size(); i += 4)
    {
        uint8_t group[3];
        const size_t count = DecodeGroup(text.substr(i, 4), i + 4 == text.size(), group);
        if (count == 0)
        {
            bytes.clear();
            return false;
        }
        bytes.insert(bytes.end(), group, group + count);
    }
    return true;
}
