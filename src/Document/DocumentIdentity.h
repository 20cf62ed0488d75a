#pragma once
// What every document file says about itself in the container header, and the storage key its
// record data is enciphered with.
#include <array>
#include <cstdint>
#include <string_view>

namespace DocumentIdentity
{
inline constexpr std::u16string_view CreatorSignature = u"Quillarium Organizer [https://quillarium.org]";
inline constexpr uint32_t FileType = 0x74726565; // "eert" in file order
inline constexpr uint32_t FileVersion = 7000;

using StorageKey = std::array<uint8_t, 16>;

// The same 16 bytes at every run: two splitmix64 outputs seeded with the file type, each stored
// little-endian. Files must open on any machine and after any update of the program, so the key
// is derived from nothing that varies.
StorageKey DeriveStorageKey();
} // namespace DocumentIdentity
