#pragma once
// printf-style formatting that writes UTF-16 text. Arguments are typed, so "%s" accepts both
// UTF-16 and UTF-8 text and a wrong argument is detected instead of being undefined behaviour.
//
// Conversions: %s %S %d %i %u %f %x %X %c %%, with the flags '-', '0', '+', ' ', '#', a width and a
// precision given as numbers, and the length modifiers h, hh, l, ll, I32 and I64, which narrow or
// widen the integer as the C library would (%hhX prints the low byte, %d the low 32 bits, %l is 64
// bits wide here). Text after a '%' that names no conversion is kept as written.
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

class CFormatArg
{
public:
    enum class EKind
    {
        Signed,
        Unsigned,
        Double,
        Text16,
        Text8,
        Char
    };

    CFormatArg(int v) : m_Kind(EKind::Signed), m_Signed(v) {}
    CFormatArg(long v) : m_Kind(EKind::Signed), m_Signed(v) {}
    CFormatArg(long long v) : m_Kind(EKind::Signed), m_Signed(v) {}
    CFormatArg(short v) : m_Kind(EKind::Signed), m_Signed(v) {}
    CFormatArg(signed char v) : m_Kind(EKind::Signed), m_Signed(v) {}
    CFormatArg(unsigned v) : m_Kind(EKind::Unsigned), m_Unsigned(v) {}
    CFormatArg(unsigned long v) : m_Kind(EKind::Unsigned), m_Unsigned(v) {}
    CFormatArg(unsigned long long v) : m_Kind(EKind::Unsigned), m_Unsigned(v) {}
    CFormatArg(unsigned short v) : m_Kind(EKind::Unsigned), m_Unsigned(v) {}
    CFormatArg(unsigned char v) : m_Kind(EKind::Unsigned), m_Unsigned(v) {}
    CFormatArg(bool v) : m_Kind(EKind::Signed), m_Signed(v ? 1 : 0) {}
    CFormatArg(double v) : m_Kind(EKind::Double), m_Double(v) {}
    CFormatArg(char16_t v) : m_Kind(EKind::Char), m_Unsigned(v) {}
    CFormatArg(const char16_t* v) : m_Kind(EKind::Text16), m_Text16(v ? v : u"(null)") {}
    CFormatArg(const std::u16string& v) : m_Kind(EKind::Text16), m_Text16(v) {}
    CFormatArg(std::u16string_view v) : m_Kind(EKind::Text16), m_Text16(v) {}
    CFormatArg(const char* v) : m_Kind(EKind::Text8), m_Text8(v ? v : "(null)") {}
    CFormatArg(const std::string& v) : m_Kind(EKind::Text8), m_Text8(v) {}
    CFormatArg(std::string_view v) : m_Kind(EKind::Text8), m_Text8(v) {}

    EKind Kind() const { return m_Kind; }
    long long Signed() const { return m_Signed; }
    unsigned long long Unsigned() const { return m_Unsigned; }
    double Double() const { return m_Double; }
    std::u16string_view Text16() const { return m_Text16; }
    std::string_view Text8() const { return m_Text8; }

private:
    EKind m_Kind;
    long long m_Signed = 0;
    unsigned long long m_Unsigned = 0;
    double m_Double = 0;
    std::u16string_view m_Text16;
    std::string_view m_Text8;
};

// Formats into `out`, keeping at most `maxChars` characters (the rest is cut, as bounded C
// formatting does). Returns false when the format asks for an argument that is missing or of
// an incompatible kind; `out` then holds the text formatted up to that point.
bool TryFormatText(std::u16string& out, std::u16string_view format, std::span<const CFormatArg> args,
                   size_t maxChars = std::u16string::npos);

// Convenience form: on a format error the result is what TryFormatText left.
template <class... TArgs> std::u16string FormatText(std::u16string_view format, const TArgs&... args)
{
    std::u16string out;
    if constexpr (sizeof...(TArgs) == 0)
        TryFormatText(out, format, {});
    else
    {
        const CFormatArg list[] = {CFormatArg(args)...};
        TryFormatText(out, format, list);
    }
    return out;
}
