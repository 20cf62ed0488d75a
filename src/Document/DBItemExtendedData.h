#pragma once
// The extended data block of a storage-backed item: the same 200 bytes, filled from the item's
// attribute field when the item is loaded.
#include "Document/ItemExtendedData.h"

#include <cstdint>

class CDBItemExtendedData : public CItemExtendedData
{
public:
    // Copies the 200 bytes starting at `block`.
    void ReadFrom(const uint8_t* block);
};
