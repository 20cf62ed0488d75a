#include "Document/ItemExtendedData.h"

#include <algorithm>

bool CItemExtendedData::IsAllZero() const
{
    return std::all_of(m_Bytes.begin(), m_Bytes.end(), [](uint8_t b) { return b == 0; });
}

std::optional<uint32_t> CItemExtendedData::TextColour() const
{
    return OptionalColour(TextColourFlag, TextColourOffset);
}

void CItemExtendedData::SetTextColour(std::optional<uint32_t> colour)
{
    SetOptionalColour(TextColourFlag, TextColourOffset, colour);
}

std::optional<uint32_t> CItemExtendedData::BackColour() const
{
    return OptionalColour(BackColourFlag, BackColourOffset);
}

void CItemExtendedData::SetBackColour(std::optional<uint32_t> colour)
{
    SetOptionalColour(BackColourFlag, BackColourOffset, colour);
}

uint32_t CItemExtendedData::ReadU32(size_t offset) const
{
    return static_cast<uint32_t>(m_Bytes[offset]) | static_cast<uint32_t>(m_Bytes[offset + 1]) << 8 |
           static_cast<uint32_t>(m_Bytes[offset + 2]) << 16 |
           static_cast<uint32_t>(m_Bytes[offset + 3]) << 24;
}

void CItemExtendedData::WriteU32(size_t offset, uint32_t value)
{
    for (size_t i = 0; i < 4; ++i)
        m_Bytes[offset + i] = static_cast<uint8_t>(value >> (8 * i));
}

std::optional<uint32_t> CItemExtendedData::OptionalColour(uint32_t flag, size_t offset) const
{
    if ((ReadU32(FlagsOffset) & flag) == 0)
        return std::nullopt;
    return ReadU32(offset);
}

void CItemExtendedData::SetOptionalColour(uint32_t flag, size_t offset, std::optional<uint32_t> colour)
{
    const uint32_t flags = ReadU32(FlagsOffset);
    WriteU32(FlagsOffset, colour ? flags | flag : flags & ~flag);
    WriteU32(offset, colour.value_or(0));
}
