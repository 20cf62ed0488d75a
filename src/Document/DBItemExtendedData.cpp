#include "Document/DBItemExtendedData.h"

#include <algorithm>

void CDBItemExtendedData::ReadFrom(const uint8_t* block)
{
    std::array<uint8_t, Size> bytes{};
    std::copy(block, block + Size, bytes.begin());
    SetBytes(bytes);
}
