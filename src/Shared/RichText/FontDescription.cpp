#include "Shared/RichText/FontDescription.h"

namespace
{
void PutU32(uint8_t* to, uint32_t v)
{
    for (int i = 0; i < 4; ++i)
        to[i] = static_cast<uint8_t>(v >> (8 * i));
}

int32_t GetI32(const uint8_t* from)
{
    uint32_t v = 0;
    for (int i = 0; i < 4; ++i)
        v |= static_cast<uint32_t>(from[i]) << (8 * i);
    return static_cast<int32_t>(v);
}
} // namespace

SFontDescription SFontDescription::Make(std::u16string_view face, int32_t points, int32_t fontWeight)
{
    SFontDescription font;
    font.height = points;
    font.weight = fontWeight;
    font.SetFaceName(face);
    return font;
}

std::u16string SFontDescription::FaceName() const
{
    return std::u16string(FaceNameView());
}

std::u16string_view SFontDescription::FaceNameView() const
{
    size_t length = 0;
    while (length < FaceNameChars && faceName[length] != 0)
        ++length;
    return std::u16string_view(faceName.data(), length);
}

void SFontDescription::SetFaceName(std::u16string_view face)
{
    faceName.fill(0);
    const size_t length = face.size() < FaceNameChars ? face.size() : FaceNameChars - 1;
    face.copy(faceName.data(), length);
}

std::array<uint8_t, SFontDescription::StoredSize> SFontDescription::ToBytes() const
{
    std::array<uint8_t, StoredSize> bytes{};
    const int32_t numbers[] = {height, width, escapement, orientation, weight};
    for (size_t i = 0; i < 5; ++i)
        PutU32(&bytes[4 * i], static_cast<uint32_t>(numbers[i]));
    const uint8_t flags[] = {italic,       underline,     strikeOut, charSet,
                             outPrecision, clipPrecision, quality,   pitchAndFamily};
    for (size_t i = 0; i < 8; ++i)
        bytes[20 + i] = flags[i];
    for (size_t i = 0; i < FaceNameChars; ++i)
    {
        bytes[28 + 2 * i] = static_cast<uint8_t>(faceName[i]);
        bytes[29 + 2 * i] = static_cast<uint8_t>(faceName[i] >> 8);
    }
    return bytes;
}

SFontDescription SFontDescription::FromBytes(std::span<const uint8_t, StoredSize> bytes)
{
    SFontDescription font;
    font.height = GetI32(&bytes[0]);
    font.width = GetI32(&bytes[4]);
    font.escapement = GetI32(&bytes[8]);
    font.orientation = GetI32(&bytes[12]);
    font.weight = GetI32(&bytes[16]);
    font.italic = bytes[20];
    font.underline = bytes[21];
    font.strikeOut = bytes[22];
    font.charSet = bytes[23];
    font.outPrecision = bytes[24];
    font.clipPrecision = bytes[25];
    font.quality = bytes[26];
    font.pitchAndFamily = bytes[27];
    for (size_t i = 0; i < FaceNameChars; ++i)
        font.faceName[i] = static_cast<char16_t>(bytes[28 + 2 * i] | (bytes[29 + 2 * i] << 8));
    return font;
}
