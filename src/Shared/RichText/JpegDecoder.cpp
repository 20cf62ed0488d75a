#include "Shared/RichText/JpegDecoder.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace
{
// Pictures are refused beyond 32 million pixels, and beyond 512 pixels a byte of input: even a
// picture of one flat colour takes more than a byte for 512 pixels, so only hostile data asks for
// more (and would otherwise make every scan walk a huge grid).
constexpr uint64_t MaxPixels = uint64_t(1) << 25;
constexpr uint64_t PixelsPerInputByte = 512;
constexpr uint64_t AlwaysAllowedPixels = uint64_t(1) << 16;
constexpr int MaxScans = 256;

// The position in a block (row by row) of the n-th coefficient in coding order.
constexpr std::array<uint8_t, 64> ZigZag = {0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,
                                            12, 19, 26, 33, 40, 48, 41, 34, 27, 20, 13, 6,  7,  14, 21, 28,
                                            35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51,
                                            58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

struct SJpegError
{
    std::u16string reason;
};

[[noreturn]] void Fail(const char16_t* reason)
{
    throw SJpegError{reason};
}

uint16_t BigEndian16(std::string_view data, size_t at)
{
    return static_cast<uint16_t>((static_cast<uint8_t>(data[at]) << 8) | static_cast<uint8_t>(data[at + 1]));
}

// A Huffman table: codes up to 9 bits are found in one lookup, longer ones length by length.
class CHuffmanTable
{
public:
    static constexpr int FastBits = 9;

    void Build(std::string_view counts, std::string_view symbols)
    {
        m_Symbols.assign(symbols.begin(), symbols.end());
        m_Fast.fill(0);
        uint32_t code = 0;
        uint32_t index = 0;
        for (int length = 1; length <= 16; ++length)
        {
            const uint32_t count = static_cast<uint8_t>(counts[static_cast<size_t>(length - 1)]);
            m_FirstCode[length] = code;
            m_FirstIndex[length] = index;
            m_Count[length] = count;
            if (code + count > (uint32_t(1) << length))
                Fail(u"a Huffman table has more codes than fit");
            for (uint32_t i = 0; i < count; ++i, ++code, ++index)
            {
                if (length > FastBits)
                    continue;
                const uint32_t spread = FastBits - length;
                for (uint32_t fill = 0; fill < (uint32_t(1) << spread); ++fill)
                    m_Fast[(code << spread) | fill] = static_cast<uint16_t>((length << 8) | m_Symbols[index]);
            }
            code <<= 1;
        }
        m_Defined = true;
    }

    bool IsDefined() const { return m_Defined; }

    // The symbol whose code starts the 16 bits given, and the code's length; length 0 when no
    // code matches.
    uint8_t Decode(uint32_t peek16, int& length) const
    {
        const uint16_t fast = m_Fast[peek16 >> (16 - FastBits)];
        if (fast != 0)
        {
            length = fast >> 8;
            return static_cast<uint8_t>(fast & 0xFF);
        }
        for (int bits = FastBits + 1; bits <= 16; ++bits)
        {
            const uint32_t code = peek16 >> (16 - bits);
            if (code >= m_FirstCode[bits] && code - m_FirstCode[bits] < m_Count[bits])
            {
                length = bits;
                return m_Symbols[m_FirstIndex[bits] + code - m_FirstCode[bits]];
            }
        }
        length = 0;
        return 0;
    }

private:
    std::array<uint16_t, size_t(1) << FastBits> m_Fast{};
    std::array<uint32_t, 17> m_FirstCode{};
    std::array<uint32_t, 17> m_FirstIndex{};
    std::array<uint32_t, 17> m_Count{};
    std::vector<uint8_t> m_Symbols;
    bool m_Defined = false;
};

// The entropy-coded bits of a scan. Stuffed zero bytes after 0xFF are dropped; at a marker the
// reader stops and gives zero bits, so damaged data decodes to something instead of failing.
class CBitReader
{
public:
    CBitReader(std::string_view data, size_t position) : m_Data(data), m_Pos(position) {}

    uint32_t Peek16()
    {
        Fill();
        return m_Buffer >> 16;
    }

    void Skip(int count)
    {
        m_Buffer <<= count;
        m_Bits -= count;
    }

    uint32_t Bits(int count)
    {
        if (count == 0)
            return 0;
        Fill();
        const uint32_t value = m_Buffer >> (32 - count);
        Skip(count);
        return value;
    }

    // Drops the bits left and steps over the next restart marker. When another marker (or the
    // end) comes first, the data is damaged: the rest of the scan reads as zeros, and later
    // restarts do not search again.
    void Restart()
    {
        m_Buffer = 0;
        m_Bits = 0;
        if (m_NoMoreRestarts)
            return;
        m_AtMarker = false;
        for (size_t at = m_Pos; at + 1 < m_Data.size(); ++at)
        {
            if (static_cast<uint8_t>(m_Data[at]) != 0xFF)
                continue;
            const auto next = static_cast<uint8_t>(m_Data[at + 1]);
            if (next >= 0xD0 && next <= 0xD7)
            {
                m_Pos = at + 2;
                return;
            }
            if (next != 0 && next != 0xFF)
            {
                m_Pos = at;
                break;
            }
        }
        m_AtMarker = true;
        m_NoMoreRestarts = true;
    }

    // Where the next marker after the scan's data begins (or the end).
    size_t NextMarker() const
    {
        for (size_t at = m_Pos; at + 1 < m_Data.size(); ++at)
        {
            const auto next = static_cast<uint8_t>(m_Data[at + 1]);
            if (static_cast<uint8_t>(m_Data[at]) == 0xFF && next != 0 && next != 0xFF &&
                !(next >= 0xD0 && next <= 0xD7))
                return at;
        }
        return m_Data.size();
    }

private:
    void Fill()
    {
        while (m_Bits <= 24)
        {
            uint32_t byte = 0;
            if (!m_AtMarker && m_Pos < m_Data.size())
            {
                byte = static_cast<uint8_t>(m_Data[m_Pos]);
                if (byte != 0xFF)
                    ++m_Pos;
                else if (m_Pos + 1 < m_Data.size() && m_Data[m_Pos + 1] == 0)
                    m_Pos += 2;
                else
                {
                    m_AtMarker = true;
                    byte = 0;
                }
            }
            m_Buffer |= byte << (24 - m_Bits);
            m_Bits += 8;
        }
    }

    std::string_view m_Data;
    size_t m_Pos;
    uint32_t m_Buffer = 0;
    int m_Bits = 0;
    bool m_AtMarker = false;
    bool m_NoMoreRestarts = false;
};

int Extend(uint32_t value, int bits)
{
    if (bits == 0)
        return 0;
    return value < (uint32_t(1) << (bits - 1)) ? static_cast<int>(value) - (1 << bits) + 1
                                               : static_cast<int>(value);
}

int16_t ClampCoefficient(int value)
{
    return static_cast<int16_t>(std::clamp(value, -32768, 32767));
}

struct SComponent
{
    int id = 0;
    int h = 1;
    int v = 1;
    int quantTable = 0;
    int dcTable = 0;
    int acTable = 0;
    int dcPrediction = 0;
    uint32_t blocksPerLine = 0; // of the grid padded to whole MCUs
    uint32_t blocksPerColumn = 0;
    uint32_t usedBlocksPerLine = 0; // the blocks the picture covers (a lone component's scan)
    uint32_t usedBlocksPerColumn = 0;
    std::vector<int16_t> coefficients; // 64 a block, row-major within the block
    std::array<uint16_t, 64> quant{};  // latched when the component's first scan starts
    bool quantLatched = false;
};

struct SScan
{
    std::vector<SComponent*> components;
    int spectralStart = 0;
    int spectralEnd = 63;
    int approximationHigh = 0;
    int approximationLow = 0;
};

class CJpegDecoder
{
public:
    explicit CJpegDecoder(std::string_view data) : m_Data(data) {}

    SRgbImage Decode()
    {
        if (m_Data.size() < 4 || static_cast<uint8_t>(m_Data[0]) != 0xFF ||
            static_cast<uint8_t>(m_Data[1]) != 0xD8)
            Fail(u"the data is not a JPEG picture");
        size_t at = 2;
        for (;;)
        {
            at = FindMarker(at);
            if (at + 1 >= m_Data.size())
                break;
            const uint8_t marker = static_cast<uint8_t>(m_Data[at + 1]);
            at += 2;
            if (marker == 0xD9)
                break;
            if (marker == 0xD8 || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7))
                continue; // markers without a segment
            at = HandleSegment(marker, at);
        }
        if (m_Scans == 0)
            Fail(u"the picture has no image data");
        return Render();
    }

private:
    // The next 0xFF that starts a marker, from `at` on (fill bytes and garbage are passed over).
    size_t FindMarker(size_t at) const
    {
        while (at + 1 < m_Data.size() &&
               !(static_cast<uint8_t>(m_Data[at]) == 0xFF && static_cast<uint8_t>(m_Data[at + 1]) != 0xFF &&
                 m_Data[at + 1] != 0))
            ++at;
        return at;
    }

    size_t HandleSegment(uint8_t marker, size_t at)
    {
        if (at + 2 > m_Data.size())
            Fail(u"the data ends inside a marker");
        const size_t length = BigEndian16(m_Data, at);
        if (length < 2 || at + length > m_Data.size())
            Fail(u"a marker segment runs past the end");
        const std::string_view body = m_Data.substr(at + 2, length - 2);
        const size_t next = at + length;
        switch (marker)
        {
        case 0xC0:
        case 0xC1:
        case 0xC2:
            ReadFrame(body, marker == 0xC2);
            return next;
        case 0xC3:
        case 0xC5:
        case 0xC6:
        case 0xC7:
        case 0xC9:
        case 0xCA:
        case 0xCB:
        case 0xCD:
        case 0xCE:
        case 0xCF:
            Fail(u"lossless, hierarchical and arithmetic-coded pictures are not supported");
        case 0xC4:
            ReadHuffmanTables(body);
            return next;
        case 0xDB:
            ReadQuantisationTables(body);
            return next;
        case 0xDD:
            if (body.size() < 2)
                Fail(u"the restart interval is damaged");
            m_RestartInterval = BigEndian16(body, 0);
            return next;
        case 0xEE:
            // Adobe: a transform byte of 0 means three components are RGB, not YCbCr.
            if (body.size() >= 12 && body.substr(0, 5) == std::string_view("Adobe", 5))
                m_AdobeTransform = static_cast<uint8_t>(body[11]);
            return next;
        case 0xDA:
            return ReadAndDecodeScan(body, next);
        default:
            return next; // application data, comments
        }
    }

    void ReadFrame(std::string_view body, bool progressive)
    {
        if (!m_Components.empty())
            Fail(u"the picture has two frame headers");
        if (body.size() < 6)
            Fail(u"the frame header is damaged");
        if (body[0] != 8)
            Fail(u"only 8-bit samples are supported");
        m_Height = BigEndian16(body, 1);
        m_Width = BigEndian16(body, 3);
        const size_t count = static_cast<uint8_t>(body[5]);
        if (m_Height == 0 || m_Width == 0)
            Fail(u"the picture has no size (a height given later is not supported)");
        if (count != 1 && count != 3)
            Fail(u"only grey and three-component pictures are supported");
        if (body.size() < 6 + 3 * count)
            Fail(u"the frame header is damaged");
        const uint64_t pixels = uint64_t(m_Width) * m_Height;
        if (pixels > MaxPixels || pixels > std::max(AlwaysAllowedPixels, PixelsPerInputByte * m_Data.size()))
            Fail(u"the picture is larger than its data could hold");
        m_Progressive = progressive;
        m_Components.resize(count);
        for (size_t i = 0; i < count; ++i)
        {
            SComponent& component = m_Components[i];
            component.id = static_cast<uint8_t>(body[6 + 3 * i]);
            const auto sampling = static_cast<uint8_t>(body[7 + 3 * i]);
            component.h = sampling >> 4;
            component.v = sampling & 15;
            component.quantTable = static_cast<uint8_t>(body[8 + 3 * i]);
            if (component.h < 1 || component.h > 4 || component.v < 1 || component.v > 4 ||
                component.quantTable > 3)
                Fail(u"the frame header is damaged");
            m_MaxH = std::max(m_MaxH, component.h);
            m_MaxV = std::max(m_MaxV, component.v);
        }
        m_McusPerLine = (m_Width + 8 * m_MaxH - 1) / (8 * m_MaxH);
        m_McusPerColumn = (m_Height + 8 * m_MaxV - 1) / (8 * m_MaxV);
        for (SComponent& component : m_Components)
        {
            component.blocksPerLine = m_McusPerLine * static_cast<uint32_t>(component.h);
            component.blocksPerColumn = m_McusPerColumn * static_cast<uint32_t>(component.v);
            const uint32_t width = (m_Width * static_cast<uint32_t>(component.h) + m_MaxH - 1) / m_MaxH;
            const uint32_t height = (m_Height * static_cast<uint32_t>(component.v) + m_MaxV - 1) / m_MaxV;
            component.usedBlocksPerLine = (width + 7) / 8;
            component.usedBlocksPerColumn = (height + 7) / 8;
            component.coefficients.assign(size_t(component.blocksPerLine) * component.blocksPerColumn * 64,
                                          0);
        }
    }

    void ReadHuffmanTables(std::string_view body)
    {
        for (size_t at = 0; at < body.size();)
        {
            if (body.size() - at < 17)
                Fail(u"a Huffman table is damaged");
            const auto kindAndId = static_cast<uint8_t>(body[at]);
            const int kind = kindAndId >> 4;
            const int id = kindAndId & 15;
            if (kind > 1 || id > 3)
                Fail(u"a Huffman table is damaged");
            const std::string_view counts = body.substr(at + 1, 16);
            size_t total = 0;
            for (const char count : counts)
                total += static_cast<uint8_t>(count);
            if (total > 256 || body.size() - at - 17 < total)
                Fail(u"a Huffman table is damaged");
            (kind == 0 ? m_DcTables : m_AcTables)[static_cast<size_t>(id)].Build(counts,
                                                                                 body.substr(at + 17, total));
            at += 17 + total;
        }
    }

    void ReadQuantisationTables(std::string_view body)
    {
        for (size_t at = 0; at < body.size();)
        {
            const auto precisionAndId = static_cast<uint8_t>(body[at]);
            const bool wide = (precisionAndId >> 4) != 0;
            const int id = precisionAndId & 15;
            const size_t size = wide ? 128 : 64;
            if (id > 3 || (precisionAndId >> 4) > 1 || body.size() - at - 1 < size)
                Fail(u"a quantisation table is damaged");
            std::array<uint16_t, 64>& table = m_Quant[static_cast<size_t>(id)];
            for (size_t k = 0; k < 64; ++k)
                table[ZigZag[k]] =
                    wide ? BigEndian16(body, at + 1 + 2 * k) : static_cast<uint8_t>(body[at + 1 + k]);
            at += 1 + size;
        }
    }

    // ---- scans ------------------------------------------------------------------------------

    size_t ReadAndDecodeScan(std::string_view body, size_t dataStart)
    {
        if (m_Components.empty())
            Fail(u"a scan comes before the frame header");
        if (++m_Scans > MaxScans)
            Fail(u"the picture has too many scans");
        const SScan scan = ReadScanHeader(body);
        CBitReader bits(m_Data, dataStart);
        for (SComponent* component : scan.components)
        {
            component->dcPrediction = 0;
            if (!component->quantLatched)
            {
                component->quant = m_Quant[static_cast<size_t>(component->quantTable)];
                component->quantLatched = true;
            }
        }
        m_EobRun = 0;
        if (scan.components.size() == 1)
            DecodeLoneComponent(scan, bits);
        else
            DecodeInterleaved(scan, bits);
        return bits.NextMarker();
    }

    SScan ReadScanHeader(std::string_view body)
    {
        if (body.empty())
            Fail(u"a scan header is damaged");
        const size_t count = static_cast<uint8_t>(body[0]);
        if (count < 1 || count > m_Components.size() || body.size() < 1 + 2 * count + 3)
            Fail(u"a scan header is damaged");
        SScan scan;
        for (size_t i = 0; i < count; ++i)
        {
            const int id = static_cast<uint8_t>(body[1 + 2 * i]);
            const auto tables = static_cast<uint8_t>(body[2 + 2 * i]);
            const auto found = std::find_if(m_Components.begin(), m_Components.end(),
                                            [id](const SComponent& c) { return c.id == id; });
            if (found == m_Components.end() ||
                std::find(scan.components.begin(), scan.components.end(), &*found) != scan.components.end())
                Fail(u"a scan names a component the frame does not have");
            found->dcTable = tables >> 4;
            found->acTable = tables & 15;
            if (found->dcTable > 3 || found->acTable > 3)
                Fail(u"a scan header is damaged");
            scan.components.push_back(&*found);
        }
        scan.spectralStart = static_cast<uint8_t>(body[1 + 2 * count]);
        scan.spectralEnd = static_cast<uint8_t>(body[2 + 2 * count]);
        const auto approximation = static_cast<uint8_t>(body[3 + 2 * count]);
        scan.approximationHigh = approximation >> 4;
        scan.approximationLow = approximation & 15;
        if (!m_Progressive)
        {
            scan.spectralStart = 0;
            scan.spectralEnd = 63;
            scan.approximationHigh = scan.approximationLow = 0;
        }
        else if (scan.spectralStart > scan.spectralEnd || scan.spectralEnd > 63 ||
                 scan.approximationLow > 13 || (scan.spectralStart == 0 && scan.spectralEnd != 0) ||
                 (scan.spectralStart > 0 && scan.components.size() != 1))
            Fail(u"a progressive scan header is damaged");
        CheckTables(scan);
        return scan;
    }

    void CheckTables(const SScan& scan) const
    {
        for (const SComponent* component : scan.components)
        {
            const bool needsDc = scan.spectralStart == 0 && scan.approximationHigh == 0;
            const bool needsAc = scan.spectralEnd > 0;
            if ((needsDc && !m_DcTables[static_cast<size_t>(component->dcTable)].IsDefined()) ||
                (needsAc && !m_AcTables[static_cast<size_t>(component->acTable)].IsDefined()))
                Fail(u"a scan uses a Huffman table that is not defined");
        }
    }

    void DecodeLoneComponent(const SScan& scan, CBitReader& bits)
    {
        SComponent& component = *scan.components[0];
        uint32_t done = 0;
        for (uint32_t y = 0; y < component.usedBlocksPerColumn; ++y)
        {
            for (uint32_t x = 0; x < component.usedBlocksPerLine; ++x)
            {
                RestartIfDue(scan, bits, done++);
                DecodeBlock(scan, component, Block(component, x, y), bits);
            }
        }
    }

    void DecodeInterleaved(const SScan& scan, CBitReader& bits)
    {
        uint32_t done = 0;
        for (uint32_t mcuY = 0; mcuY < m_McusPerColumn; ++mcuY)
        {
            for (uint32_t mcuX = 0; mcuX < m_McusPerLine; ++mcuX)
            {
                RestartIfDue(scan, bits, done++);
                for (SComponent* component : scan.components)
                    for (int v = 0; v < component->v; ++v)
                        for (int h = 0; h < component->h; ++h)
                            DecodeBlock(scan, *component,
                                        Block(*component,
                                              mcuX * static_cast<uint32_t>(component->h) + uint32_t(h),
                                              mcuY * static_cast<uint32_t>(component->v) + uint32_t(v)),
                                        bits);
            }
        }
    }

    static int16_t* Block(SComponent& component, uint32_t x, uint32_t y)
    {
        return component.coefficients.data() + (size_t(y) * component.blocksPerLine + x) * 64;
    }

    void RestartIfDue(const SScan& scan, CBitReader& bits, uint32_t done)
    {
        if (m_RestartInterval == 0 || done == 0 || done % m_RestartInterval != 0)
            return;
        bits.Restart();
        for (SComponent* component : scan.components)
            component->dcPrediction = 0;
        m_EobRun = 0;
    }

    static uint8_t DecodeSymbol(const CHuffmanTable& table, CBitReader& bits)
    {
        int length = 0;
        const uint8_t symbol = table.Decode(bits.Peek16(), length);
        if (length == 0)
            Fail(u"the image data holds a code no table defines");
        bits.Skip(length);
        return symbol;
    }

    void DecodeBlock(const SScan& scan, SComponent& component, int16_t* block, CBitReader& bits)
    {
        if (!m_Progressive)
        {
            DecodeDcFirst(component, block, bits, 0);
            DecodeAcFirst(scan, component, block, bits);
        }
        else if (scan.spectralStart == 0)
        {
            if (scan.approximationHigh == 0)
                DecodeDcFirst(component, block, bits, scan.approximationLow);
            else if (bits.Bits(1) != 0)
                block[0] = ClampCoefficient(block[0] | (1 << scan.approximationLow));
        }
        else if (scan.approximationHigh == 0)
            DecodeAcFirst(scan, component, block, bits);
        else
            DecodeAcRefinement(scan, component, block, bits);
    }

    void DecodeDcFirst(SComponent& component, int16_t* block, CBitReader& bits, int shift)
    {
        const int size = DecodeSymbol(m_DcTables[static_cast<size_t>(component.dcTable)], bits);
        if (size > 16)
            Fail(u"the image data is damaged");
        const int difference = Extend(bits.Bits(size), size);
        component.dcPrediction = std::clamp(component.dcPrediction + difference, -65536, 65536);
        block[0] = ClampCoefficient(component.dcPrediction * (1 << shift));
    }

    void DecodeAcFirst(const SScan& scan, const SComponent& component, int16_t* block, CBitReader& bits)
    {
        if (m_EobRun > 0)
        {
            --m_EobRun;
            return;
        }
        const CHuffmanTable& table = m_AcTables[static_cast<size_t>(component.acTable)];
        const int shift = scan.approximationLow;
        for (int k = std::max(scan.spectralStart, 1); k <= scan.spectralEnd;)
        {
            const uint8_t runAndSize = DecodeSymbol(table, bits);
            const int run = runAndSize >> 4;
            const int size = runAndSize & 15;
            if (size == 0)
            {
                if (run < 15)
                {
                    // End of band, here and (in progressive pictures) in the next 2^run - 1 +
                    // extra bits blocks.
                    if (m_Progressive)
                        m_EobRun = (uint32_t(1) << run) - 1 + bits.Bits(run);
                    return;
                }
                k += 16;
                continue;
            }
            k += run;
            if (k > 63)
                return; // damaged: the rest of the block stays zero
            block[ZigZag[static_cast<size_t>(k)]] =
                ClampCoefficient(Extend(bits.Bits(size), size) * (1 << shift));
            ++k;
        }
    }

    // The refinement of AC coefficients: one more bit of every coefficient already known, and
    // new coefficients of magnitude one.
    void DecodeAcRefinement(const SScan& scan, const SComponent& component, int16_t* block, CBitReader& bits)
    {
        const int bit = 1 << scan.approximationLow;
        int k = scan.spectralStart;
        if (m_EobRun == 0)
        {
            const CHuffmanTable& table = m_AcTables[static_cast<size_t>(component.acTable)];
            while (k <= scan.spectralEnd)
            {
                const uint8_t runAndSize = DecodeSymbol(table, bits);
                int run = runAndSize >> 4;
                const int size = runAndSize & 15;
                int value = 0;
                if (size == 0)
                {
                    if (run < 15)
                    {
                        m_EobRun = (uint32_t(1) << run) + bits.Bits(run);
                        break; // the rest of this block is refined as part of the run
                    }
                }
                else
                {
                    if (size != 1)
                        Fail(u"the image data is damaged");
                    value = bits.Bits(1) != 0 ? bit : -bit;
                }
                // Passes `run` zero coefficients (refining the non-zero ones on the way), then
                // places the new value.
                while (k <= scan.spectralEnd)
                {
                    int16_t& coefficient = block[ZigZag[static_cast<size_t>(k++)]];
                    if (coefficient != 0)
                        RefineCoefficient(coefficient, bit, bits);
                    else if (run == 0)
                    {
                        coefficient = static_cast<int16_t>(value);
                        break;
                    }
                    else
                        --run;
                }
            }
            if (m_EobRun == 0)
                return;
        }
        for (; k <= scan.spectralEnd; ++k)
        {
            int16_t& coefficient = block[ZigZag[static_cast<size_t>(k)]];
            if (coefficient != 0)
                RefineCoefficient(coefficient, bit, bits);
        }
        --m_EobRun;
    }

    static void RefineCoefficient(int16_t& coefficient, int bit, CBitReader& bits)
    {
        if (bits.Bits(1) != 0 && (coefficient & bit) == 0)
            coefficient = ClampCoefficient(coefficient >= 0 ? coefficient + bit : coefficient - bit);
    }

    // ---- output -------------------------------------------------------------------------------

    SRgbImage Render()
    {
        std::vector<std::vector<uint8_t>> planes;
        for (SComponent& component : m_Components)
            planes.push_back(ComponentPlane(component));
        SRgbImage image;
        image.width = m_Width;
        image.height = m_Height;
        image.rgb.resize(size_t(m_Width) * m_Height * 3);
        const bool isRgb =
            m_Components.size() == 3 &&
            (m_AdobeTransform == 0 ||
             (m_Components[0].id == 'R' && m_Components[1].id == 'G' && m_Components[2].id == 'B'));
        uint8_t* out = image.rgb.data();
        for (uint32_t y = 0; y < m_Height; ++y)
        {
            for (uint32_t x = 0; x < m_Width; ++x, out += 3)
            {
                int samples[3] = {0, 0, 0};
                for (size_t c = 0; c < m_Components.size(); ++c)
                {
                    const SComponent& component = m_Components[c];
                    // Sub-sampled components are stretched: the nearest sample stands for a pixel.
                    const size_t sx = size_t(x) * static_cast<uint32_t>(component.h) / m_MaxH;
                    const size_t sy = size_t(y) * static_cast<uint32_t>(component.v) / m_MaxV;
                    samples[c] = planes[c][sy * component.blocksPerLine * 8 + sx];
                }
                if (m_Components.size() == 1)
                    out[0] = out[1] = out[2] = static_cast<uint8_t>(samples[0]);
                else if (isRgb)
                    std::copy(samples, samples + 3, out);
                else
                    YCbCrToRgb(samples, out);
            }
        }
        return image;
    }

    static void YCbCrToRgb(const int samples[3], uint8_t* out)
    {
        const double y = samples[0];
        const double cb = samples[1] - 128.0;
        const double cr = samples[2] - 128.0;
        const double rgb[3] = {y + 1.402 * cr, y - 0.344136 * cb - 0.714136 * cr, y + 1.772 * cb};
        for (int i = 0; i < 3; ++i)
            out[i] = static_cast<uint8_t>(std::clamp(std::lround(rgb[i]), 0L, 255L));
    }

    // The component's samples, dequantised and transformed block by block.
    std::vector<uint8_t> ComponentPlane(const SComponent& component) const
    {
        const size_t stride = size_t(component.blocksPerLine) * 8;
        std::vector<uint8_t> plane(stride * component.blocksPerColumn * 8);
        for (uint32_t by = 0; by < component.blocksPerColumn; ++by)
        {
            for (uint32_t bx = 0; bx < component.blocksPerLine; ++bx)
            {
                const int16_t* block =
                    component.coefficients.data() + (size_t(by) * component.blocksPerLine + bx) * 64;
                InverseTransform(block, component.quant,
                                 plane.data() + size_t(by) * 8 * stride + size_t(bx) * 8, stride);
            }
        }
        return plane;
    }

    // The separable inverse DCT of one dequantised block, level-shifted by 128.
    static void InverseTransform(const int16_t* block, const std::array<uint16_t, 64>& quant, uint8_t* out,
                                 size_t stride)
    {
        static const std::array<double, 64> Basis = []
        {
            std::array<double, 64> basis{};
            const double pi = std::acos(-1.0);
            for (int x = 0; x < 8; ++x)
                for (int u = 0; u < 8; ++u)
                    basis[size_t(x * 8 + u)] =
                        (u == 0 ? std::sqrt(0.125) : 0.5) * std::cos((2 * x + 1) * u * pi / 16);
            return basis;
        }();
        double rows[64];
        for (int v = 0; v < 8; ++v)
        {
            double coefficients[8];
            for (int u = 0; u < 8; ++u)
                coefficients[u] = double(block[v * 8 + u]) * quant[size_t(v * 8 + u)];
            for (int x = 0; x < 8; ++x)
            {
                double sum = 0;
                for (int u = 0; u < 8; ++u)
                    sum += Basis[size_t(x * 8 + u)] * coefficients[u];
                rows[v * 8 + x] = sum;
            }
        }
        for (int x = 0; x < 8; ++x)
        {
            for (int y = 0; y < 8; ++y)
            {
                double sum = 0;
                for (int v = 0; v < 8; ++v)
                    sum += Basis[size_t(y * 8 + v)] * rows[v * 8 + x];
                out[size_t(y) * stride + size_t(x)] =
                    static_cast<uint8_t>(std::clamp(std::lround(sum + 128.0), 0L, 255L));
            }
        }
    }

    std::string_view m_Data;
    std::vector<SComponent> m_Components;
    std::array<CHuffmanTable, 4> m_DcTables;
    std::array<CHuffmanTable, 4> m_AcTables;
    std::array<std::array<uint16_t, 64>, 4> m_Quant{};
    uint32_t m_Width = 0;
    uint32_t m_Height = 0;
    int m_MaxH = 1;
    int m_MaxV = 1;
    uint32_t m_McusPerLine = 0;
    uint32_t m_McusPerColumn = 0;
    uint32_t m_RestartInterval = 0;
    uint32_t m_EobRun = 0;
    int m_AdobeTransform = -1;
    int m_Scans = 0;
    bool m_Progressive = false;
};
} // namespace

bool DecodeJpeg(std::string_view data, SRgbImage& image, std::u16string& failure)
{
    try
    {
        image = CJpegDecoder(data).Decode();
        return true;
    }
    catch (const SJpegError& error)
    {
        failure = error.reason;
    }
    catch (const std::bad_alloc&)
    {
        failure = u"out of memory";
    }
    return false;
}
