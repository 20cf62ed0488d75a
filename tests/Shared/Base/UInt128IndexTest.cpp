#include "Shared/Base/UInt128Index.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace
{
int g_Values[4];
} // namespace

TEST(UInt128Index, SmallLargeAndWideIdsAreFoundAndErased)
{
    CUInt128Index<int> index;
    const CUInt128 ids[] = {1, 2, 70000, 1ull << 40, CUInt128(5, 1), CUInt128(~0ull, ~0ull)};
    for (size_t i = 0; i < std::size(ids); ++i)
        index.Insert(ids[i], &g_Values[i % 4]);
    EXPECT_EQ(index.Count(), std::size(ids));
    for (size_t i = 0; i < std::size(ids); ++i)
        EXPECT_EQ(index.Find(ids[i]), &g_Values[i % 4]) << i;
    EXPECT_EQ(index.Find(3), nullptr);
    EXPECT_EQ(index.Find(CUInt128(1, 1)), nullptr);
    EXPECT_TRUE(index.Erase(70000));
    EXPECT_FALSE(index.Erase(70000));
    EXPECT_EQ(index.Find(70000), nullptr);
    EXPECT_TRUE(index.Erase(CUInt128(~0ull, ~0ull)));
    EXPECT_EQ(index.Count(), std::size(ids) - 2);
    index.Clear();
    EXPECT_EQ(index.Find(1), nullptr);
    EXPECT_EQ(index.Count(), 0u);
}

// An ID first kept aside (beyond the array) stays findable and erasable after the array has
// grown over it.
TEST(UInt128Index, IdsKeptAsideSurviveTheArrayGrowingOverThem)
{
    CUInt128Index<int> index;
    index.Insert(200000, &g_Values[0]); // beyond what one entry may make the array cover
    for (uint64_t id = 1; id <= 30000; ++id)
        index.Insert(id, &g_Values[1]);
    index.Insert(199999, &g_Values[2]); // now inside the grown array
    EXPECT_EQ(index.Find(200000), &g_Values[0]);
    EXPECT_EQ(index.Find(199999), &g_Values[2]);
    EXPECT_TRUE(index.Erase(200000));
    EXPECT_EQ(index.Find(200000), nullptr);
    EXPECT_EQ(index.Find(199999), &g_Values[2]);
}

TEST(UInt128Index, RandomOperationsMatchAMap)
{
    std::mt19937_64 rng(3);
    CUInt128Index<int> index;
    std::map<CUInt128, int*> model;
    auto randomId = [&]() -> CUInt128
    {
        switch (rng() % 4)
        {
        case 0:
            return CUInt128(rng() % 3, rng());
        case 1:
            return rng() % 2000000;
        default:
            return 1 + rng() % 5000;
        }
    };
    for (int step = 0; step < 200000; ++step)
    {
        const CUInt128 id = randomId();
        if (id.IsZero())
            continue;
        int* value = &g_Values[rng() % 4];
        const bool present = model.count(id) != 0;
        if (rng() % 3 == 0)
        {
            ASSERT_EQ(index.Erase(id), present);
            model.erase(id);
        }
        else if (!present)
        {
            index.Insert(id, value);
            model[id] = value;
        }
        const auto found = model.find(id);
        ASSERT_EQ(index.Find(id), found == model.end() ? nullptr : found->second);
        ASSERT_EQ(index.Count(), model.size());
    }
    for (const auto& [id, value] : model)
        ASSERT_EQ(index.Find(id), value);
}
