#include "Shared/RichText/HugeMemory.h"

#include <algorithm>
#include <cstring>

CHugeMemory::CHugeMemory(size_t chunkSize) : m_ChunkSize(chunkSize == 0 ? DefaultChunkSize : chunkSize) {}

void CHugeMemory::Resize(size_t size)
{
    const size_t chunks = (size + m_ChunkSize - 1) / m_ChunkSize;
    m_Chunks.resize(chunks);
    for (size_t i = 0; i < chunks; ++i)
    {
        const size_t wanted = i + 1 < chunks ? m_ChunkSize : size - i * m_ChunkSize;
        m_Chunks[i].resize(wanted, 0);
    }
    m_Size = size;
}

void CHugeMemory::Append(std::span<const uint8_t> bytes)
{
    const size_t offset = m_Size;
    Resize(m_Size + bytes.size());
    Write(offset, bytes);
}

bool CHugeMemory::Write(size_t offset, std::span<const uint8_t> bytes)
{
    if (offset > m_Size || bytes.size() > m_Size - offset)
        return false;
    size_t done = 0;
    while (done < bytes.size())
    {
        const size_t at = offset + done;
        std::vector<uint8_t>& chunk = m_Chunks[at / m_ChunkSize];
        const size_t inChunk = at % m_ChunkSize;
        const size_t count = std::min(bytes.size() - done, chunk.size() - inChunk);
        std::memcpy(chunk.data() + inChunk, bytes.data() + done, count);
        done += count;
    }
    return true;
}

bool CHugeMemory::Read(size_t offset, std::span<uint8_t> out) const
{
    if (offset > m_Size || out.size() > m_Size - offset)
        return false;
    size_t done = 0;
    while (done < out.size())
    {
        const size_t at = offset + done;
        const std::vector<uint8_t>& chunk = m_Chunks[at / m_ChunkSize];
        const size_t inChunk = at % m_ChunkSize;
        const size_t count = std::min(out.size() - done, chunk.size() - inChunk);
        std::memcpy(out.data() + done, chunk.data() + inChunk, count);
        done += count;
    }
    return true;
}

std::vector<uint8_t> CHugeMemory::ToVector() const
{
    std::vector<uint8_t> bytes;
    bytes.reserve(m_Size);
    for (const std::vector<uint8_t>& chunk : m_Chunks)
        bytes.insert(bytes.end(), chunk.begin(), chunk.end());
    return bytes;
}

bool CHugeMemory::operator==(const CHugeMemory& other) const
{
    return m_Size == other.m_Size && ToVector() == other.ToVector();
}
