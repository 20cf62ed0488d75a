#include "Prefs/WindowPlacements.h"

#include <gtest/gtest.h>

namespace
{
std::vector<uint8_t> Bytes(std::initializer_list<int> values)
{
    std::vector<uint8_t> bytes;
    for (int v : values)
        bytes.push_back(static_cast<uint8_t>(v));
    return bytes;
}

const std::vector<uint8_t> OneWindow = Bytes({0x01, 0x00,                                     // version
                                              0x01, 0x00, 0x00, 0x00,                         // count
                                              0xFF, 0xFE, 0xFF, 0x02, 0x41, 0x00, 0x62, 0x00, // "Ab"
                                              0x02, 0x00, 0x00, 0x00,                         // maximised
                                              0xFF, 0xFF, 0xFF, 0xFF,                         // left -1
                                              0x02, 0x00, 0x00, 0x00,                         // top
                                              0x04, 0x03, 0x02, 0x01,                         // right
                                              0x00, 0x00, 0x00, 0x00});                       // bottom
} // namespace

TEST(WindowPlacements, LayoutMatchesHandComputedBytes)
{
    const std::vector<SWndPlacementInfo> placements{{u"Ab", 2, -1, 2, 0x01020304, 0}};
    EXPECT_EQ(EncodeWindowPlacements(placements), OneWindow);
    EXPECT_EQ(DecodeWindowPlacements(OneWindow), placements);
    EXPECT_EQ(EncodeWindowPlacements({}), Bytes({1, 0, 0, 0, 0, 0}));
    EXPECT_EQ(DecodeWindowPlacements(Bytes({1, 0, 0, 0, 0, 0})), std::vector<SWndPlacementInfo>{});
}

TEST(WindowPlacements, EveryTruncationAndTrailingByteIsRefused)
{
    for (size_t size = 0; size < OneWindow.size(); ++size)
    {
        const std::vector<uint8_t> cut(OneWindow.begin(), OneWindow.begin() + static_cast<long>(size));
        EXPECT_FALSE(DecodeWindowPlacements(cut).has_value()) << size;
    }
    std::vector<uint8_t> longer = OneWindow;
    longer.push_back(0);
    EXPECT_FALSE(DecodeWindowPlacements(longer).has_value());
}

TEST(WindowPlacements, WrongVersionAndHugeCountAreRefused)
{
    std::vector<uint8_t> bytes = OneWindow;
    bytes[0] = 2;
    EXPECT_FALSE(DecodeWindowPlacements(bytes).has_value());
    // A count of four billion must be refused before anything is allocated for it.
    EXPECT_FALSE(DecodeWindowPlacements(Bytes({1, 0, 0xFF, 0xFF, 0xFF, 0xFF})).has_value());
}

TEST(WindowPlacements, StoreReplacesByNameAndFindAnswersIt)
{
    std::vector<SWndPlacementInfo> placements;
    StoreWindowPlacement(placements, {u"FindTxtDlg", 0, 1, 1, 2, 2});
    StoreWindowPlacement(placements, {u"GlobalSrchDlg", 0, 5, 5, 9, 9});
    StoreWindowPlacement(placements, {u"FindTxtDlg", 1, 3, 3, 4, 4});
    ASSERT_EQ(placements.size(), 2u);
    const SWndPlacementInfo* find = FindWindowPlacement(placements, u"FindTxtDlg");
    ASSERT_NE(find, nullptr);
    EXPECT_EQ(find->left, 3);
    EXPECT_EQ(FindWindowPlacement(placements, u"ReplaceTxtDlg"), nullptr);
    const std::vector<uint8_t> encoded = EncodeWindowPlacements(placements);
    EXPECT_EQ(DecodeWindowPlacements(encoded), placements);
}
