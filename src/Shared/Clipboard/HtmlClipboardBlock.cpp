#include "Shared/Clipboard/HtmlClipboardBlock.h"

#include "Shared/Base/TextConv.h"

#include <cstdio>

namespace
{
// Header lines up to the HTML: 105 bytes; the start marker line: 22 more; after the fragment
// come CR LF and the 18-byte end marker.
constexpr size_t StartFragment = 127;
constexpr size_t AfterFragment = 20;

std::string TenDigits(size_t value)
{
    char digits[32];
    std::snprintf(digits, sizeof digits, "%010zu", value);
    return digits;
}
} // namespace

std::string MakeHtmlClipboardBlock(std::u16string_view htmlFragment)
{
    const std::string fragment = Utf16ToCp1252(htmlFragment);
    const size_t n = fragment.size();
    std::string block = "Version:1.0\r\nStartHTML:0000000105\r\nEndHTML:";
    block += TenDigits(n + StartFragment + AfterFragment);
    block += "\r\nStartFragment:0000000127\r\nEndFragment:";
    block += TenDigits(n + StartFragment);
    block += "\r\n<!--StartFragment-->\r\n";
    block += fragment;
    block += "\r\n<!--EndFragment-->";
    return block;
}
