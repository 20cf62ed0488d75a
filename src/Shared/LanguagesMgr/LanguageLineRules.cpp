#include "Shared/LanguagesMgr/LanguageLineRules.h"

namespace
{
// Builds a new string so that long hostile lines stay linear in their length.
void ReplaceAll(std::u16string& text, std::u16string_view from, std::u16string_view to)
{
    std::u16string result;
    result.reserve(text.size());
    size_t start = 0;
    for (size_t pos; (pos = text.find(from, start)) != std::u16string::npos; start = pos + from.size())
    {
        result.append(text, start, pos - start);
        result += to;
    }
    result.append(text, start);
    text = std::move(result);
}

bool IsMarkingCharacter(char16_t ch)
{
    return ch == u'^' || ch == u'|' || ch == u'\n' || ch == u'\t';
}

bool IsIgnoredConversion(char16_t ch)
{
    return ch == u'M' || ch == u'D' || ch == u'I';
}
} // namespace

std::u16string ApplyCharacterReplacements(std::u16string_view line)
{
    std::u16string text(line);
    ReplaceAll(text, u"\\n", u"\n");
    ReplaceAll(text, u"\\r", u"\r");
    ReplaceAll(text, u"\\t", u"\t");
    ReplaceAll(text, u"& ", u"&& ");
    ReplaceAll(text, u"&&", u"@@");
    ReplaceAll(text, u"&", u"");
    ReplaceAll(text, u"@@", u"&&");
    ReplaceAll(text, u"&& ", u"& ");
    return text;
}

std::u16string EscapeControlCharacters(std::u16string_view text)
{
    std::u16string escaped;
    escaped.reserve(text.size());
    for (char16_t ch : text)
    {
        if (ch == u'\n')
            escaped += u"\\n";
        else if (ch == u'\r')
            escaped += u"\\r";
        else if (ch == u'\t')
            escaped += u"\\t";
        else
            escaped += ch;
    }
    return escaped;
}

std::u16string ComputeMarkings(std::u16string_view text)
{
    std::u16string markings;
    size_t i = 0;
    while (i < text.size())
    {
        const char16_t ch = text[i];
        if (ch == u'%' && i + 1 < text.size())
        {
            const char16_t conversion = text[i + 1];
            if (!IsIgnoredConversion(conversion))
                markings += conversion;
            // A second "%" is looked at again as the start of a new conversion.
            i += conversion == u'%' ? 1 : 2;
            continue;
        }
        if (IsMarkingCharacter(ch))
            markings += ch;
        ++i;
    }
    return markings;
}

std::u16string_view KeyPrefixOf(std::u16string_view line)
{
    if (line.empty() || line[0] == u'/')
        return {};
    const size_t equals = line.find(u'=', 1);
    if (equals == std::u16string_view::npos)
        return {};
    return line.substr(0, equals + 1);
}
