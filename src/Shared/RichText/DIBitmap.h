#pragma once
// A picture as one packed device-independent bitmap: the 40-byte BITMAPINFOHEADER, the colour
// table (and the three bit-field masks when the compression is 3), then the pixel rows.
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

class CArchiveReader;
class CArchiveWriter;

// The BITMAPINFOHEADER fields, read from or written to the first 40 bytes of a packed bitmap.
struct SDIBitmapHeader
{
    static constexpr size_t StoredSize = 40;
    static constexpr uint32_t BitFieldsCompression = 3;

    uint32_t size = StoredSize;
    int32_t width = 0;
    int32_t height = 0;
    uint16_t planes = 1;
    uint16_t bitCount = 0;
    uint32_t compression = 0;
    uint32_t sizeImage = 0;
    int32_t xPelsPerMeter = 0;
    int32_t yPelsPerMeter = 0;
    uint32_t clrUsed = 0;
    uint32_t clrImportant = 0;

    static SDIBitmapHeader FromBytes(std::span<const uint8_t, StoredSize> bytes);
    void ToBytes(std::span<uint8_t, StoredSize> bytes) const;

    // Size field 40, width and height at least 1, one plane, 1 to 48 bits per pixel.
    bool IsValid() const;
    // The sizes below assume a valid header; they are 64-bit because hostile headers can ask
    // for more than any buffer could hold.
    uint64_t RowBytes() const; // rounded up to whole 32-bit words
    uint64_t PixelDataSize() const;
    uint32_t ColourTableEntries() const; // 2, 16 or 256 for 1, 4 or 8 bits, otherwise none
    uint64_t ColourTableBytes() const;   // entries, plus the 12 mask bytes for bit-field compression
    uint64_t PackedSize() const;
};

// What the platform must tell to turn one of its bitmaps into a packed bitmap (the GUI answers
// with GetObjectW and GetDIBits).
class IPlatformBitmap
{
public:
    virtual ~IPlatformBitmap() = default;
    virtual bool GetSize(int32_t& width, int32_t& height, uint16_t& planes, uint16_t& bitsPerPixel) const = 0;
    // Given a buffer of the packed size whose first 40 bytes hold the wanted header, fills in
    // the colour table and the rows, and may fill in the header's image size field.
    virtual bool GetBits(std::span<uint8_t> packed) const = 0;
};

class CDIBitmap
{
public:
    enum class ELoadResult
    {
        Loaded,
        FailedWithMessage, // the failure wrote its log line
        FailedSilently     // nothing logged yet (invalid header, data ending early)
    };

    bool IsEmpty() const { return m_Packed.empty(); }
    const std::vector<uint8_t>& Packed() const { return m_Packed; }
    // Replaces the picture when the bytes start with a valid header; false leaves it unchanged.
    bool SetPacked(std::vector<uint8_t> packed);
    // Header of a non-empty bitmap (a default header when empty).
    SDIBitmapHeader Header() const;
    // True when the bytes hold all that the header describes. A load keeps a picture whose
    // header is valid even when fewer bytes follow it (stored documents may hold such pictures),
    // so code that reads the colour table or the rows asks this first.
    bool HasAllPixels() const;

    // Builds a packed bitmap of the platform bitmap; compression 3 is not supported.
    bool CreateFromPlatformBitmap(const IPlatformBitmap& bitmap, uint32_t compression);

    // Writes the u32 total size, then the packed bytes.
    void Serialize(CArchiveWriter& out) const;
    // Reads the packed layout (a total size of 41 or more) or the older one (header and rows
    // without a colour table, recognised by a first value of 40 or less).
    ELoadResult Serialize(CArchiveReader& in);

    bool operator==(const CDIBitmap&) const = default;

private:
    ELoadResult LoadPacked(CArchiveReader& in, uint32_t totalSize);
    ELoadResult LoadOlderLayout(CArchiveReader& in, uint32_t headerSizeField);

    std::vector<uint8_t> m_Packed;
};
