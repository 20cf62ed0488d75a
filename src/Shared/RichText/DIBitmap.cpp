#include "Shared/RichText/DIBitmap.h"

#include "Shared/Base/Archive.h"
#include "Shared/Log/Log.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace
{
uint32_t GetU32(const uint8_t* from)
{
    return static_cast<uint32_t>(from[0]) | static_cast<uint32_t>(from[1]) << 8 |
           static_cast<uint32_t>(from[2]) << 16 | static_cast<uint32_t>(from[3]) << 24;
}

uint16_t GetU16(const uint8_t* from)
{
    return static_cast<uint16_t>(from[0] | from[1] << 8);
}

void PutU32(uint8_t* to, uint32_t v)
{
    for (int i = 0; i < 4; ++i)
        to[i] = static_cast<uint8_t>(v >> (8 * i));
}

void PutU16(uint8_t* to, uint16_t v)
{
    to[0] = static_cast<uint8_t>(v);
    to[1] = static_cast<uint8_t>(v >> 8);
}

constexpr uint64_t Unreachable = std::numeric_limits<uint64_t>::max();
} // namespace

SDIBitmapHeader SDIBitmapHeader::FromBytes(std::span<const uint8_t, StoredSize> bytes)
{
    SDIBitmapHeader header;
    header.size = GetU32(&bytes[0]);
    header.width = static_cast<int32_t>(GetU32(&bytes[4]));
    header.height = static_cast<int32_t>(GetU32(&bytes[8]));
    header.planes = GetU16(&bytes[12]);
    header.bitCount = GetU16(&bytes[14]);
    header.compression = GetU32(&bytes[16]);
    header.sizeImage = GetU32(&bytes[20]);
    header.xPelsPerMeter = static_cast<int32_t>(GetU32(&bytes[24]));
    header.yPelsPerMeter = static_cast<int32_t>(GetU32(&bytes[28]));
    header.clrUsed = GetU32(&bytes[32]);
    header.clrImportant = GetU32(&bytes[36]);
    return header;
}

void SDIBitmapHeader::ToBytes(std::span<uint8_t, StoredSize> bytes) const
{
    PutU32(&bytes[0], size);
    PutU32(&bytes[4], static_cast<uint32_t>(width));
    PutU32(&bytes[8], static_cast<uint32_t>(height));
    PutU16(&bytes[12], planes);
    PutU16(&bytes[14], bitCount);
    PutU32(&bytes[16], compression);
    PutU32(&bytes[20], sizeImage);
    PutU32(&bytes[24], static_cast<uint32_t>(xPelsPerMeter));
    PutU32(&bytes[28], static_cast<uint32_t>(yPelsPerMeter));
    PutU32(&bytes[32], clrUsed);
    PutU32(&bytes[36], clrImportant);
}

bool SDIBitmapHeader::IsValid() const
{
    return size == StoredSize && width >= 1 && height >= 1 && planes == 1 && bitCount >= 1 && bitCount <= 48;
}

uint64_t SDIBitmapHeader::RowBytes() const
{
    const uint64_t bits = static_cast<uint64_t>(std::max(width, 0)) * bitCount;
    return (bits + 31) / 32 * 4;
}

uint64_t SDIBitmapHeader::PixelDataSize() const
{
    const uint64_t rows = static_cast<uint64_t>(std::max(height, 0));
    const uint64_t row = RowBytes();
    if (row != 0 && rows > Unreachable / 2 / row)
        return Unreachable / 2;
    return row * rows;
}

uint32_t SDIBitmapHeader::ColourTableEntries() const
{
    switch (bitCount)
    {
    case 1:
        return 2;
    case 4:
        return 16;
    case 8:
        return 256;
    default:
        return 0;
    }
}

uint64_t SDIBitmapHeader::ColourTableBytes() const
{
    return 4ull * ColourTableEntries() + (compression == BitFieldsCompression ? 12 : 0);
}

uint64_t SDIBitmapHeader::PackedSize() const
{
    return StoredSize + ColourTableBytes() + PixelDataSize();
}

bool CDIBitmap::SetPacked(std::vector<uint8_t> packed)
{
    if (packed.size() < SDIBitmapHeader::StoredSize)
        return false;
    const auto header = SDIBitmapHeader::FromBytes(std::span<const uint8_t, 40>(packed.data(), 40));
    if (!header.IsValid())
        return false;
    m_Packed = std::move(packed);
    return true;
}

SDIBitmapHeader CDIBitmap::Header() const
{
    if (m_Packed.size() < SDIBitmapHeader::StoredSize)
        return {};
    return SDIBitmapHeader::FromBytes(std::span<const uint8_t, 40>(m_Packed.data(), 40));
}

bool CDIBitmap::HasAllPixels() const
{
    return !m_Packed.empty() && Header().PackedSize() <= m_Packed.size();
}

