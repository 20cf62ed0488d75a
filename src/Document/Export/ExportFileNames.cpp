#include "Document/Export/ExportFileNames.h"

#include "Shared/Base/TextConv.h"

#include <algorithm>
#include <array>

namespace
{
bool IsRefusedInNames(char16_t ch)
{
    return ch < 0x20 || ch == 0x7F ||
           std::u16string_view(u"/\\:*?\"<>|").find(ch) != std::u16string_view::npos;
}

bool IsReservedOnWindows(std::u16string_view stem)
{
    static constexpr std::array<std::u16string_view, 4> Plain = {u"con", u"prn", u"aux", u"nul"};
    const std::u16string lower = AsciiToLower(stem.substr(0, stem.find(u'.')));
    if (std::find(Plain.begin(), Plain.end(), lower) != Plain.end())
        return true;
    return lower.size() == 4 && (lower.starts_with(u"com") || lower.starts_with(u"lpt")) &&
           lower[3] >= u'1' && lower[3] <= u'9';
}

// Cuts to at most `length` units without splitting a surrogate pair.
std::u16string CutAt(std::u16string text, size_t length)
{
    if (text.size() <= length)
        return text;
    if (length > 0 && text[length - 1] >= 0xD800 && text[length - 1] < 0xDC00)
        --length;
    text.resize(length);
    return text;
}

std::u16string WithExtension(std::u16string_view stem, std::u16string_view extension)
{
    std::u16string name(stem);
    if (!extension.empty())
        name += u"." + std::u16string(extension);
    return name;
}
} // namespace

std::u16string SafeFileStem(std::u16string_view caption)
{
    std::u16string stem;
    for (const char16_t ch : caption)
        stem.push_back(IsRefusedInNames(ch) ? u'_' : ch);
    stem = CutAt(std::move(stem), CExportNames::MaxStemLength);
    const size_t first = stem.find_first_not_of(u' ');
    stem.erase(0, first == std::u16string::npos ? stem.size() : first);
    while (!stem.empty() && (stem.back() == u' ' || stem.back() == u'.'))
        stem.pop_back();
    if (stem.empty())
        return u"Untitled";
    return IsReservedOnWindows(stem) ? u"_" + stem : stem;
}

std::u16string CExportNames::Take(std::u16string_view caption, std::u16string_view extension)
{
    const std::u16string stem = SafeFileStem(caption);
    std::u16string name = WithExtension(stem, extension);
    for (int number = 2; !m_Taken.insert(AsciiToLower(name)).second; ++number)
        name = WithExtension(stem + u" (" + ToU16(number) + u")", extension);
    return name;
}

std::string RelativeLink(std::u16string_view path)
{
    static constexpr char Hex[] = "0123456789ABCDEF";
    std::string link;
    for (const char byte : Utf16ToUtf8(path))
    {
        const auto ch = static_cast<unsigned char>(byte);
        if ((ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z') || (ch >= '0' && ch <= '9') ||
            std::string_view("-._~/").find(static_cast<char>(ch)) != std::string_view::npos)
            link.push_back(static_cast<char>(ch));
        else
        {
            link.push_back('%');
            link.push_back(Hex[ch >> 4]);
            link.push_back(Hex[ch & 15]);
        }
    }
    return link;
}

std::string HtmlEscaped(std::u16string_view text)
{
    std::string out;
    for (const char byte : Utf16ToUtf8(text))
    {
        switch (byte)
        {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        case '\'':
            out += "&#39;";
            break;
        default:
            out.push_back(byte);
        }
    }
    return out;
}
