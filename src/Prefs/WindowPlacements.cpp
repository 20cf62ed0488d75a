#include "Prefs/WindowPlacements.h"

#include "Shared/Base/Archive.h"

#include <algorithm>

namespace
{
constexpr uint16_t PlacementsVersion = 1;
// The smallest stored window: an empty name in the older one-byte string form and five i32
// values. Bounds the count before anything is allocated.
constexpr size_t MinStoredWindowBytes = 1 + 5 * 4;

bool ReadOneWindow(CArchiveReader& reader, SWndPlacementInfo& info)
{
    return reader.ReadString(info.name) && reader.ReadI32(info.showState) && reader.ReadI32(info.left) &&
           reader.ReadI32(info.top) && reader.ReadI32(info.right) && reader.ReadI32(info.bottom);
}
} // namespace

std::vector<uint8_t> EncodeWindowPlacements(const std::vector<SWndPlacementInfo>& placements)
{
    CArchiveWriter writer;
    writer.WriteU16(PlacementsVersion);
    writer.WriteU32(static_cast<uint32_t>(placements.size()));
    for (const SWndPlacementInfo& info : placements)
    {
        writer.WriteString(info.name);
        writer.WriteI32(info.showState);
        writer.WriteI32(info.left);
        writer.WriteI32(info.top);
        writer.WriteI32(info.right);
        writer.WriteI32(info.bottom);
    }
    return writer.Take();
}

std::optional<std::vector<SWndPlacementInfo>> DecodeWindowPlacements(const std::vector<uint8_t>& bytes)
{
    CArchiveReader reader(bytes);
    uint16_t version = 0;
    uint32_t count = 0;
    if (!reader.ReadU16(version) || version != PlacementsVersion || !reader.ReadU32(count))
        return std::nullopt;
    if (count > reader.Remaining() / MinStoredWindowBytes)
        return std::nullopt;
    std::vector<SWndPlacementInfo> placements(count);
    for (SWndPlacementInfo& info : placements)
    {
        if (!ReadOneWindow(reader, info))
            return std::nullopt;
    }
    if (reader.Remaining() != 0)
        return std::nullopt;
    return placements;
}

const SWndPlacementInfo* FindWindowPlacement(const std::vector<SWndPlacementInfo>& placements,
                                             std::u16string_view name)
{
    auto found = std::find_if(placements.begin(), placements.end(),
                              [name](const SWndPlacementInfo& info) { return info.name == name; });
    return found == placements.end() ? nullptr : &*found;
}

void StoreWindowPlacement(std::vector<SWndPlacementInfo>& placements, const SWndPlacementInfo& placement)
{
    for (SWndPlacementInfo& info : placements)
    {
        if (info.name == placement.name)
        {
            info = placement;
            return;
        }
    }
    placements.push_back(placement);
}
