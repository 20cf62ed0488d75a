#include "Shared/Base/UInt128.h"

namespace
{
void PutWordLe(uint8_t* out, uint32_t word)
{
    for (int i = 0; i < 4; ++i)
        out[i] = static_cast<uint8_t>(word >> (8 * i));
}

uint32_t GetWordLe(const uint8_t* in)
{
    uint32_t word = 0;
    for (int i = 0; i < 4; ++i)
        word |= static_cast<uint32_t>(in[i]) << (8 * i);
    return word;
}
} // namespace

CUInt128& CUInt128::operator++()
{
    if (++m_Low == 0)
        ++m_High;
    return *this;
}

CUInt128 CUInt128::operator++(int)
{
    CUInt128 before = *this;
    ++*this;
    return before;
}

void CUInt128::ToBytes(uint8_t out[DiskSize]) const
{
    PutWordLe(out, static_cast<uint32_t>(m_High >> 32));
    PutWordLe(out + 4, static_cast<uint32_t>(m_High));
    PutWordLe(out + 8, static_cast<uint32_t>(m_Low >> 32));
    PutWordLe(out + 12, static_cast<uint32_t>(m_Low));
}

CUInt128 CUInt128::FromBytes(const uint8_t in[DiskSize])
{
    const uint64_t high = (static_cast<uint64_t>(GetWordLe(in)) << 32) | GetWordLe(in + 4);
    const uint64_t low = (static_cast<uint64_t>(GetWordLe(in + 8)) << 32) | GetWordLe(in + 12);
    return CUInt128(high, low);
}

std::u16string CUInt128::ToHex() const
{
    static constexpr char16_t Digits[] = u"0123456789ABCDEF";
    std::u16string text;
    bool started = false;
    for (int nibble = 31; nibble >= 0; --nibble)
    {
        const uint64_t word = nibble >= 16 ? m_High : m_Low;
        const unsigned digit = static_cast<unsigned>(word >> (4 * (nibble % 16))) & 0xF;
        if (digit != 0 || started || nibble == 0)
        {
            text.push_back(Digits[digit]);
            started = true;
        }
    }
    return text;
}
