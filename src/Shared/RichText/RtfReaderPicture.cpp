#include "Shared/RichText/RtfReaderPicture.h"

#include "Shared/Log/Log.h"
#include "Shared/RichText/JpegDecoder.h"
#include "Shared/RichText/RtfReaderInflate.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace
{
// A deflate stream expands at most about 1032 times; a header announcing more pixels than the
// data could hold is refused before anything is allocated.
constexpr uint64_t MaxInflateRatio = 1032;
constexpr uint64_t MaxPixels = uint64_t(1) << 26;

uint32_t BigEndian32(std::string_view data, size_t at)
{
    return (uint32_t(uint8_t(data[at])) << 24) | (uint32_t(uint8_t(data[at + 1])) << 16) |
           (uint32_t(uint8_t(data[at + 2])) << 8) | uint32_t(uint8_t(data[at + 3]));
}

struct SPngImage
{
    uint32_t width = 0;
    uint32_t height = 0;
    uint8_t bitDepth = 0;
    uint8_t colourType = 0;
    bool interlaced = false; // Adam7
    std::string palette;     // RGB triples
    std::string compressed;

    uint32_t Channels() const
    {
        switch (colourType)
        {
        case 2:
            return 3;
        case 4:
            return 2;
        case 6:
            return 4;
        default:
            return 1;
        }
    }
    uint64_t BitsPerPixel() const { return uint64_t(Channels()) * bitDepth; }
    uint64_t RowBytes() const { return (uint64_t(width) * BitsPerPixel() + 7) / 8; }
    bool IsValidHeader() const
    {
        const bool depthFits =
            colourType == 0
                ? (bitDepth == 1 || bitDepth == 2 || bitDepth == 4 || bitDepth == 8 || bitDepth == 16)
            : colourType == 3 ? (bitDepth == 1 || bitDepth == 2 || bitDepth == 4 || bitDepth == 8)
            : (colourType == 2 || colourType == 4 || colourType == 6) ? (bitDepth == 8 || bitDepth == 16)
                                                                      : false;
        return depthFits && width > 0 && height > 0 && uint64_t(width) * height <= MaxPixels;
    }
};

bool ReadPngChunks(std::string_view data, SPngImage& image)
{
    static constexpr char Signature[] = "\x89PNG\r\n\x1a\n";
    if (data.size() < 8 || data.substr(0, 8) != std::string_view(Signature, 8))
        return false;
    bool haveHeader = false;
    for (size_t at = 8; data.size() - at >= 12;)
    {
        const uint32_t length = BigEndian32(data, at);
        if (length > data.size() - at - 12)
            return false;
        const std::string_view type = data.substr(at + 4, 4);
        const std::string_view body = data.substr(at + 8, length);
        at += 12 + size_t(length);
        if (type == "IHDR")
        {
            if (length < 13 || body[10] != 0 || body[11] != 0 || (body[12] != 0 && body[12] != 1))
                return false;
            image.interlaced = body[12] == 1;
            image.width = BigEndian32(body, 0);
            image.height = BigEndian32(body, 4);
            image.bitDepth = uint8_t(body[8]);
            image.colourType = uint8_t(body[9]);
            haveHeader = image.IsValidHeader();
            if (!haveHeader)
                return false;
        }
        else if (type == "PLTE")
            image.palette = std::string(body);
        else if (type == "IDAT")
            image.compressed += body;
        else if (type == "IEND")
            break;
    }
    return haveHeader && !image.compressed.empty() && (image.colourType != 3 || !image.palette.empty());
}

uint8_t Paeth(int a, int b, int c)
{
    const int p = a + b - c;
    const int pa = std::abs(p - a), pb = std::abs(p - b), pc = std::abs(p - c);
    return uint8_t(pa <= pb && pa <= pc ? a : pb <= pc ? b : c);
}

// Undoes the per-row filters in place; the filter bytes stay where they are.
bool Unfilter(std::vector<uint8_t>& raw, const SPngImage& image)
{
    const size_t rowBytes = size_t(image.RowBytes());
    const size_t stride = rowBytes + 1;
    const size_t step = size_t(std::max<uint64_t>(1, image.BitsPerPixel() / 8));
    for (uint32_t y = 0; y < image.height; ++y)
    {
        uint8_t* row = raw.data() + y * stride + 1;
        const uint8_t* above = y > 0 ? row - stride : nullptr;
        const uint8_t filter = row[-1];
        if (filter > 4)
            return false;
        for (size_t x = 0; x < rowBytes; ++x)
        {
            const int left = x >= step ? row[x - step] : 0;
            const int up = above ? above[x] : 0;
            const int upLeft = above && x >= step ? above[x - step] : 0;
            const int predictor = filter == 1   ? left
                                  : filter == 2 ? up
                                  : filter == 3 ? (left + up) / 2
                                  : filter == 4 ? Paeth(left, up, upLeft)
                                                : 0;
            row[x] = uint8_t(row[x] + predictor);
        }
    }
    return true;
}

// One sample as 8 bits; samples of 16 bits keep their high byte.
uint8_t Sample(const uint8_t* row, const SPngImage& image, uint64_t index)
{
    if (image.bitDepth == 8)
        return row[index];
    if (image.bitDepth == 16)
        return row[2 * index];
    const uint64_t bit = index * image.bitDepth;
    const unsigned shift = 8 - image.bitDepth - unsigned(bit % 8);
    const unsigned value = (row[bit / 8] >> shift) & ((1u << image.bitDepth) - 1);
    return image.colourType == 3 ? uint8_t(value) : uint8_t(value * 255 / ((1u << image.bitDepth) - 1));
}

// Red, green, blue of one pixel, transparency blended onto white.
void PixelColour(const uint8_t* row, const SPngImage& image, uint32_t x, uint8_t rgb[3])
{
    const uint32_t channels = image.Channels();
    const uint64_t first = uint64_t(x) * channels;
    uint8_t alpha = 255;
    if (image.colourType == 3)
    {
        const size_t entry = Sample(row, image, first);
        for (int c = 0; c < 3; ++c)
            rgb[c] = 3 * entry + 2 < image.palette.size() ? uint8_t(image.palette[3 * entry + c]) : 0;
        return;
    }
    if (image.colourType == 0 || image.colourType == 4)
    {
        rgb[0] = rgb[1] = rgb[2] = Sample(row, image, first);
        if (image.colourType == 4)
            alpha = Sample(row, image, first + 1);
    }
    else
    {
        for (int c = 0; c < 3; ++c)
            rgb[c] = Sample(row, image, first + c);
        if (image.colourType == 6)
            alpha = Sample(row, image, first + 3);
    }
    for (int c = 0; c < 3; ++c)
        rgb[c] = uint8_t((rgb[c] * alpha + 255 * (255 - alpha)) / 255);
}

SRgbImage ToRgbImage(const std::vector<uint8_t>& raw, const SPngImage& image)
{
    SRgbImage rgb;
    rgb.width = image.width;
    rgb.height = image.height;
    rgb.rgb.resize(size_t(image.width) * image.height * 3);
    const size_t stride = size_t(image.RowBytes()) + 1;
    uint8_t* out = rgb.rgb.data();
    for (uint32_t y = 0; y < image.height; ++y)
    {
        const uint8_t* row = raw.data() + y * stride + 1;
        for (uint32_t x = 0; x < image.width; ++x, out += 3)
            PixelColour(row, image, x, out);
    }
    return rgb;
}

// The seven passes of an interlaced picture: first column, first row, column step, row step.
constexpr uint32_t Adam7[7][4] = {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4},
                                  {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}};

