#pragma once
// A byte buffer kept as a list of fixed-size chunks, so that a large attachment never needs one
// contiguous allocation and growing it never copies what is already there. The chunk sizes add
// up to Size(); only the last chunk may be shorter than ChunkSize.
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

class CHugeMemory
{
public:
    static constexpr size_t DefaultChunkSize = 64 * 1024;

    explicit CHugeMemory(size_t chunkSize = DefaultChunkSize);

    size_t Size() const { return m_Size; }
    bool IsEmpty() const { return m_Size == 0; }
    size_t ChunkSize() const { return m_ChunkSize; }
    size_t ChunkCount() const { return m_Chunks.size(); }
    std::span<const uint8_t> Chunk(size_t index) const { return m_Chunks.at(index); }
    std::span<uint8_t> Chunk(size_t index) { return m_Chunks.at(index); }

    // Grows with zero bytes or cuts at the end.
    void Resize(size_t size);
    void Clear() { Resize(0); }
    void Append(std::span<const uint8_t> bytes);
    // Copies within [0, Size()); returns false (and copies nothing) when the range does not fit.
    bool Write(size_t offset, std::span<const uint8_t> bytes);
    bool Read(size_t offset, std::span<uint8_t> out) const;
    std::vector<uint8_t> ToVector() const;

    // Equal contents; the chunk size does not count.
    bool operator==(const CHugeMemory& other) const;

private:
    std::vector<std::vector<uint8_t>> m_Chunks;
    size_t m_ChunkSize;
    size_t m_Size = 0;
};
