#include "Shared/Base/Format.h"

#include "Shared/Base/TextConv.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace
{
// Widths and precisions beyond this are clamped so that a hostile format cannot ask for gigabytes.
constexpr size_t MaxFieldSize = 1 << 16;

struct SSpec
{
    bool left = false;
    bool zero = false;
    bool plus = false;
    bool space = false;
    bool alternate = false;
    size_t width = 0;
    bool hasPrecision = false;
    size_t precision = 0;
    int bits = 32; // integer size after the length modifier
    char16_t conversion = 0;
};

// Appends to the result while keeping it within the caller's limit.
class CBoundedOut
{
public:
    CBoundedOut(std::u16string& out, size_t maxChars) : m_Out(out), m_Max(maxChars) {}

    void Put(std::u16string_view text)
    {
        const size_t room = m_Max > m_Out.size() ? m_Max - m_Out.size() : 0;
        m_Out.append(text.substr(0, std::min(room, text.size())));
    }
    void PutRepeated(char16_t ch, size_t count)
    {
        const size_t room = m_Max > m_Out.size() ? m_Max - m_Out.size() : 0;
        m_Out.append(std::min(room, count), ch);
    }

private:
    std::u16string& m_Out;
    size_t m_Max;
};

size_t ParseNumber(std::u16string_view format, size_t& pos)
{
    size_t value = 0;
    while (pos < format.size() && format[pos] >= u'0' && format[pos] <= u'9')
    {
        value = std::min(MaxFieldSize, value * 10 + (format[pos] - u'0'));
        ++pos;
    }
    return value;
}

void ParseFlags(std::u16string_view format, size_t& pos, SSpec& spec)
{
    for (; pos < format.size(); ++pos)
    {
        switch (format[pos])
        {
        case u'-':
            spec.left = true;
            break;
        case u'0':
            spec.zero = true;
            break;
        case u'+':
            spec.plus = true;
            break;
        case u' ':
            spec.space = true;
            break;
        case u'#':
            spec.alternate = true;
            break;
        default:
            return;
        }
    }
}

void ParseLength(std::u16string_view format, size_t& pos, SSpec& spec)
{
    const std::u16string_view rest = format.substr(pos);
    if (rest.starts_with(u"hh"))
        spec.bits = 8, pos += 2;
    else if (rest.starts_with(u"h"))
        spec.bits = 16, pos += 1;
    else if (rest.starts_with(u"ll"))
        spec.bits = 64, pos += 2;
    else if (rest.starts_with(u"l"))
        spec.bits = 8 * sizeof(long), pos += 1;
    else if (rest.starts_with(u"I64"))
        spec.bits = 64, pos += 3;
    else if (rest.starts_with(u"I32"))
        spec.bits = 32, pos += 3;
}

// Parses everything after '%' up to and including the conversion character; false when the
// format ends first.
bool ParseSpec(std::u16string_view format, size_t& pos, SSpec& spec)
{
    ParseFlags(format, pos, spec);
    spec.width = ParseNumber(format, pos);
    if (pos < format.size() && format[pos] == u'.')
    {
        ++pos;
        spec.hasPrecision = true;
        spec.precision = ParseNumber(format, pos);
    }
    ParseLength(format, pos, spec);
    if (pos >= format.size())
        return false;
    spec.conversion = format[pos++];
    return true;
}

void PutPadded(CBoundedOut& out, const SSpec& spec, std::u16string_view prefix, std::u16string_view body)
{
    const size_t length = prefix.size() + body.size();
    const size_t padding = spec.width > length ? spec.width - length : 0;
    if (spec.left)
    {
        out.Put(prefix);
        out.Put(body);
        out.PutRepeated(u' ', padding);
    }
    else if (spec.zero)
    {
        out.Put(prefix);
        out.PutRepeated(u'0', padding);
        out.Put(body);
    }
    else
    {
        out.PutRepeated(u' ', padding);
        out.Put(prefix);
        out.Put(body);
    }
}

bool IsInteger(const CFormatArg& arg)
{
    using K = CFormatArg::EKind;
    return arg.Kind() == K::Signed || arg.Kind() == K::Unsigned || arg.Kind() == K::Char;
}

unsigned long long RawBits(const CFormatArg& arg)
{
    return arg.Kind() == CFormatArg::EKind::Signed ? static_cast<unsigned long long>(arg.Signed())
                                                   : arg.Unsigned();
}

// The value as the C library sees it after the length modifier narrows or widens it.
unsigned long long Narrowed(unsigned long long bits, int width)
{
    return width >= 64 ? bits : bits & ((1ull << width) - 1);
}

long long SignExtended(unsigned long long bits, int width)
{
    if (width >= 64)
        return static_cast<long long>(bits);
    const unsigned long long narrowed = Narrowed(bits, width);
    const unsigned long long sign = 1ull << (width - 1);
    return static_cast<long long>(narrowed ^ sign) - static_cast<long long>(sign);
}

std::u16string Digits(unsigned long long value, unsigned base, bool upper, const SSpec& spec)
{
    const char16_t* digitSet = upper ? u"0123456789ABCDEF" : u"0123456789abcdef";
    std::u16string digits;
    while (value != 0)
    {
        digits.push_back(digitSet[value % base]);
        value /= base;
    }
    const size_t minimum = spec.hasPrecision ? spec.precision : 1;
    if (digits.size() < minimum)
        digits.append(minimum - digits.size(), u'0');
    std::reverse(digits.begin(), digits.end());
    return digits;
}

void PutInteger(CBoundedOut& out, SSpec spec, const CFormatArg& arg)
{
    const unsigned long long bits = RawBits(arg);
    std::u16string prefix;
    std::u16string body;
    if (spec.conversion == u'd' || spec.conversion == u'i')
    {
        const long long value = SignExtended(bits, spec.bits);
        const unsigned long long magnitude = value < 0 ? 0ull - static_cast<unsigned long long>(value)
                                                       : static_cast<unsigned long long>(value);
        if (value < 0)
            prefix = u"-";
        else if (spec.plus)
            prefix = u"+";
        else if (spec.space)
            prefix = u" ";
        body = Digits(magnitude, 10, false, spec);
    }
    else
    {
        const unsigned long long value = Narrowed(bits, spec.bits);
        const bool upper = spec.conversion == u'X';
        const unsigned base = spec.conversion == u'u' ? 10 : spec.conversion == u'o' ? 8 : 16;
        body = Digits(value, base, upper, spec);
        if (spec.alternate && base == 16 && value != 0)
            prefix = upper ? u"0X" : u"0x";
        if (spec.alternate && base == 8 && !body.starts_with(u'0'))
            body.insert(body.begin(), u'0');
    }
    if (spec.hasPrecision)
        spec.zero = false; // the C library ignores '0' when a precision is given
    PutPadded(out, spec, prefix, body);
}

void PutDouble(CBoundedOut& out, SSpec spec, double value)
{
    std::string narrow = "%";
    if (spec.plus)
        narrow += '+';
    if (spec.space)
        narrow += ' ';
    if (spec.alternate)
        narrow += '#';
    narrow += '.' + std::to_string(std::min<size_t>(spec.hasPrecision ? spec.precision : 6, 1024));
    narrow += static_cast<char>(spec.conversion);
    const int length = std::snprintf(nullptr, 0, narrow.c_str(), value);
    std::string text(static_cast<size_t>(std::max(length, 0)) + 1, '\0');
    std::snprintf(text.data(), text.size(), narrow.c_str(), value);
    text.pop_back();
    std::u16string prefix;
    if (!text.empty() && (text[0] == '-' || text[0] == '+' || text[0] == ' '))
    {
        prefix.push_back(static_cast<char16_t>(text[0]));
        text.erase(0, 1);
    }
    if (!std::isfinite(value))
        spec.zero = false;
    PutPadded(out, spec, prefix, std::u16string(text.begin(), text.end()));
}

void PutText(CBoundedOut& out, SSpec spec, const CFormatArg& arg)
{
    std::u16string converted;
    std::u16string_view text;
    if (arg.Kind() == CFormatArg::EKind::Text8)
    {
        converted = Utf8ToUtf16(arg.Text8());
        text = converted;
    }
    else
        text = arg.Text16();
    if (spec.hasPrecision)
        text = text.substr(0, std::min(spec.precision, text.size()));
    spec.zero = false;
    PutPadded(out, spec, {}, text);
}

void PutChar(CBoundedOut& out, SSpec spec, const CFormatArg& arg)
{
    const char16_t ch = static_cast<char16_t>(RawBits(arg));
    spec.zero = false;
    PutPadded(out, spec, {}, std::u16string_view(&ch, 1));
}

// Writes one conversion; false when the argument is missing or does not fit it.
bool PutConversion(CBoundedOut& out, const SSpec& spec, std::span<const CFormatArg> args, size_t& next)
{
    if (next >= args.size())
        return false;
    const CFormatArg& arg = args[next++];
    using K = CFormatArg::EKind;
    switch (spec.conversion)
    {
    case u'd':
    case u'i':
    case u'u':
    case u'x':
    case u'X':
    case u'o':
        if (!IsInteger(arg))
            return false;
        PutInteger(out, spec, arg);
        return true;
    case u'f':
    case u'F':
    case u'e':
    case u'E':
    case u'g':
    case u'G':
        if (arg.Kind() != K::Double)
            return false;
        PutDouble(out, spec, arg.Double());
        return true;
    case u's':
    case u'S':
        if (arg.Kind() != K::Text16 && arg.Kind() != K::Text8)
            return false;
        PutText(out, spec, arg);
        return true;
    default: // 'c'
        if (!IsInteger(arg))
            return false;
        PutChar(out, spec, arg);
        return true;
    }
}

bool IsKnownConversion(char16_t c)
{
    return std::u16string_view(u"diuxXofFeEgGsSc").find(c) != std::u16string_view::npos;
}
} // namespace

bool TryFormatText(std::u16string& out, std::u16string_view format, std::span<const CFormatArg> args,
                   size_t maxChars)
{
    out.clear();
    CBoundedOut bounded(out, maxChars);
    size_t next = 0;
    size_t pos = 0;
    while (pos < format.size())
    {
        const size_t percent = format.find(u'%', pos);
        bounded.Put(format.substr(pos, percent == std::u16string_view::npos ? format.npos : percent - pos));
        if (percent == std::u16string_view::npos)
            break;
        pos = percent + 1;
        if (pos < format.size() && format[pos] == u'%')
        {
            bounded.Put(u"%");
            ++pos;
            continue;
        }
        SSpec spec;
        if (!ParseSpec(format, pos, spec) || !IsKnownConversion(spec.conversion))
        {
            // Not a conversion: kept as written, the way the C library passes it through.
            bounded.Put(format.substr(percent, pos - percent));
            continue;
        }
        if (!PutConversion(bounded, spec, args, next))
            return false;
    }
    return true;
}
