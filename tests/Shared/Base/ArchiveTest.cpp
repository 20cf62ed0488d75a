#include "Shared/Base/Archive.h"

#include <gtest/gtest.h>

#include <random>
#include <variant>

namespace
{
std::vector<uint8_t> Bytes(std::initializer_list<int> values)
{
    std::vector<uint8_t> bytes;
    for (int v : values)
        bytes.push_back(static_cast<uint8_t>(v));
    return bytes;
}

std::vector<uint8_t> StringBytes(std::u16string_view text)
{
    CArchiveWriter writer;
    writer.WriteString(text);
    return writer.Take();
}
} // namespace

TEST(Archive, IntegersAreLittleEndian)
{
    CArchiveWriter writer(2);
    writer.WriteU8(0xAB);
    writer.WriteU16(0x1234);
    writer.WriteU32(0x11223344);
    writer.WriteI32(-2);
    writer.WriteU64(0x0102030405060708ull);
    writer.WriteBool(true);
    writer.WriteDouble(1.0);
    EXPECT_EQ(Bytes({0xAB, 0x34, 0x12, 0x44, 0x33, 0x22, 0x11, 0xFE, 0xFF, 0xFF, 0xFF, 8, 7,    6,
                     5,    4,    3,    2,    1,    1,    0,    0,    0,    0,    0,    0, 0xF0, 0x3F}),
              writer.Bytes());
}

TEST(Archive, StringLengthPrefixesSwitchAtTheirThresholds)
{
    EXPECT_EQ(Bytes({0xFF, 0xFE, 0xFF, 0x02, 'A', 0, 0x42, 0x20}), StringBytes(u"A\u2042"));
    EXPECT_EQ(Bytes({0xFF, 0xFE, 0xFF, 0x00}), StringBytes(u""));

    const std::vector<uint8_t> b254 = StringBytes(std::u16string(254, u'x'));
    EXPECT_EQ(Bytes({0xFF, 0xFE, 0xFF, 0xFE}), std::vector<uint8_t>(b254.begin(), b254.begin() + 4));
    EXPECT_EQ(4u + 508, b254.size());

    const std::vector<uint8_t> b255 = StringBytes(std::u16string(255, u'x'));
    EXPECT_EQ(Bytes({0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0x00}),
              std::vector<uint8_t>(b255.begin(), b255.begin() + 6));
    EXPECT_EQ(6u + 510, b255.size());

    const std::vector<uint8_t> b65533 = StringBytes(std::u16string(0xFFFD, u'x'));
    EXPECT_EQ(Bytes({0xFF, 0xFE, 0xFF, 0xFF, 0xFD, 0xFF}),
              std::vector<uint8_t>(b65533.begin(), b65533.begin() + 6));

    const std::vector<uint8_t> b65534 = StringBytes(std::u16string(0xFFFE, u'x'));
    EXPECT_EQ(Bytes({0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0x00, 0x00}),
              std::vector<uint8_t>(b65534.begin(), b65534.begin() + 10));
    EXPECT_EQ(10u + 2 * 0xFFFE, b65534.size());

    for (size_t length : {0u, 1u, 254u, 255u, 0xFFFDu, 0xFFFEu, 0x10000u})
    {
        std::u16string text(length, u'\u00E9');
        const std::vector<uint8_t> bytes = StringBytes(text);
        CArchiveReader reader(bytes);
        std::u16string back;
        ASSERT_TRUE(reader.ReadString(back));
        EXPECT_EQ(text, back);
        EXPECT_EQ(0u, reader.Remaining());
    }
}

TEST(Archive, OlderSingleByteStringsAreWindows1252)
{
    const std::vector<uint8_t> bytes = Bytes({0x03, 'a', 0x80, 'c', 0xFF, 0x01, 0x01, 0x7A});
    CArchiveReader reader(bytes);
    std::u16string text;
    ASSERT_TRUE(reader.ReadString(text));
    EXPECT_EQ(u"a\u20ACc", text);
    EXPECT_FALSE(reader.ReadString(text)); // 0xFF, length 0x0101 single bytes: only one byte left
    EXPECT_TRUE(reader.Failed());
}