bool CDIBitmap::CreateFromPlatformBitmap(const IPlatformBitmap& bitmap, uint32_t compression)
{
    if (compression == SDIBitmapHeader::BitFieldsCompression)
        return false;
    int32_t width = 0;
    int32_t height = 0;
    uint16_t planes = 0;
    uint16_t bitsPerPixel = 0;
    if (!bitmap.GetSize(width, height, planes, bitsPerPixel))
        return false;
    SDIBitmapHeader header;
    header.width = width;
    header.height = height;
    header.planes = 1;
    header.bitCount = static_cast<uint16_t>(planes * bitsPerPixel);
    header.compression = compression;
    // A bitmap that does not fit in memory is refused before anything is allocated.
    if (!header.IsValid() || header.PackedSize() > std::numeric_limits<uint32_t>::max())
        return false;
    std::vector<uint8_t> packed(static_cast<size_t>(header.PackedSize()), 0);
    header.ToBytes(std::span<uint8_t, 40>(packed.data(), 40));
    if (!bitmap.GetBits(packed))
        return false;
    SDIBitmapHeader filled = SDIBitmapHeader::FromBytes(std::span<const uint8_t, 40>(packed.data(), 40));
    if (filled.sizeImage == 0)
    {
        filled.sizeImage = static_cast<uint32_t>(header.PackedSize());
        filled.ToBytes(std::span<uint8_t, 40>(packed.data(), 40));
    }
    return SetPacked(std::move(packed));
}

void CDIBitmap::Serialize(CArchiveWriter& out) const
{
    out.WriteU32(static_cast<uint32_t>(m_Packed.size()));
    out.WriteBytes(m_Packed.data(), m_Packed.size());
}

CDIBitmap::ELoadResult CDIBitmap::Serialize(CArchiveReader& in)
{
    uint32_t first = 0;
    if (!in.ReadU32(first))
        return ELoadResult::FailedSilently;
    if (first > SDIBitmapHeader::StoredSize)
        return LoadPacked(in, first);
    return LoadOlderLayout(in, first);
}

CDIBitmap::ELoadResult CDIBitmap::LoadPacked(CArchiveReader& in, uint32_t totalSize)
{
    // The size is checked against the bytes left before anything is allocated.
    if (totalSize > in.Remaining())
    {
        LogMessage(
            u"Error: [on loading serialized deviceDependantBitmap] deviceDependantBitmap size is incorrect "
            u"(expected size = %d, actual size = %d).",
            static_cast<long long>(totalSize), static_cast<long long>(in.Remaining()));
        in.Skip(in.Remaining());
        return ELoadResult::FailedWithMessage;
    }
    std::vector<uint8_t> packed(totalSize);
    in.ReadBytes(packed.data(), packed.size());
    return SetPacked(std::move(packed)) ? ELoadResult::Loaded : ELoadResult::FailedSilently;
}

CDIBitmap::ELoadResult CDIBitmap::LoadOlderLayout(CArchiveReader& in, uint32_t headerSizeField)
{
    constexpr size_t RestOfHeader = SDIBitmapHeader::StoredSize - 4;
    uint8_t headerBytes[SDIBitmapHeader::StoredSize];
    PutU32(headerBytes, headerSizeField);
    if (in.Remaining() < RestOfHeader)
    {
        LogMessage(u"Error: [on loading serialized deviceDependantBitmap X2] header size is incorrect "
                   u"(expected size = %d, actual size = %d).",
                   static_cast<int>(RestOfHeader), static_cast<long long>(in.Remaining()));
        in.Skip(in.Remaining());
        return ELoadResult::FailedWithMessage;
    }
    in.ReadBytes(headerBytes + 4, RestOfHeader);
    const auto header = SDIBitmapHeader::FromBytes(headerBytes);
    if (!header.IsValid())
        return ELoadResult::FailedSilently;
    const uint64_t pixels = header.PixelDataSize();
    if (pixels > in.Remaining())
    {
        LogMessage(
            u"Error: [on loading serialized deviceDependantBitmap] deviceDependantBitmap bits data size "
            u"is incorrect (expected size = %d, actual size = %d).",
            static_cast<long long>(pixels), static_cast<long long>(in.Remaining()));
        in.Skip(in.Remaining());
        return ELoadResult::FailedWithMessage;
    }
    // The older layout had no colour table: its entries come out white.
    std::vector<uint8_t> packed(static_cast<size_t>(header.PackedSize()), 0xFF);
    std::memcpy(packed.data(), headerBytes, SDIBitmapHeader::StoredSize);
    const size_t rowsAt = SDIBitmapHeader::StoredSize + static_cast<size_t>(header.ColourTableBytes());
    in.ReadBytes(packed.data() + rowsAt, static_cast<size_t>(pixels));
    m_Packed = std::move(packed);
    return ELoadResult::Loaded;
}
