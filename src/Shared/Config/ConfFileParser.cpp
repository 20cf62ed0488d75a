#include "Shared/Config/ConfFileParser.h"

#include "Shared/Base/File.h"
#include "Shared/Base/Format.h"
#include "Shared/Base/TextConv.h"
#include "Shared/Config/Base64.h"
#include "Shared/Log/Log.h"

#include <climits>
#include <cstdlib>
#include <exception>

namespace
{
constexpr char16_t kByteOrderMark = 0xFEFF;
// Lines starting with this single code unit are comments; a line starting with two ASCII
// slashes is an ordinary entry, which existing files rely on.
constexpr char16_t kCommentIdeograph = 0x2F2F;

// Our stand-in for the platform's text test: a byte-order mark FF FE, or an even number of
// bytes with zero bytes in the high (odd) positions that outnumber those in the low positions.
// Text in the ANSI code page has no zero bytes at all, while UTF-16 holding any Latin text has
// many in the high positions.
bool LooksLikeUtf16(const uint8_t* bytes, size_t size, bool& hasMark)
{
    hasMark = size >= 2 && bytes[0] == 0xFF && bytes[1] == 0xFE;
    if (hasMark)
        return true;
    if (size % 2 != 0)
        return false;
    size_t zeroHigh = 0;
    size_t zeroLow = 0;
    for (size_t i = 0; i < size; i += 2)
    {
        zeroLow += bytes[i] == 0;
        zeroHigh += bytes[i + 1] == 0;
    }
    return zeroHigh > 0 && zeroHigh > zeroLow;
}

// The text ends at its first NUL, as the terminated buffer it was read into would.
std::u16string CutAtTerminator(std::u16string text)
{
    const size_t end = text.find(u'\0');
    if (end != std::u16string::npos)
        text.resize(end);
    return text;
}

std::u16string DecodeFileText(const uint8_t* bytes, size_t size)
{
    bool hasMark = false;
    if (!LooksLikeUtf16(bytes, size, hasMark))
        return CutAtTerminator(Cp1252ToUtf16(std::string_view(reinterpret_cast<const char*>(bytes), size)));
    const size_t skip = hasMark ? 2 : 0;
    return CutAtTerminator(
        Utf16LeBytesToText(std::string_view(reinterpret_cast<const char*>(bytes) + skip, size - skip)));
}

// An entry line has at least 3 characters, does not start with a comment mark, and has an "="
// after its first character that is followed by at least one more character.
bool SplitEntryLine(std::u16string_view line, SConfigLineEntry& entry)
{
    if (line.size() < 3 || line[0] == u'*' || line[0] == kCommentIdeograph)
        return false;
    const size_t equals = line.find(u'=', 1);
    if (equals == std::u16string_view::npos || equals + 1 >= line.size())
        return false;
    entry.key.assign(line.substr(0, equals));
    entry.value.assign(line.substr(equals + 1));
    return true;
}

bool IsCSpace(char16_t ch)
{
    return ch == u' ' || (ch >= u'\t' && ch <= u'\r');
}

// ASCII prefix of the text for the narrow C library readers; anything else ends the number.
std::string AsciiPrefix(std::u16string_view text)
{
    std::string narrow;
    for (char16_t ch : text)
    {
        if (ch == 0 || ch > 0x7F)
            break;
        narrow += static_cast<char>(ch);
    }
    return narrow;
}
} // namespace

long long WideTextToLongLong(std::u16string_view text)
{
    size_t i = 0;
    while (i < text.size() && IsCSpace(text[i]))
        ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-'))
        negative = text[i++] == u'-';
    unsigned long long magnitude = 0;
    const unsigned long long limit = negative ? static_cast<unsigned long long>(LLONG_MAX) + 1 : LLONG_MAX;
    for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9'; ++i)
    {
        const unsigned digit = text[i] - u'0';
        if (magnitude > (limit - digit) / 10)
            return negative ? LLONG_MIN : LLONG_MAX;
        magnitude = magnitude * 10 + digit;
    }
    if (negative)
        return magnitude == static_cast<unsigned long long>(LLONG_MAX) + 1
                   ? LLONG_MIN
                   : -static_cast<long long>(magnitude);
    return static_cast<long long>(magnitude);
}

int WideTextToInt(std::u16string_view text)
{
    const long long value = WideTextToLongLong(text);
    if (value > INT_MAX)
        return INT_MAX;
    if (value < INT_MIN)
        return INT_MIN;
    return static_cast<int>(value);
}

double WideTextToDouble(std::u16string_view text)
{
    const std::string narrow = AsciiPrefix(text);
    return std::strtod(narrow.c_str(), nullptr);
}

CConfFileParser::CConfFileParser(IFileSystem* fs) : m_Fs(fs ? *fs : DiskFileSystem()) {}

bool CConfFileParser::Load(const std::u16string& path)
{
    m_Path = path;
    std::string bytes;
    int cause = 0;
    if (!ReadWholeFile(m_Fs, path, bytes, cause))
    {
        LogMessage(u"Error: Cannot read configuration file %s, cause - %d", path, cause);
        return false;
    }
    return Parse(bytes.data(), bytes.size());
}

