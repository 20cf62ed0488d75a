#pragma once
// The font of a format block, in the platform's 92-byte LOGFONTW layout so that the stored bytes
// can be handed to the platform unchanged. Fonts compare by all 92 bytes, face name padding
// included, because that is how the writers tell fonts apart.
#include <array>
#include <compare>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

struct SFontDescription
{
    static constexpr size_t StoredSize = 92;
    static constexpr size_t FaceNameChars = 32;
    static constexpr int32_t BoldWeight = 900; // weights below this (700 included) are not bold

    int32_t height = 0; // size in points; the sign carries no meaning for us
    int32_t width = 0;
    int32_t escapement = 0;
    int32_t orientation = 0;
    int32_t weight = 400;
    uint8_t italic = 0;
    uint8_t underline = 0;
    uint8_t strikeOut = 0;
    uint8_t charSet = 0;
    uint8_t outPrecision = 0;
    uint8_t clipPrecision = 0;
    uint8_t quality = 0;
    uint8_t pitchAndFamily = 0;
    std::array<char16_t, FaceNameChars> faceName{};

    // A font of `points` points with the given face (cut to 31 characters) and weight.
    static SFontDescription Make(std::u16string_view face, int32_t points, int32_t weight = 400);

    std::u16string FaceName() const; // up to the first zero unit
    std::u16string_view FaceNameView() const;
    void SetFaceName(std::u16string_view face);
    int64_t PointSize() const { return height < 0 ? -static_cast<int64_t>(height) : height; }
    bool IsBold() const { return weight >= BoldWeight; }
    bool IsItalic() const { return italic != 0; }
    bool IsUnderlined() const { return underline != 0; }

    // The stored form: the integers little-endian, then the bytes, then the face name as UTF-16LE.
    std::array<uint8_t, StoredSize> ToBytes() const;
    static SFontDescription FromBytes(std::span<const uint8_t, StoredSize> bytes);

    friend bool operator==(const SFontDescription&, const SFontDescription&) = default;
    friend auto operator<=>(const SFontDescription&, const SFontDescription&) = default;
};
