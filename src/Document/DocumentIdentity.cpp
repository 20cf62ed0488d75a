#include "Document/DocumentIdentity.h"

namespace
{
uint64_t SplitMix64(uint64_t& state)
{
    state += 0x9E3779B97F4A7C15ull;
    uint64_t z = state;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}
} // namespace

DocumentIdentity::StorageKey DocumentIdentity::DeriveStorageKey()
{
    StorageKey key{};
    uint64_t state = FileType;
    for (size_t word = 0; word < 2; ++word)
    {
        const uint64_t value = SplitMix64(state);
        for (size_t i = 0; i < 8; ++i)
            key[word * 8 + i] = static_cast<uint8_t>(value >> (8 * i));
    }
    return key;
}
