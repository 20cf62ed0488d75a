#pragma once
// Saved positions of the program's windows, kept in the preferences under "WindowPlacements".
//
// Stored form (before the configuration file's base-64 encoding), little-endian:
//   u16 version (1), u32 count, then per window: its settings key in the archive string form
//   (such as "GlobalSrchDlg", "FindTxtDlg", "ReplaceTxtDlg"), i32 show state (0 normal,
//   1 minimised, 2 maximised), i32 left, top, right, bottom of the restored rectangle.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct SWndPlacementInfo
{
    std::u16string name;
    int32_t showState = 0;
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;

    bool operator==(const SWndPlacementInfo&) const = default;
};

std::vector<uint8_t> EncodeWindowPlacements(const std::vector<SWndPlacementInfo>& placements);
// Empty optional when the bytes are not a complete, well-formed list (nothing is guessed).
std::optional<std::vector<SWndPlacementInfo>> DecodeWindowPlacements(const std::vector<uint8_t>& bytes);

// The entry named `name`, or null.
const SWndPlacementInfo* FindWindowPlacement(const std::vector<SWndPlacementInfo>& placements,
                                             std::u16string_view name);
// Replaces the entry of the same name or appends a new one.
void StoreWindowPlacement(std::vector<SWndPlacementInfo>& placements, const SWndPlacementInfo& placement);
