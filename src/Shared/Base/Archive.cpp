#include "Shared/Base/Archive.h"

#include "Shared/Base/TextConv.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace
{
// Length prefixes of the framework string form.
constexpr uint8_t ByteEscape = 0xFF;
constexpr uint16_t UnicodeMarker = 0xFFFE;
constexpr uint16_t WordEscape = 0xFFFF;
constexpr uint32_t DwordEscape = 0xFFFFFFFF;

template <class T> void PutLe(std::vector<uint8_t>& bytes, T value)
{
    for (size_t i = 0; i < sizeof(T); ++i)
        bytes.push_back(static_cast<uint8_t>(static_cast<uint64_t>(value) >> (8 * i)));
}

template <class T> T GetLe(const uint8_t* where)
{
    uint64_t value = 0;
    for (size_t i = 0; i < sizeof(T); ++i)
        value |= static_cast<uint64_t>(where[i]) << (8 * i);
    return static_cast<T>(value);
}
} // namespace

CArchiveWriter::CArchiveWriter(size_t growStep) : m_GrowStep(std::max<size_t>(growStep, 1)) {}

void CArchiveWriter::Reserve(size_t more)
{
    const size_t needed = m_Bytes.size() + more;
    if (needed <= m_Bytes.capacity())
        return;
    // Grow by at least the step, and geometrically so that long archives stay linear.
    m_Bytes.reserve(std::max(needed, m_Bytes.capacity() + std::max(m_GrowStep, m_Bytes.capacity() / 2)));
}

void CArchiveWriter::WriteU8(uint8_t v)
{
    Reserve(1);
    m_Bytes.push_back(v);
}

void CArchiveWriter::WriteU16(uint16_t v)
{
    Reserve(2);
    PutLe(m_Bytes, v);
}

void CArchiveWriter::WriteU32(uint32_t v)
{
    Reserve(4);
    PutLe(m_Bytes, v);
}

void CArchiveWriter::WriteU64(uint64_t v)
{
    Reserve(8);
    PutLe(m_Bytes, v);
}

void CArchiveWriter::WriteDouble(double v)
{
    WriteU64(std::bit_cast<uint64_t>(v));
}

void CArchiveWriter::WriteBytes(const void* data, size_t size)
{
    if (size == 0)
        return;
    Reserve(size);
    const auto* bytes = static_cast<const uint8_t*>(data);
    m_Bytes.insert(m_Bytes.end(), bytes, bytes + size);
}

void CArchiveWriter::WriteString(std::u16string_view text)
{
    Reserve(11 + 2 * text.size());
    WriteU8(ByteEscape);
    WriteU16(UnicodeMarker);
    if (text.size() < ByteEscape)
        WriteU8(static_cast<uint8_t>(text.size()));
    else
    {
        WriteU8(ByteEscape);
        if (text.size() < UnicodeMarker)
            WriteU16(static_cast<uint16_t>(text.size()));
        else
        {
            WriteU16(WordEscape);
            WriteU32(static_cast<uint32_t>(text.size()));
        }
    }
    for (char16_t ch : text)
        PutLe(m_Bytes, static_cast<uint16_t>(ch));
}

CArchiveReader::CArchiveReader(const void* data, size_t size)
    : m_Data(static_cast<const uint8_t*>(data)), m_Size(data ? size : 0)
{
}

bool CArchiveReader::Take(size_t size, const uint8_t*& where)
{
    if (m_Failed || size > Remaining())
    {
        m_Failed = true;
        return false;
    }
    where = m_Data + m_Pos;
    m_Pos += size;
    return true;
}

bool CArchiveReader::ReadU8(uint8_t& v)
{
    const uint8_t* where = nullptr;
    if (!Take(1, where))
        return false;
    v = *where;
    return true;
}

bool CArchiveReader::ReadU16(uint16_t& v)
{
    const uint8_t* where = nullptr;
    if (!Take(2, where))
        return false;
    v = GetLe<uint16_t>(where);
    return true;
}

bool CArchiveReader::ReadU32(uint32_t& v)
{
    const uint8_t* where = nullptr;
    if (!Take(4, where))
        return false;
    v = GetLe<uint32_t>(where);
    return true;
}

bool CArchiveReader::ReadU64(uint64_t& v)
{
    const uint8_t* where = nullptr;
    if (!Take(8, where))
        return false;
    v = GetLe<uint64_t>(where);
    return true;
}

bool CArchiveReader::ReadI32(int32_t& v)
{
    uint32_t raw = 0;
    if (!ReadU32(raw))
        return false;
    v = static_cast<int32_t>(raw);
    return true;
}

bool CArchiveReader::ReadI64(int64_t& v)
{
    uint64_t raw = 0;
    if (!ReadU64(raw))
        return false;
    v = static_cast<int64_t>(raw);
    return true;
}

bool CArchiveReader::ReadDouble(double& v)
{
    uint64_t raw = 0;
    if (!ReadU64(raw))
        return false;
    v = std::bit_cast<double>(raw);
    return true;
}

bool CArchiveReader::ReadBool(bool& v)
{
    uint8_t raw = 0;
    if (!ReadU8(raw))
        return false;
    v = raw != 0;
    return true;
}

bool CArchiveReader::ReadBytes(void* out, size_t size)
{
    const uint8_t* where = nullptr;
    if (!Take(size, where))
        return false;
    if (size != 0)
        std::memcpy(out, where, size);
    return true;
}

bool CArchiveReader::Skip(size_t size)
{
    const uint8_t* where = nullptr;
    return Take(size, where);
}

bool CArchiveReader::ReadString(std::u16string& text)
{
    // The length prefix may be preceded by the Unicode marker (0xFF, 0xFFFE); without it the
    // characters are single Windows-1252 bytes.
    bool unicode = false;
    uint64_t length = 0;
    for (;;)
    {
        uint8_t small = 0;
        if (!ReadU8(small))
            return false;
        if (small != ByteEscape)
        {
            length = small;
            break;
        }
        uint16_t word = 0;
        if (!ReadU16(word))
            return false;
        if (word == UnicodeMarker && !unicode)
        {
            unicode = true;
            continue;
        }
        if (word != WordEscape)
        {
            length = word;
            break;
        }
        uint32_t dword = 0;
        if (!ReadU32(dword))
            return false;
        length = dword;
        if (dword == DwordEscape && !ReadU64(length))
            return false;
        break;
    }
    const uint64_t unitSize = unicode ? 2 : 1;
    if (m_Failed || length > Remaining() / unitSize)
    {
        m_Failed = true;
        return false;
    }
    const uint8_t* where = nullptr;
    Take(static_cast<size_t>(length * unitSize), where);
    if (!unicode)
    {
        text = Cp1252ToUtf16(
            std::string_view(reinterpret_cast<const char*>(where), static_cast<size_t>(length)));
        return true;
    }
    text.resize(static_cast<size_t>(length));
    for (size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char16_t>(GetLe<uint16_t>(where + 2 * i));
    return true;
}
