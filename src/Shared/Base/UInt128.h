#pragma once
// Unsigned 128-bit integer: the type of every record ID and item ID. 0 means "no record".
#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>

class CUInt128
{
public:
    static constexpr size_t DiskSize = 16;

    constexpr CUInt128() = default;
    constexpr CUInt128(uint64_t low) : m_Low(low) {} // NOLINT: implicit, IDs are often small numbers
    constexpr CUInt128(uint64_t high, uint64_t low) : m_High(high), m_Low(low) {}

    constexpr uint64_t High() const { return m_High; }
    constexpr uint64_t Low() const { return m_Low; }
    constexpr bool IsZero() const { return m_High == 0 && m_Low == 0; }

    constexpr bool operator==(const CUInt128&) const = default;
    constexpr std::strong_ordering operator<=>(const CUInt128& other) const
    {
        if (auto c = m_High <=> other.m_High; c != 0)
            return c;
        return m_Low <=> other.m_Low;
    }

    CUInt128& operator++(); // wraps at 2^128
    CUInt128 operator++(int);

    // Disk layout: four u32 words, most significant word first, each word little-endian.
    void ToBytes(uint8_t out[DiskSize]) const;
    static CUInt128 FromBytes(const uint8_t in[DiskSize]);

    // Upper-case hex without leading zeros ("0" for zero), for log lines.
    std::u16string ToHex() const;

private:
    uint64_t m_High = 0;
    uint64_t m_Low = 0;
};

struct CUInt128Hash
{
    size_t operator()(const CUInt128& v) const noexcept
    {
        return static_cast<size_t>(v.Low() * 0x9E3779B97F4A7C15ull ^ v.High());
    }
};
