#pragma once
// Decodes the 8-bit text of an RTF file (\'hh escapes and raw bytes above 0x7F) in the code page
// in force: the document's \ansicpg, a font's \fcharset or a group's \cpg. Windows-1252 is
// decoded directly because nearly every file uses it; other code pages go through the C
// library's iconv (CCodePageConverter).
#include "Shared/Base/CodePageConverter.h"

#include <set>
#include <string>
#include <string_view>

class CRtfCodePageDecoder
{
public:
    static constexpr int WesternCodePage = 1252;

    // Appends the decoded `bytes` to `out`. A code page the C library does not know is decoded
    // as Windows-1252 after one warning line; bytes invalid in the code page become U+FFFD.
    void Decode(int codePage, std::string_view bytes, std::u16string& out);

    // The code page of an RTF \fcharset value, or 0 when the character set names none (ANSI,
    // default and symbol fonts follow the document's code page).
    static int CodePageOfCharset(int charset);

private:
    CCodePageConverter m_Converter;
    std::set<int> m_Unknown;
};
