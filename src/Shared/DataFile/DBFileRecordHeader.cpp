#include "Shared/DataFile/DBFileRecordHeader.h"

namespace
{
void PutU16(uint8_t* out, uint16_t v)
{
    out[0] = static_cast<uint8_t>(v);
    out[1] = static_cast<uint8_t>(v >> 8);
}

void PutU32(uint8_t* out, uint32_t v)
{
    for (int i = 0; i < 4; ++i)
        out[i] = static_cast<uint8_t>(v >> (8 * i));
}

uint16_t GetU16(const uint8_t* in)
{
    return static_cast<uint16_t>(in[0] | in[1] << 8);
}

uint32_t GetU32(const uint8_t* in)
{
    return static_cast<uint32_t>(in[0]) | static_cast<uint32_t>(in[1]) << 8 |
           static_cast<uint32_t>(in[2]) << 16 | static_cast<uint32_t>(in[3]) << 24;
}
} // namespace

std::vector<uint8_t> SDBRecordHeader::Encode() const
{
    std::vector<uint8_t> out(FixedSize + FieldEntrySize * fields.size(), 0);
    PutU16(out.data(), recordType);
    for (size_t i = 0; i < info.size(); ++i)
        PutU32(out.data() + 4 + 4 * i, info[i]);
    PutU32(out.data() + 20, static_cast<uint32_t>(fields.size()));
    uint8_t* entry = out.data() + FixedSize;
    for (const SFieldCacheEntry& field : fields)
    {
        PutU16(entry, field.fieldType);
        field.dataId.ToBytes(entry + 4);
        entry += FieldEntrySize;
    }
    return out;
}

SDBRecordHeader::EDecode SDBRecordHeader::Decode(std::span<const uint8_t> data, SDBRecordHeader& header,
                                                 uint64_t& expectedSize)
{
    if (data.size() < FixedSize)
        return EDecode::TooShort;
    const uint32_t count = GetU32(data.data() + 20);
    expectedSize = FixedSize + static_cast<uint64_t>(FieldEntrySize) * count;
    if (expectedSize != data.size())
        return EDecode::SizeMismatch;
    header.recordType = GetU16(data.data());
    for (size_t i = 0; i < header.info.size(); ++i)
        header.info[i] = GetU32(data.data() + 4 + 4 * i);
    header.fields.clear();
    header.fields.reserve(count);
    const uint8_t* entry = data.data() + FixedSize;
    for (uint32_t i = 0; i < count; ++i, entry += FieldEntrySize)
        header.fields.push_back({GetU16(entry), CUInt128::FromBytes(entry + 4)});
    return EDecode::Ok;
}
