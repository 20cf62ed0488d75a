#include "Shared/DataFile/DataFileCipher.h"

#include <cstring>

namespace
{
// Repeating the period up to this length lets the XOR loop run over long vectorised stretches.
constexpr size_t MinStreamChunk = 4096;

// Eight bytes at a time: the compiler does not vectorise the byte loop at every optimisation
// level, and this is the whole cost of deciphering.
void XorInto(uint8_t* out, const uint8_t* stream, size_t size)
{
    size_t i = 0;
    for (; i + 8 <= size; i += 8)
    {
        uint64_t a;
        uint64_t b;
        std::memcpy(&a, out + i, 8);
        std::memcpy(&b, stream + i, 8);
        a ^= b;
        std::memcpy(out + i, &a, 8);
    }
    for (; i < size; ++i)
        out[i] ^= stream[i];
}
} // namespace

void CDataFileCipher::BuildStream(size_t period, size_t length, uint32_t size32, uint32_t position32,
                                  bool oddPosition)
{
    const uint32_t keyLength = static_cast<uint32_t>(m_Key.size());
    uint32_t j = (keyLength + 4u * position32 + size32) % keyLength;
    uint8_t prev = m_Key[j];
    ++j;
    m_Stream.resize(length);
    const size_t computed = period < length ? period : length;
    for (size_t i = 0; i < computed; ++i)
    {
        if (j >= keyLength)
            j = 0;
        const uint8_t cur = m_Key[j];
        ++j;
        uint8_t t;
        if (i % 3 == 1)
            t = static_cast<uint8_t>((j % 41) + position32);
        else if (oddPosition)
            t = static_cast<uint8_t>((j & 0xFF) & cur);
        else
            t = static_cast<uint8_t>((size32 & 0xFF) | (j & 0xFF));
        m_Stream[i] = static_cast<uint8_t>(t ^ prev);
        prev = cur;
    }
    // Every later byte repeats the first period: copy in doubling runs.
    for (size_t filled = computed; filled < length;)
    {
        const size_t n = filled < length - filled ? filled : length - filled;
        std::memcpy(m_Stream.data() + filled, m_Stream.data(), n);
        filled += n;
    }
}

void CDataFileCipher::Apply(uint8_t* data, size_t size, uint64_t position)
{
    if (m_Key.empty() || size == 0)
        return;
    const size_t keyLength = m_Key.size();
    const size_t period = keyLength % 3 == 0 ? keyLength : 3 * keyLength;
    size_t chunk = size;
    if (size > period)
        chunk = period * ((MinStreamChunk + period - 1) / period);
    if (chunk > size)
        chunk = size;
    BuildStream(period, chunk, static_cast<uint32_t>(size), static_cast<uint32_t>(position),
                (position & 1) != 0);
    const uint8_t* stream = m_Stream.data();
    for (size_t done = 0; done < size; done += chunk)
    {
        const size_t n = size - done < chunk ? size - done : chunk;
        XorInto(data + done, stream, n);
    }
}
