#include "Shared/Clipboard/LinkDetection.h"

#include "Shared/Base/TextConv.h"

namespace
{
constexpr std::u16string_view LinkPrefixes[] = {u"file://",  u"ftp://",  u"gopher://", u"http://",
                                                u"https://", u"mailto:", u"news:",     u"telnet:",
                                                u"wais:",    u"www.",    u"ftp."};

bool StartsWithNoCase(std::u16string_view text, size_t position, std::u16string_view prefix)
{
    return text.size() - position >= prefix.size() &&
           EqualsNoCaseAscii(text.substr(position, prefix.size()), prefix);
}

bool EndsLink(char16_t ch)
{
    return ch == u' ' || ch == u'\t' || ch == u'\r' || ch == u'\n';
}

const char16_t* AnchorTemplateFor(std::u16string_view wholeText)
{
    if (StartsWithNoCase(wholeText, 0, u"www."))
        return u"http://";
    if (StartsWithNoCase(wholeText, 0, u"ftp."))
        return u"ftp://";
    return u"";
}

bool IsLineBreakAt(std::u16string_view text, size_t position)
{
    return text[position] == u'\r' || (position + 1 < text.size() && text[position + 1] == u'\n');
}
} // namespace

size_t LinkPrefixLength(std::u16string_view text, size_t position)
{
    if (position >= text.size())
        return 0;
    for (const std::u16string_view prefix : LinkPrefixes)
    {
        if (StartsWithNoCase(text, position, prefix))
            return prefix.size();
    }
    return 0;
}

size_t LinkLength(std::u16string_view text, size_t position)
{
    const size_t prefix = LinkPrefixLength(text, position);
    if (prefix == 0)
        return 0;
    size_t end = position + prefix;
    if (end < text.size() && text[end] == u' ')
        return 0;
    while (end < text.size() && !EndsLink(text[end]))
        ++end;
    const size_t length = end - position;
    return length > prefix ? length : 0;
}

std::u16string PlainTextToHtml(std::u16string_view text)
{
    std::u16string out = u"<HTML><BODY><DIV>";
    const std::u16string_view addressStart = AnchorTemplateFor(text);
    size_t position = 0;
    while (position < text.size())
    {
        if (IsLineBreakAt(text, position))
        {
            const bool afterLineFeed = position != 0 && text[position - 1] == u'\n';
            out += afterLineFeed ? u"&nbsp;</DIV><DIV>" : u"</DIV><DIV>";
            position += 2;
        }
        else if (const size_t length = LinkLength(text, position))
        {
            const std::u16string_view link = text.substr(position, length);
            out += u"<A href=\"";
            out += addressStart;
            out += link;
            out += u"\">";
            out += link;
            out += u"</A>";
            position += length;
        }
        else
            out.push_back(text[position++]);
    }
    out += u"</DIV></BODY></HTML>";
    return out;
}