TEST(Archive, RandomSequencesReadBackAsWritten)
{
    using TValue = std::variant<uint8_t, uint16_t, uint32_t, uint64_t, double, bool, std::u16string>;
    std::mt19937_64 random(99);
    for (int round = 0; round < 200; ++round)
    {
        std::vector<TValue> model;
        CArchiveWriter writer(1 + random() % 16);
        for (int i = 0; i < 50; ++i)
        {
            switch (random() % 7)
            {
            case 0:
                model.emplace_back(static_cast<uint8_t>(random()));
                writer.WriteU8(std::get<uint8_t>(model.back()));
                break;
            case 1:
                model.emplace_back(static_cast<uint16_t>(random()));
                writer.WriteU16(std::get<uint16_t>(model.back()));
                break;
            case 2:
                model.emplace_back(static_cast<uint32_t>(random()));
                writer.WriteU32(std::get<uint32_t>(model.back()));
                break;
            case 3:
                model.emplace_back(static_cast<uint64_t>(random()));
                writer.WriteU64(std::get<uint64_t>(model.back()));
                break;
            case 4:
                model.emplace_back(static_cast<double>(random()) / 3.0);
                writer.WriteDouble(std::get<double>(model.back()));
                break;
            case 5:
                model.emplace_back(random() % 2 == 0);
                writer.WriteBool(std::get<bool>(model.back()));
                break;
            default:
                model.emplace_back(std::u16string(random() % 300, static_cast<char16_t>(random())));
                writer.WriteString(std::get<std::u16string>(model.back()));
                break;
            }
        }
        CArchiveReader reader(writer.Bytes());
        for (const TValue& expected : model)
        {
            TValue actual = expected;
            std::visit(
                [&](auto& v)
                {
                    using T = std::decay_t<decltype(v)>;
                    bool ok = false;
                    if constexpr (std::is_same_v<T, uint8_t>)
                        ok = reader.ReadU8(v = 0);
                    else if constexpr (std::is_same_v<T, uint16_t>)
                        ok = reader.ReadU16(v = 0);
                    else if constexpr (std::is_same_v<T, uint32_t>)
                        ok = reader.ReadU32(v = 0);
                    else if constexpr (std::is_same_v<T, uint64_t>)
                        ok = reader.ReadU64(v = 0);
                    else if constexpr (std::is_same_v<T, double>)
                        ok = reader.ReadDouble(v = 0);
                    else if constexpr (std::is_same_v<T, bool>)
                        ok = reader.ReadBool(v = !v);
                    else
                        ok = reader.ReadString(v = u"junk");
                    ASSERT_TRUE(ok);
                },
                actual);
            ASSERT_EQ(expected, actual);
        }
        EXPECT_EQ(0u, reader.Remaining());
        EXPECT_FALSE(reader.Failed());
    }
}

TEST(Archive, EveryTruncationFailsAndStaysFailed)
{
    CArchiveWriter writer;
    writer.WriteString(std::u16string(300, u'q'));
    const std::vector<uint8_t> whole = writer.Take();
    for (size_t cut = 0; cut < whole.size(); ++cut)
    {
        CArchiveReader reader(whole.data(), cut);
        std::u16string text;
        ASSERT_FALSE(reader.ReadString(text)) << cut;
        uint8_t byte = 0;
        EXPECT_FALSE(reader.ReadU8(byte));
        EXPECT_TRUE(reader.Failed());
    }
}

TEST(Archive, HugeLengthsFailBeforeAllocating)
{
    const std::vector<uint8_t> claims4G =
        Bytes({0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 'a', 0});
    const std::vector<uint8_t> claims64 =
        Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F});
    for (const auto& bytes : {claims4G, claims64})
    {
        CArchiveReader reader(bytes);
        std::u16string text;
        EXPECT_FALSE(reader.ReadString(text));
        EXPECT_TRUE(text.empty());
    }
    const std::vector<uint8_t> three = Bytes({1, 2, 3});
    CArchiveReader reader(three);
    EXPECT_FALSE(reader.Skip(4));
    bool flag = false;
    EXPECT_FALSE(reader.ReadBool(flag));
}

TEST(Archive, AnyNonZeroByteIsTrue)
{
    const std::vector<uint8_t> bytes = Bytes({0, 1, 2, 0xFF});
    CArchiveReader reader(bytes);
    bool v = true;
    ASSERT_TRUE(reader.ReadBool(v));
    EXPECT_FALSE(v);
    for (int i = 0; i < 3; ++i)
    {
        ASSERT_TRUE(reader.ReadBool(v = false));
        EXPECT_TRUE(v);
    }
}
