#include "Shared/RichText/RgbImage.h"

CDIBitmap RgbImageToBitmap(const SRgbImage& image)
{
    SDIBitmapHeader header;
    header.width = static_cast<int32_t>(image.width);
    header.height = static_cast<int32_t>(image.height);
    header.bitCount = 24;
    header.sizeImage = static_cast<uint32_t>(header.PixelDataSize());
    std::vector<uint8_t> packed(static_cast<size_t>(header.PackedSize()), 0);
    header.ToBytes(
        std::span<uint8_t, SDIBitmapHeader::StoredSize>(packed.data(), SDIBitmapHeader::StoredSize));
    const size_t dibRow = static_cast<size_t>(header.RowBytes());
    for (uint32_t y = 0; y < image.height; ++y)
    {
        const uint8_t* from = image.rgb.data() + size_t(y) * image.width * 3;
        uint8_t* to = packed.data() + SDIBitmapHeader::StoredSize + size_t(image.height - 1 - y) * dibRow;
        for (uint32_t x = 0; x < image.width; ++x, from += 3, to += 3)
        {
            to[0] = from[2];
            to[1] = from[1];
            to[2] = from[0];
        }
    }
    CDIBitmap bitmap;
    bitmap.SetPacked(std::move(packed));
    return bitmap;
}
