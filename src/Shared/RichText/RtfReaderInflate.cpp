#include "Shared/RichText/RtfReaderInflate.h"

#include <array>

namespace
{
constexpr int MaxBits = 15;

class CBitReader
{
public:
    explicit CBitReader(std::string_view data) : m_Data(data) {}

    // False once the data is exhausted; the value is then 0.
    bool Bits(int count, uint32_t& value)
    {
        value = 0;
        for (int i = 0; i < count; ++i)
        {
            if (m_Byte >= m_Data.size())
                return false;
            const uint32_t bit = (static_cast<uint8_t>(m_Data[m_Byte]) >> m_Bit) & 1u;
            value |= bit << i;
            if (++m_Bit == 8)
            {
                m_Bit = 0;
                ++m_Byte;
            }
        }
        return true;
    }

    void AlignToByte()
    {
        if (m_Bit != 0)
        {
            m_Bit = 0;
            ++m_Byte;
        }
    }

    bool TakeBytes(size_t count, std::string_view& bytes)
    {
        if (m_Byte > m_Data.size() || m_Data.size() - m_Byte < count)
            return false;
        bytes = m_Data.substr(m_Byte, count);
        m_Byte += count;
        return true;
    }

private:
    std::string_view m_Data;
    size_t m_Byte = 0;
    int m_Bit = 0;
};

// A canonical Huffman code, decoded bit by bit (pictures in notes are small).
class CHuffman
{
public:
    bool Build(const uint8_t* lengths, size_t count)
    {
        m_Counts.fill(0);
        m_Symbols.assign(count, 0);
        for (size_t i = 0; i < count; ++i)
            ++m_Counts[lengths[i]];
        m_Counts[0] = 0;
        int left = 1;
        for (int length = 1; length <= MaxBits; ++length)
        {
            left = 2 * left - m_Counts[length];
            if (left < 0)
                return false; // over-subscribed
        }
        std::array<uint16_t, MaxBits + 2> offsets{};
        for (int length = 1; length <= MaxBits; ++length)
            offsets[length + 1] = static_cast<uint16_t>(offsets[length] + m_Counts[length]);
        for (size_t i = 0; i < count; ++i)
            if (lengths[i] != 0)
                m_Symbols[offsets[lengths[i]]++] = static_cast<uint16_t>(i);
        return true;
    }

    // -1 when the bits run out or name no symbol.
    int Decode(CBitReader& bits) const
    {
        int code = 0, first = 0, index = 0;
        for (int length = 1; length <= MaxBits; ++length)
        {
            uint32_t bit = 0;
            if (!bits.Bits(1, bit))
                return -1;
            code |= static_cast<int>(bit);
            const int count = m_Counts[length];
            if (code - count < first)
                return m_Symbols[static_cast<size_t>(index + (code - first))];
            index += count;
            first = (first + count) << 1;
            code <<= 1;
        }
        return -1;
    }

private:
    std::array<uint16_t, MaxBits + 1> m_Counts{};
    std::vector<uint16_t> m_Symbols;
};

constexpr uint16_t LengthBase[29] = {3,  4,  5,  6,  7,  8,  9,  10, 11,  13,  15,  17,  19,  23, 27,
                                     31, 35, 43, 51, 59, 67, 83, 99, 115, 131, 163, 195, 227, 258};
constexpr uint8_t LengthExtra[29] = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2,
                                     2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0};
constexpr uint16_t DistanceBase[30] = {1,    2,    3,    4,    5,    7,    9,    13,    17,    25,
                                       33,   49,   65,   97,   129,  193,  257,  385,   513,   769,
                                       1025, 1537, 2049, 3073, 4097, 6145, 8193, 12289, 16385, 24577};
constexpr uint8_t DistanceExtra[30] = {0, 0, 0, 0, 1, 1, 2, 2,  3,  3,  4,  4,  5,  5,  6,
                                       6, 7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12, 13, 13};

class CInflater
{
public:
    CInflater(std::string_view data, size_t maxOutput, std::vector<uint8_t>& out)
        : m_Bits(data), m_MaxOutput(maxOutput), m_Out(out)
    {
    }

    bool Run()
    {
        uint32_t last = 0;
        do
        {
            uint32_t type = 0;
            if (!m_Bits.Bits(1, last) || !m_Bits.Bits(2, type))
                return false;
            bool ok = false;
            if (type == 0)
                ok = StoredBlock();
            else if (type == 1)
                ok = FixedBlock();
            else if (type == 2)
                ok = DynamicBlock();
            if (!ok)
                return false;
        } while (last == 0);
        return true;
    }

private:
    bool StoredBlock()
    {
        m_Bits.AlignToByte();
        std::string_view header;
        if (!m_Bits.TakeBytes(4, header))
            return false;
        const size_t length = static_cast<uint8_t>(header[0]) | (static_cast<uint8_t>(header[1]) << 8);
        const size_t check = static_cast<uint8_t>(header[2]) | (static_cast<uint8_t>(header[3]) << 8);
        std::string_view bytes;
        if ((length ^ 0xFFFF) != check || !m_Bits.TakeBytes(length, bytes) || !HasRoom(length))
            return false;
        m_Out.insert(m_Out.end(), bytes.begin(), bytes.end());
        return true;
    }

