#include "Shared/Base/UInt128.h"

#include <gtest/gtest.h>

#include <random>

TEST(UInt128, DiskLayoutIsMostSignificantWordFirstEachLittleEndian)
{
    const CUInt128 value(0x0102030405060708ull, 0x090A0B0C0D0E0F10ull);
    uint8_t bytes[CUInt128::DiskSize] = {};
    value.ToBytes(bytes);
    const uint8_t expected[CUInt128::DiskSize] = {0x04, 0x03, 0x02, 0x01, 0x08, 0x07, 0x06, 0x05,
                                                  0x0C, 0x0B, 0x0A, 0x09, 0x10, 0x0F, 0x0E, 0x0D};
    EXPECT_EQ(0, memcmp(bytes, expected, sizeof(bytes)));
    EXPECT_EQ(value, CUInt128::FromBytes(expected));

    const CUInt128 small(5);
    small.ToBytes(bytes);
    const uint8_t expectedSmall[CUInt128::DiskSize] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 5, 0, 0, 0};
    EXPECT_EQ(0, memcmp(bytes, expectedSmall, sizeof(bytes)));
}

TEST(UInt128, RandomValuesRoundTripAndOrderLikeTheirBytesAsNumbers)
{
    std::mt19937_64 random(7);
    for (int i = 0; i < 2000; ++i)
    {
        const CUInt128 a(random() >> (random() % 64), random());
        const CUInt128 b(random() >> (random() % 64), random());
        uint8_t bytes[CUInt128::DiskSize];
        a.ToBytes(bytes);
        ASSERT_EQ(a, CUInt128::FromBytes(bytes));
        const bool less = a.High() < b.High() || (a.High() == b.High() && a.Low() < b.Low());
        ASSERT_EQ(less, a < b);
        ASSERT_EQ(a == b, !(a < b) && !(b < a));
    }
}

TEST(UInt128, IncrementCarriesAndWraps)
{
    CUInt128 value(0, ~0ull);
    EXPECT_EQ(CUInt128(0, ~0ull), value++);
    EXPECT_EQ(CUInt128(1, 0), value);
    CUInt128 top(~0ull, ~0ull);
    EXPECT_TRUE((++top).IsZero());
    EXPECT_FALSE(CUInt128(1, 0).IsZero());
}

TEST(UInt128, HexHasNoLeadingZeros)
{
    EXPECT_EQ(u"0", CUInt128().ToHex());
    EXPECT_EQ(u"ABC", CUInt128(0xABC).ToHex());
    EXPECT_EQ(u"10000000000000000", CUInt128(1, 0).ToHex());
    EXPECT_EQ(u"FFFFFFFFFFFFFFFF0000000000000001", CUInt128(~0ull, 1).ToHex());
}