// The pixels one pass holds, as a picture of their own (no columns or rows when the picture is
// too small for the pass).
SPngImage PassImage(const SPngImage& image, const uint32_t pass[4])
{
    SPngImage sub;
    sub.width = image.width > pass[0] ? (image.width - pass[0] + pass[2] - 1) / pass[2] : 0;
    sub.height = image.height > pass[1] ? (image.height - pass[1] + pass[3] - 1) / pass[3] : 0;
    sub.bitDepth = image.bitDepth;
    sub.colourType = image.colourType;
    sub.palette = image.palette;
    return sub;
}

uint64_t PassBytes(const SPngImage& pass)
{
    return pass.width == 0 ? 0 : (pass.RowBytes() + 1) * pass.height;
}

// Each pass is filtered on its own; its pixels are then put in their places.
std::optional<SRgbImage> DeinterlacedImage(const std::vector<uint8_t>& raw, const SPngImage& image)
{
    SRgbImage rgb;
    rgb.width = image.width;
    rgb.height = image.height;
    rgb.rgb.resize(size_t(image.width) * image.height * 3);
    size_t offset = 0;
    for (const auto& pass : Adam7)
    {
        const SPngImage sub = PassImage(image, pass);
        const size_t size = size_t(PassBytes(sub));
        if (size == 0)
            continue;
        std::vector<uint8_t> part(raw.begin() + std::ptrdiff_t(offset),
                                  raw.begin() + std::ptrdiff_t(offset + size));
        offset += size;
        if (!Unfilter(part, sub))
            return std::nullopt;
        const size_t stride = size_t(sub.RowBytes()) + 1;
        for (uint32_t y = 0; y < sub.height; ++y)
            for (uint32_t x = 0; x < sub.width; ++x)
            {
                const size_t at = (size_t(pass[1] + y * pass[3]) * image.width + pass[0] + x * pass[2]) * 3;
                PixelColour(part.data() + y * stride + 1, sub, x, rgb.rgb.data() + at);
            }
    }
    return rgb;
}

