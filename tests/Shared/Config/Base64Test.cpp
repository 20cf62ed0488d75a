#include "Shared/Config/Base64.h"

#include <gtest/gtest.h>

#include <random>

namespace
{
std::u16string Encode(std::string_view bytes)
{
    return EncodeBase64(bytes.data(), bytes.size());
}
} // namespace

TEST(Base64, StandardVectorsWithPadding)
{
    const std::pair<std::string_view, std::u16string_view> vectors[] = {
        {"", u""},
        {"f", u"Zg=="},
        {"fo", u"Zm8="},
        {"foo", u"Zm9v"},
        {"foob", u"Zm9vYg=="},
        {"fooba", u"Zm9vYmE="},
        {"foobar", u"Zm9vYmFy"},
        {"\xFB\xFF\xBF", u"+/+/"},
    };
    for (const auto& [bytes, text] : vectors)
    {
        EXPECT_EQ(Encode(bytes), text);
        std::vector<uint8_t> decoded;
        ASSERT_TRUE(DecodeBase64(text, decoded));
        EXPECT_EQ(std::string(decoded.begin(), decoded.end()), bytes);
    }
}

TEST(Base64, RandomBytesRoundTrip)
{
    std::mt19937 random(99);
    for (size_t size = 0; size < 200; ++size)
    {
        std::vector<uint8_t> bytes(size);
        for (uint8_t& byte : bytes)
            byte = static_cast<uint8_t>(random());
        const std::u16string text = EncodeBase64(bytes.data(), bytes.size());
        EXPECT_EQ(text.size(), (size + 2) / 3 * 4);
        std::vector<uint8_t> decoded;
        ASSERT_TRUE(DecodeBase64(text, decoded));
        EXPECT_EQ(decoded, bytes);
    }
}

TEST(Base64, CorruptTextIsRejected)
{
    for (std::u16string_view bad : {u"Zg=", u"Zg", u"Z===", u"Zg==Zm8=", u"Zm9v!A==", u"Z=g=", u"Zg=a",
                                    u"====", u"Zm9\u00E9", u"Zm 9v"})
    {
        std::vector<uint8_t> decoded{1, 2};
        EXPECT_FALSE(DecodeBase64(bad, decoded)) << std::string(bad.begin(), bad.end());
        EXPECT_TRUE(decoded.empty());
    }
}
