#pragma once
// The optional 200-byte block of extended item attributes. An item creates it on first use and
// drops it again before saving when all its bytes are zero, so that items without extended
// attributes keep the short record layout.
//
// Layout (all little-endian; zero means "not set" throughout):
//   0  u32 flags: bit 0 the text colour is set, bit 1 the background colour is set
//   4  u32 text colour (0x00BBGGRR)
//   8  u32 background colour
//  12  i32 icon index
//  16  i32 priority
//  20  i32 task state
//  24  u8  read-only mark
//  25-199 reserved, kept as loaded
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

class CItemExtendedData
{
public:
    static constexpr size_t Size = 200;

    virtual ~CItemExtendedData() = default;

    bool IsAllZero() const;
    void Clear() { m_Bytes.fill(0); }
    const std::array<uint8_t, Size>& Bytes() const { return m_Bytes; }
    void SetBytes(const std::array<uint8_t, Size>& bytes) { m_Bytes = bytes; }

    std::optional<uint32_t> TextColour() const;
    void SetTextColour(std::optional<uint32_t> colour);
    std::optional<uint32_t> BackColour() const;
    void SetBackColour(std::optional<uint32_t> colour);
    int32_t Icon() const { return static_cast<int32_t>(ReadU32(IconOffset)); }
    void SetIcon(int32_t icon) { WriteU32(IconOffset, static_cast<uint32_t>(icon)); }
    int32_t Priority() const { return static_cast<int32_t>(ReadU32(PriorityOffset)); }
    void SetPriority(int32_t priority) { WriteU32(PriorityOffset, static_cast<uint32_t>(priority)); }
    int32_t TaskState() const { return static_cast<int32_t>(ReadU32(TaskStateOffset)); }
    void SetTaskState(int32_t state) { WriteU32(TaskStateOffset, static_cast<uint32_t>(state)); }
    bool IsReadOnly() const { return m_Bytes[ReadOnlyOffset] != 0; }
    void SetReadOnly(bool readOnly) { m_Bytes[ReadOnlyOffset] = readOnly ? 1 : 0; }

private:
    static constexpr size_t FlagsOffset = 0;
    static constexpr size_t TextColourOffset = 4;
    static constexpr size_t BackColourOffset = 8;
    static constexpr size_t IconOffset = 12;
    static constexpr size_t PriorityOffset = 16;
    static constexpr size_t TaskStateOffset = 20;
    static constexpr size_t ReadOnlyOffset = 24;
    static constexpr uint32_t TextColourFlag = 1;
    static constexpr uint32_t BackColourFlag = 2;

    uint32_t ReadU32(size_t offset) const;
    void WriteU32(size_t offset, uint32_t value);
    std::optional<uint32_t> OptionalColour(uint32_t flag, size_t offset) const;
    void SetOptionalColour(uint32_t flag, size_t offset, std::optional<uint32_t> colour);

    std::array<uint8_t, Size> m_Bytes{};
};