bool CConfFileParser::Parse(const void* buffer, size_t size)
{
    m_Entries.clear();
    if (size < 3)
    {
        LogMessage(u"Warrning: Attempt to parse empty configuration file %s", m_Path);
        return true;
    }
    try
    {
        const std::u16string text = DecodeFileText(static_cast<const uint8_t*>(buffer), size);
        if (text.size() <= 2)
        {
            LogMessage(u"Warrning: File %s contains less than 2 characters. Most propably attempt to read "
                       u"UNICODE file as ANSI file",
                       m_Path);
            return true;
        }
        ParseLines(text);
        m_Loaded = true;
        return true;
    }
    catch (const std::exception&)
    {
        m_Entries.clear();
        LogMessage(u"Error: An error ocurred on reading/parsing configuration file content %s", m_Path);
        return false;
    }
}

void CConfFileParser::ParseLines(std::u16string_view text)
{
    size_t start = 0;
    while (start <= text.size())
    {
        size_t end = text.find(u"\r\n", start);
        if (end == std::u16string_view::npos)
            end = text.size();
        SConfigLineEntry entry;
        if (SplitEntryLine(text.substr(start, end - start), entry))
            m_Entries.push_back(std::move(entry));
        start = end + 2;
    }
}

bool CConfFileParser::Save()
{
    std::u16string text(1, kByteOrderMark);
    for (const SConfigLineEntry& entry : m_Entries)
    {
        text += entry.key;
        text += u'=';
        text += entry.value;
        text += u"\r\n";
    }
    int cause = 0;
    if (!WriteWholeFile(m_Fs, m_Path, TextToUtf16LeBytes(text), cause))
    {
        LogMessage(u"Error: Cannot write configuration file %s, cause - %d", m_Path, cause);
        return false;
    }
    return true;
}

const SConfigLineEntry* CConfFileParser::Find(std::u16string_view key) const
{
    for (const SConfigLineEntry& entry : m_Entries)
        if (entry.key == key)
            return &entry;
    return nullptr;
}

bool CConfFileParser::GetString(std::u16string_view key, std::u16string& value) const
{
    const SConfigLineEntry* entry = Find(key);
    if (!entry)
        return false;
    value = entry->value;
    return true;
}

bool CConfFileParser::GetInt(std::u16string_view key, int& value) const
{
    const SConfigLineEntry* entry = Find(key);
    if (!entry)
        return false;
    value = WideTextToInt(entry->value);
    return true;
}

bool CConfFileParser::GetUInt(std::u16string_view key, unsigned& value) const
{
    const SConfigLineEntry* entry = Find(key);
    if (!entry)
        return false;
    // Negative text wraps as the C conversion does ("-1" is 0xFFFFFFFF); beyond the 32-bit
    // range the nearest limit is kept, so every value SetUInt writes reads back unchanged.
    const long long number = WideTextToLongLong(entry->value);
    if (number > static_cast<long long>(UINT_MAX))
        value = UINT_MAX;
    else if (number < INT_MIN)
        value = static_cast<unsigned>(INT_MIN);
    else
        value = static_cast<unsigned>(number);
    return true;
}

bool CConfFileParser::GetDouble(std::u16string_view key, double& value) const
{
    const SConfigLineEntry* entry = Find(key);
    if (!entry)
        return false;
    value = WideTextToDouble(entry->value);
    return true;
}

bool CConfFileParser::GetBool(std::u16string_view key, bool& value) const
{
    const SConfigLineEntry* entry = Find(key);
    if (!entry)
        return false;
    value = EqualsNoCaseAscii(entry->value, u"true") || entry->value == u"1";
    return true;
}

bool CConfFileParser::GetBinary(std::u16string_view key, std::vector<uint8_t>& value) const
{
    const SConfigLineEntry* entry = Find(key);
    if (!entry)
        return false;
    std::vector<uint8_t> bytes;
    if (!DecodeBase64(entry->value, bytes) || bytes.empty())
        return false;
    value = std::move(bytes);
    return true;
}

bool CConfFileParser::GetIntList(std::u16string_view key, size_t expectedCount,
                                 std::vector<int>& values) const
{
    const SConfigLineEntry* entry = Find(key);
    if (!entry)
        return false;
    std::vector<int> items;
    std::u16string_view rest = entry->value;
    while (true)
    {
        const size_t comma = rest.find(u',');
        if (items.size() == expectedCount)
            return false; // more items than expected; stop before reading them all
        items.push_back(WideTextToInt(rest.substr(0, comma)));
        if (comma == std::u16string_view::npos)
            break;
        rest.remove_prefix(comma + 1);
    }
    if (items.size() != expectedCount)
        return false;
    values = std::move(items);
    return true;
}

void CConfFileParser::SetString(std::u16string_view key, std::u16string_view value)
{
    m_Entries.push_back({std::u16string(key), std::u16string(value)});
}

void CConfFileParser::SetBool(std::u16string_view key, bool value)
{
    SetString(key, value ? u"true" : u"false");
}

void CConfFileParser::SetUInt(std::u16string_view key, unsigned value)
{
    SetString(key, ToU16(value));
}

void CConfFileParser::SetDouble(std::u16string_view key, double value)
{
    SetString(key, FormatText(u"%f", value));
}

void CConfFileParser::SetBinary(std::u16string_view key, const void* data, size_t size)
{
    SetString(key, EncodeBase64(data, size));
}