    bool FixedBlock()
    {
        uint8_t lengths[288 + 30];
        for (int i = 0; i < 288; ++i)
            lengths[i] = i < 144 ? 8 : i < 256 ? 9 : i < 280 ? 7 : 8;
        for (int i = 0; i < 30; ++i)
            lengths[288 + i] = 5;
        return m_Literals.Build(lengths, 288) && m_Distances.Build(lengths + 288, 30) && Codes();
    }

    bool DynamicBlock()
    {
        uint32_t literalCount = 0, distanceCount = 0, codeCount = 0;
        if (!m_Bits.Bits(5, literalCount) || !m_Bits.Bits(5, distanceCount) || !m_Bits.Bits(4, codeCount))
            return false;
        literalCount += 257;
        distanceCount += 1;
        codeCount += 4;
        if (literalCount > 286 || distanceCount > 30)
            return false;
        static constexpr uint8_t Order[19] = {16, 17, 18, 0, 8,  7, 9,  6, 10, 5,
                                              11, 4,  12, 3, 13, 2, 14, 1, 15};
        uint8_t codeLengths[19] = {};
        for (uint32_t i = 0; i < codeCount; ++i)
        {
            uint32_t length = 0;
            if (!m_Bits.Bits(3, length))
                return false;
            codeLengths[Order[i]] = static_cast<uint8_t>(length);
        }
        CHuffman lengthCode;
        if (!lengthCode.Build(codeLengths, 19))
            return false;
        uint8_t lengths[286 + 30] = {};
        const uint32_t total = literalCount + distanceCount;
        for (uint32_t i = 0; i < total;)
        {
            const int symbol = lengthCode.Decode(m_Bits);
            if (symbol < 0)
                return false;
            if (symbol < 16)
            {
                lengths[i++] = static_cast<uint8_t>(symbol);
                continue;
            }
            uint32_t repeat = 0;
            uint8_t value = 0;
            if (symbol == 16)
            {
                if (i == 0 || !m_Bits.Bits(2, repeat))
                    return false;
                value = lengths[i - 1];
                repeat += 3;
            }
            else if (!m_Bits.Bits(symbol == 17 ? 3 : 7, repeat))
                return false;
            else
                repeat += symbol == 17 ? 3 : 11;
            if (i + repeat > total)
                return false;
            while (repeat-- > 0)
                lengths[i++] = value;
        }
        return m_Literals.Build(lengths, literalCount) &&
               m_Distances.Build(lengths + literalCount, distanceCount) && Codes();
    }

    bool Codes()
    {
        for (;;)
        {
            const int symbol = m_Literals.Decode(m_Bits);
            if (symbol < 0)
                return false;
            if (symbol < 256)
            {
                if (!HasRoom(1))
                    return false;
                m_Out.push_back(static_cast<uint8_t>(symbol));
                continue;
            }
            if (symbol == 256)
                return true;
            if (!CopyMatch(symbol - 257))
                return false;
        }
    }

    bool CopyMatch(int lengthSymbol)
    {
        if (lengthSymbol >= 29)
            return false;
        uint32_t extra = 0;
        if (!m_Bits.Bits(LengthExtra[lengthSymbol], extra))
            return false;
        const size_t length = LengthBase[lengthSymbol] + extra;
        const int distanceSymbol = m_Distances.Decode(m_Bits);
        if (distanceSymbol < 0 || distanceSymbol >= 30 || !m_Bits.Bits(DistanceExtra[distanceSymbol], extra))
            return false;
        const size_t distance = DistanceBase[distanceSymbol] + extra;
        if (distance > m_Out.size() || !HasRoom(length))
            return false;
        const size_t from = m_Out.size() - distance;
        for (size_t i = 0; i < length; ++i)
            m_Out.push_back(m_Out[from + i]);
        return true;
    }

    bool HasRoom(size_t count) const
    {
        return m_Out.size() <= m_MaxOutput && m_MaxOutput - m_Out.size() >= count;
    }

    CBitReader m_Bits;
    size_t m_MaxOutput;
    std::vector<uint8_t>& m_Out;
    CHuffman m_Literals;
    CHuffman m_Distances;
};
} // namespace

bool InflateZlib(std::string_view data, size_t maxOutput, std::vector<uint8_t>& out)
{
    out.clear();
    if (data.size() < 2)
        return false;
    const uint8_t method = static_cast<uint8_t>(data[0]);
    const uint8_t flags = static_cast<uint8_t>(data[1]);
    if ((method & 0x0F) != 8 || ((method << 8) | flags) % 31 != 0 || (flags & 0x20) != 0)
        return false;
    out.reserve(maxOutput);
    return CInflater(data.substr(2), maxOutput, out).Run();
}
