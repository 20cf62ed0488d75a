#pragma once
// Binary archive: little-endian integers, one-byte booleans, raw blocks, and the framework's
// string form. The writer appends to a growing buffer; the reader never reads past its end:
// every Read returns false once the data runs out (and stays failed), so loaders can check
// once at the end or after each field.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class CArchiveWriter
{
public:
    explicit CArchiveWriter(size_t growStep = 1024);

    void WriteU8(uint8_t v);
    void WriteU16(uint16_t v);
    void WriteU32(uint32_t v);
    void WriteU64(uint64_t v);
    void WriteI32(int32_t v) { WriteU32(static_cast<uint32_t>(v)); }
    void WriteI64(int64_t v) { WriteU64(static_cast<uint64_t>(v)); }
    void WriteDouble(double v); // IEEE-754 binary64, little-endian
    void WriteBool(bool v) { WriteU8(v ? 1 : 0); }
    void WriteBytes(const void* data, size_t size);
    // The framework string form: 0xFF, the 16-bit marker 0xFFFE, then the length in characters
    // (one byte below 0xFF; else 0xFF and a u16 below 0xFFFE; else 0xFF, 0xFFFF and a u32),
    // then the UTF-16LE code units without terminator.
    void WriteString(std::u16string_view text);

    const std::vector<uint8_t>& Bytes() const { return m_Bytes; }
    std::vector<uint8_t> Take() { return std::move(m_Bytes); }
    size_t Size() const { return m_Bytes.size(); }

private:
    void Reserve(size_t more);

    std::vector<uint8_t> m_Bytes;
    size_t m_GrowStep;
};

class CArchiveReader
{
public:
    CArchiveReader(const void* data, size_t size);
    explicit CArchiveReader(const std::vector<uint8_t>& data) : CArchiveReader(data.data(), data.size()) {}

    bool ReadU8(uint8_t& v);
    bool ReadU16(uint16_t& v);
    bool ReadU32(uint32_t& v);
    bool ReadU64(uint64_t& v);
    bool ReadI32(int32_t& v);
    bool ReadI64(int64_t& v);
    bool ReadDouble(double& v);
    bool ReadBool(bool& v); // any non-zero byte is true
    bool ReadBytes(void* out, size_t size);
    bool Skip(size_t size);
    // Reads the framework string form. Also accepts the older single-byte form (a length without
    // the 0xFFFE marker, then Windows-1252 bytes). A length beyond the remaining data fails
    // before anything is allocated.
    bool ReadString(std::u16string& text);

    size_t Position() const { return m_Pos; }
    size_t Remaining() const { return m_Size - m_Pos; }
    bool Failed() const { return m_Failed; }
    const uint8_t* Current() const { return m_Data + m_Pos; }

private:
    bool Take(size_t size, const uint8_t*& where);

    const uint8_t* m_Data;
    size_t m_Size;
    size_t m_Pos = 0;
    bool m_Failed = false;
};
