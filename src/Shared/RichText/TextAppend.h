#pragma once
// Small appenders the writers use in their per-character loops, where a general formatter would
// dominate the run time.
#include <cstdint>
#include <string>
#include <string_view>

inline void AppendAscii(std::u16string& out, std::string_view ascii)
{
    const size_t at = out.size();
    out.resize(at + ascii.size());
    for (size_t i = 0; i < ascii.size(); ++i)
        out[at + i] = static_cast<char16_t>(static_cast<unsigned char>(ascii[i]));
}

inline void AppendDecimal(std::u16string& out, int64_t value)
{
    char digits[24];
    size_t count = 0;
    uint64_t magnitude = value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
    do
    {
        digits[count++] = static_cast<char>('0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude != 0);
    if (value < 0)
        out.push_back(u'-');
    while (count > 0)
        out.push_back(static_cast<char16_t>(digits[--count]));
}

// The characters of all paragraphs plus a share for the segments, to size writers' output.
template <class TDocument> size_t EstimatedTextSize(const TDocument& document)
{
    size_t size = 0;
    for (const auto& line : document.Lines())
        size += line.Text().size() + 32 * line.Blocks().size();
    return size;
}
