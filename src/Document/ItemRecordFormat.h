#pragma once
// Record types, field codes and the byte layouts of the fields of item records. Every layout is
// little-endian.
//
//   caption, plain text, preview text: UTF-16LE code units and one zero unit
//   folder attribute block: u8 notes loaded, u8 folders loaded, u8 open, then (only with
//       extended data) 5 zero bytes and the 200-byte extended block at offset 8
//   note attribute block: u8 open, 3 zero bytes, five u32 attribute words at offsets 4-20, then
//       (only with extended data) the 200-byte extended block at offset 24
//   child list: the children's 16-byte record IDs in order, no count
//   password record field 1: u32 low word and u32 high word of the password hash
#include "Shared/Base/UInt128.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class CItemExtendedData;

namespace ItemRecordFormat
{
// Database record types.
constexpr uint16_t RootFolderRecord = 1;
constexpr uint16_t FolderRecord = 2;
constexpr uint16_t NoteRecord = 3;
constexpr uint16_t DocumentInfoRecord = 4;
constexpr uint16_t PasswordRecord = 5;

// Field codes; a save mask is an OR of them.
constexpr uint16_t CaptionField = 1;
constexpr uint16_t AttributesField = 2;
constexpr uint16_t ChildListField = 4;    // folders
constexpr uint16_t PlainTextField = 4;    // notes
constexpr uint16_t SyncSettingsField = 8; // folders
constexpr uint16_t PreviewTextField = 8;  // notes
constexpr uint16_t RichTextField = 16;    // notes
constexpr uint16_t AlarmsField = 32;
// The fields a new item's first save writes.
constexpr uint32_t NewFolderFields = CaptionField | AttributesField | ChildListField;
constexpr uint32_t NewNoteFields = CaptionField | AttributesField | RichTextField;

// Growth reserves in percent when each field is written.
constexpr int CaptionReserve = 50;
constexpr int AttributesReserve = 0;
constexpr int ChildListReserve = 50;
constexpr int PlainTextReserve = 20;
constexpr int SyncSettingsReserve = 0;
constexpr int PreviewTextReserve = 10;
constexpr int RichTextReserve = 20;
constexpr int AlarmsReserve = 0;
constexpr int DocumentInfoReserve = 0;
constexpr int PasswordReserve = 0;

constexpr size_t FolderFlagsSize = 3;
constexpr size_t FolderExtendedOffset = 8;
constexpr size_t NoteShortSize = 24;
constexpr size_t NoteExtendedOffset = 24;
constexpr size_t AttributeWordCount = 5;
constexpr size_t DocumentInfoSize = 36;
constexpr size_t PasswordFieldSize = 8;
// Plain texts of at least this many characters get a preview text.
constexpr size_t PreviewThreshold = 3361;

// Text with one zero unit after it; decoding stops at the first zero unit or the data's end.
std::vector<uint8_t> EncodeText(std::u16string_view text);
std::u16string DecodeText(std::span<const uint8_t> data);
// Copies the units of `data` up to its first zero unit into `out`, which has room for
// data.size() / 2 units, and gives their count. For callers that decode many texts into one
// buffer.
size_t DecodeTextInto(std::span<const uint8_t> data, char16_t* out);

struct SFolderAttributes
{
    uint8_t notesLoaded = 0;
    uint8_t foldersLoaded = 0;
    uint8_t open = 1;
};
std::vector<uint8_t> EncodeFolderAttributes(const SFolderAttributes& flags,
                                            const CItemExtendedData* extended);

struct SNoteAttributes
{
    uint8_t open = 1;
    std::array<uint32_t, AttributeWordCount> words{};
};
std::vector<uint8_t> EncodeNoteAttributes(const SNoteAttributes& attributes,
                                          const CItemExtendedData* extended);
// Missing bytes of a short block leave the defaults (words 0).
SNoteAttributes DecodeNoteAttributes(std::span<const uint8_t> data);
SFolderAttributes DecodeFolderAttributes(std::span<const uint8_t> data);
// The 200-byte extended block stored at `offset`, or null bytes when the block is too short to
// hold it or when it is all zero.
const uint8_t* FindExtendedBlock(std::span<const uint8_t> data, size_t offset);

std::vector<uint8_t> EncodeChildList(std::span<const CUInt128> ids);
// A remainder shorter than 16 bytes is ignored.
std::vector<CUInt128> DecodeChildList(std::span<const uint8_t> data);

// The preview of a long plain text: at most 40 lines, each cut at 60 characters with "..."
// appended once where it was cut. The column counter advances by two per character and starts at
// 1 after the first line end, which is how previews have always been cut.
std::u16string BuildPreview(std::u16string_view plainText);

// The password hash that decides whether a protected file opens; an empty password hashes to 0.
uint64_t PasswordHash(std::u16string_view password);
std::array<uint8_t, PasswordFieldSize> EncodePasswordHash(uint64_t hash);
uint64_t DecodePasswordHash(std::span<const uint8_t, PasswordFieldSize> data);
} // namespace ItemRecordFormat
