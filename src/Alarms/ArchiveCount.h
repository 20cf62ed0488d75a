#pragma once
// The framework's element-count form used by stored arrays: a u16 count, or 0xFFFF followed by a
// u32 count for 0xFFFF elements or more.
#include "Shared/Base/Archive.h"

#include <cstdint>

inline void WriteElementCount(CArchiveWriter& archive, size_t count)
{
    if (count < 0xFFFF)
    {
        archive.WriteU16(static_cast<uint16_t>(count));
        return;
    }
    archive.WriteU16(0xFFFF);
    archive.WriteU32(static_cast<uint32_t>(count));
}

inline bool ReadElementCount(CArchiveReader& archive, uint32_t& count)
{
    uint16_t shortCount = 0;
    if (!archive.ReadU16(shortCount))
        return false;
    if (shortCount != 0xFFFF)
    {
        count = shortCount;
        return true;
    }
    return archive.ReadU32(count);
}
