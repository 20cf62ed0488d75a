#pragma once
// Conversion of 8-bit text in a Windows code page (932, 1250, 1251, ...) to UTF-16 through the C
// library's iconv, one converter per code page, opened on first use and kept.
#include <map>
#include <string>
#include <string_view>

class CCodePageConverter
{
public:
    CCodePageConverter() = default;
    ~CCodePageConverter();
    CCodePageConverter(const CCodePageConverter&) = delete;
    CCodePageConverter& operator=(const CCodePageConverter&) = delete;

    // False when the C library does not know the code page. Otherwise appends the text to `out`;
    // a byte sequence that is invalid in the code page becomes U+FFFD and decoding goes on after
    // its first byte.
    bool ToUtf16(int codePage, std::string_view bytes, std::u16string& out);

private:
    // Null when the code page is unknown.
    void* Converter(int codePage);

    std::map<int, void*> m_Converters;
};