std::optional<CDIBitmap> TakePackedDib(std::string_view data)
{
    if (data.size() < SDIBitmapHeader::StoredSize)
        return std::nullopt;
    const SDIBitmapHeader header =
        SDIBitmapHeader::FromBytes(std::span<const uint8_t, SDIBitmapHeader::StoredSize>(
            reinterpret_cast<const uint8_t*>(data.data()), SDIBitmapHeader::StoredSize));
    if (!header.IsValid() ||
        (header.compression != 0 && header.compression != SDIBitmapHeader::BitFieldsCompression) ||
        header.PackedSize() > data.size())
        return std::nullopt;
    CDIBitmap bitmap;
    const auto* bytes = reinterpret_cast<const uint8_t*>(data.data());
    if (!bitmap.SetPacked(std::vector<uint8_t>(bytes, bytes + header.PackedSize())))
        return std::nullopt;
    return bitmap;
}
} // namespace

std::optional<CDIBitmap> DecodePngToBitmap(std::string_view data)
{
    SPngImage image;
    if (!ReadPngChunks(data, image))
        return std::nullopt;
    uint64_t rawSize = PassBytes(image);
    if (image.interlaced)
    {
        rawSize = 0;
        for (const auto& pass : Adam7)
            rawSize += PassBytes(PassImage(image, pass));
    }
    if (rawSize > MaxInflateRatio * image.compressed.size() + 1024)
        return std::nullopt;
    std::vector<uint8_t> raw;
    if (!InflateZlib(image.compressed, size_t(rawSize), raw) || raw.size() != rawSize)
        return std::nullopt;
    if (image.interlaced)
    {
        const std::optional<SRgbImage> rgb = DeinterlacedImage(raw, image);
        return rgb ? std::optional<CDIBitmap>(RgbImageToBitmap(*rgb)) : std::nullopt;
    }
    if (!Unfilter(raw, image))
        return std::nullopt;
    return RgbImageToBitmap(ToRgbImage(raw, image));
}

std::optional<CDIBitmap> ConvertRtfPicture(ERtfPictureFormat format, std::string_view data)
{
    std::optional<CDIBitmap> bitmap;
    switch (format)
    {
    case ERtfPictureFormat::Dib:
        bitmap = TakePackedDib(data);
        break;
    case ERtfPictureFormat::Png:
        bitmap = DecodePngToBitmap(data);
        break;
    case ERtfPictureFormat::Jpeg:
    {
        SRgbImage image;
        std::u16string failure;
        if (!DecodeJpeg(data, image, failure))
        {
            LogMessage(u"Warning: RTF picture skipped, its JPEG data cannot be decoded: %s (%d bytes)",
                       failure, static_cast<long long>(data.size()));
            return std::nullopt;
        }
        return RgbImageToBitmap(image);
    }
    default:
        LogMessage(u"Warning: RTF picture skipped, its format is not supported (%d bytes)",
                   static_cast<long long>(data.size()));
        return std::nullopt;
    }
    if (!bitmap)
        LogMessage(u"Warning: RTF picture skipped, its data is damaged or of an unsupported kind (%d bytes)",
                   static_cast<long long>(data.size()));
    return bitmap;
}
