#include "Shared/FxEdit/PictureFile.h"

#include "Shared/RichText/JpegDecoder.h"
#include "Shared/RichText/RtfReaderPicture.h"

namespace
{
constexpr size_t FileHeaderSize = 14;

uint32_t U32At(std::string_view bytes, size_t offset)
{
    uint32_t value = 0;
    for (size_t i = 0; i < 4; ++i)
        value |= static_cast<uint32_t>(static_cast<uint8_t>(bytes[offset + i])) << (8 * i);
    return value;
}

// A .bmp file is a file header, an info header of 40 bytes or one of its longer successors, the
// colour table (or three bit masks) and the rows at the offset the file header gives. The stored
// form always has the 40-byte header, so longer headers are cut down, their masks kept.
std::optional<CDIBitmap> PackedFromBmpFile(std::string_view bytes, std::u16string& failure)
{
    if (bytes.size() < FileHeaderSize + SDIBitmapHeader::StoredSize)
    {
        failure = u"the bitmap file is too short";
        return std::nullopt;
    }
    const uint32_t pixelOffset = U32At(bytes, 10);
    const uint32_t infoSize = U32At(bytes, FileHeaderSize);
    if (infoSize < SDIBitmapHeader::StoredSize || infoSize > bytes.size() - FileHeaderSize)
    {
        failure = u"the bitmap's header is damaged";
        return std::nullopt;
    }
    std::span<const uint8_t, SDIBitmapHeader::StoredSize> headerBytes(
        reinterpret_cast<const uint8_t*>(bytes.data()) + FileHeaderSize, SDIBitmapHeader::StoredSize);
    SDIBitmapHeader header = SDIBitmapHeader::FromBytes(headerBytes);
    header.size = SDIBitmapHeader::StoredSize;
    if (!header.IsValid() ||
        (header.compression != 0 && header.compression != SDIBitmapHeader::BitFieldsCompression))
    {
        failure = u"the bitmap is compressed or its header is not valid";
        return std::nullopt;
    }
    const size_t infoEnd = FileHeaderSize + infoSize;
    // A palette may be shorter than its bit depth allows; the stored form always has all entries.
    const uint64_t entries = header.ColourTableEntries();
    const uint64_t fileEntries = header.clrUsed != 0 && header.clrUsed < entries ? header.clrUsed : entries;
    header.clrUsed = 0;
    const uint64_t masks = header.compression == SDIBitmapHeader::BitFieldsCompression ? 12 : 0;
    // With a longer header the bit masks are its fields 40 to 52; with the short one they follow it.
    const bool masksInHeader = masks != 0 && infoSize >= SDIBitmapHeader::StoredSize + masks;
    const uint64_t afterHeader = (masksInHeader ? 0 : masks) + 4 * fileEntries;
    const uint64_t pixelBytes = header.PixelDataSize();
    if (infoEnd + afterHeader > bytes.size() || pixelOffset < infoEnd + afterHeader ||
        pixelOffset > bytes.size() || pixelBytes > bytes.size() - pixelOffset)
    {
        failure = u"the bitmap file ends before its pixels";
        return std::nullopt;
    }
    const auto* data = reinterpret_cast<const uint8_t*>(bytes.data());
    std::vector<uint8_t> packed(SDIBitmapHeader::StoredSize);
    header.ToBytes(
        std::span<uint8_t, SDIBitmapHeader::StoredSize>(packed.data(), SDIBitmapHeader::StoredSize));
    const uint8_t* masksAt = data + (masksInHeader ? FileHeaderSize + SDIBitmapHeader::StoredSize : infoEnd);
    packed.insert(packed.end(), masksAt, masksAt + masks);
    const uint8_t* tableAt = data + infoEnd + (masksInHeader ? 0 : masks);
    packed.insert(packed.end(), tableAt, tableAt + 4 * fileEntries);
    packed.resize(packed.size() + 4 * (entries - fileEntries), 0);
    packed.insert(packed.end(), data + pixelOffset, data + pixelOffset + pixelBytes);
    CDIBitmap bitmap;
    if (!bitmap.SetPacked(std::move(packed)) || !bitmap.HasAllPixels())
    {
        failure = u"the bitmap's header is not valid";
        return std::nullopt;
    }
    return bitmap;
}
} // namespace

std::optional<CDIBitmap> PictureFromImageFile(std::string_view bytes, std::u16string& failure)
{
    if (bytes.starts_with("BM"))
        return PackedFromBmpFile(bytes, failure);
    if (bytes.starts_with("\xFF\xD8"))
    {
        SRgbImage image;
        if (!DecodeJpeg(bytes, image, failure))
            return std::nullopt;
        return RgbImageToBitmap(image);
    }
    if (bytes.starts_with("\x89PNG"))
    {
        std::optional<CDIBitmap> bitmap = DecodePngToBitmap(bytes);
        if (!bitmap)
            failure = u"the PNG picture is damaged or of an unsupported kind";
        return bitmap;
    }
    failure = bytes.starts_with("GIF8") ? u"GIF pictures are not supported" : u"not a picture file";
    return std::nullopt;
}
