#pragma once
// A decoded picture as plain RGB rows, the common form of the picture decoders before the
// picture becomes the stored bitmap.
#include "Shared/RichText/DIBitmap.h"

#include <cstdint>
#include <vector>

struct SRgbImage
{
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint8_t> rgb; // top row first, three bytes a pixel: red, green, blue
};

// A 24-bit packed bitmap of the image: rows bottom-up, blue-green-red, padded to 32 bits.
CDIBitmap RgbImageToBitmap(const SRgbImage& image);
