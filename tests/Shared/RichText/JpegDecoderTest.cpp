// The JPEG decoder on pictures made by the reference encoder (cjpeg) in every supported kind,
// compared with the reference decoder's output (djpeg -nosmooth -dct float), and on damaged and
// refused data.
#include "RichTextTestSupport.h"

#include "Shared/RichText/JpegDecoder.h"
#include "Shared/RichText/RtfReader.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>

namespace
{
std::string ReadData(const std::string& name)
{
    std::ifstream in(std::string(QUILL_SOURCE_DIR) + "/tests/Shared/RichText/data/" + name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// A binary PGM (grey, expanded to RGB) or PPM with a maximum value of 255.
SRgbImage ReadPnm(const std::string& bytes)
{
    SRgbImage image;
    std::istringstream in(bytes);
    std::string magic;
    int maximum = 0;
    in >> magic >> image.width >> image.height >> maximum;
    in.get();
    const size_t pixels = size_t(image.width) * image.height;
    const std::string data(std::istreambuf_iterator<char>(in), {});
    image.rgb.resize(3 * pixels);
    for (size_t i = 0; i < pixels; ++i)
        for (size_t c = 0; c < 3; ++c)
            image.rgb[3 * i + c] = static_cast<uint8_t>(magic == "P5" ? data.at(i) : data.at(3 * i + c));
    return image;
}

int LargestDifference(const SRgbImage& a, const SRgbImage& b)
{
    int largest = 0;
    for (size_t i = 0; i < a.rgb.size(); ++i)
        largest = std::max(largest, std::abs(int(a.rgb[i]) - int(b.rgb[i])));
    return largest;
}

std::string Hex(std::string_view bytes)
{
    static constexpr char Digits[] = "0123456789abcdef";
    std::string hex;
    for (const char byte : bytes)
    {
        hex.push_back(Digits[static_cast<uint8_t>(byte) >> 4]);
        hex.push_back(Digits[static_cast<uint8_t>(byte) & 15]);
    }
    return hex;
}
} // namespace

TEST(JpegDecoder, EveryKindMatchesTheReferenceDecoder)
{
    // 61x37: baseline with 4:2:0, 4:4:4 (optimised tables), 4:2:2 with a restart after every MCU,
    // RGB without colour transform, grey; progressive 4:2:0, 4:1:1 with restarts, and grey.
    for (const std::string name : {"baseline420", "baseline444", "restart422", "rgb", "grey",
                                   "progressive420", "progressive411", "progressivegrey"})
    {
        SRgbImage decoded;
        std::u16string failure;
        ASSERT_TRUE(DecodeJpeg(ReadData(name + ".jpg"), decoded, failure))
            << name << ": " << Utf16ToUtf8(failure);
        const SRgbImage reference = ReadPnm(ReadData(name + ".ppm"));
        ASSERT_EQ(decoded.width, 61u) << name;
        ASSERT_EQ(decoded.height, 37u) << name;
        ASSERT_EQ(decoded.rgb.size(), reference.rgb.size()) << name;
        // The inverse transforms round differently; a wrong coefficient would be far off.
        EXPECT_LE(LargestDifference(decoded, reference), 2) << name;
    }
}

TEST(JpegDecoder, RefusedKindsAndDamagedDataNeverCrash)
{
    const std::string good = ReadData("baseline420.jpg");
    const auto failureOf = [](std::string data)
    {
        SRgbImage image;
        std::u16string failure;
        return DecodeJpeg(data, image, failure) ? std::u16string() : failure;
    };
    EXPECT_EQ(failureOf("GIF89a"), u"the data is not a JPEG picture");

    const size_t frame = good.find("\xFF\xC0");
    ASSERT_NE(frame, std::string::npos);
    std::string arithmetic = good;
    arithmetic[frame + 1] = '\xC9';
    EXPECT_EQ(failureOf(arithmetic),
              u"lossless, hierarchical and arithmetic-coded pictures are not supported");
    std::string twelveBits = good;
    twelveBits[frame + 4] = 12;
    EXPECT_EQ(failureOf(twelveBits), u"only 8-bit samples are supported");
    std::string huge = good;
    huge[frame + 5] = huge[frame + 6] = huge[frame + 7] = huge[frame + 8] = '\xFF';
    EXPECT_EQ(failureOf(huge), u"the picture is larger than its data could hold");

    // Cut anywhere or with bytes changed at random, the data decodes to something or fails with
    // a reason; under the sanitizers this also shows that nothing is read out of bounds.
    for (size_t size = 0; size < good.size(); ++size)
    {
        SRgbImage image;
        std::u16string failure;
        if (!DecodeJpeg(good.substr(0, size), image, failure))
        {
            EXPECT_FALSE(failure.empty()) << size;
        }
    }
    std::mt19937 random(7);
    for (const std::string name : {"baseline420", "progressive420", "restart422"})
    {
        const std::string original = ReadData(name + ".jpg");
        for (int round = 0; round < 300; ++round)
        {
            std::string damaged = original;
            for (int i = 0; i < 1 + round % 4; ++i)
                damaged[random() % damaged.size()] = static_cast<char>(random());
            SRgbImage image;
            std::u16string failure;
            if (DecodeJpeg(damaged, image, failure))
            {
                EXPECT_EQ(image.rgb.size(), size_t(image.width) * image.height * 3);
            }
        }
    }
}

TEST(JpegDecoder, JpegPictureInRtfBecomesAPictureObject)
{
    const std::string rtf = "{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}}a{\\pict\\jpegblip\\picw61\\pich37 " +
                            Hex(ReadData("progressive420.jpg")) + "}b\\par}";
    CRichTextDocument document;
    ASSERT_TRUE(ReadRtf(rtf, SFontDescription::Make(u"Arial", 12), document));
    ASSERT_EQ(document.LineCount(), 1u);
    const CRtfTextLine& line = document.Line(0);
    EXPECT_EQ(line.Text(), u"a\x14"
                           u"b");
    ASSERT_EQ(line.Objects().size(), 1u);
    const CDIBitmap& picture = *line.Objects()[0].Picture();
    EXPECT_EQ(picture.Header().width, 61);
    EXPECT_EQ(picture.Header().height, 37);
    EXPECT_EQ(picture.Header().bitCount, 24);
    EXPECT_TRUE(picture.HasAllPixels());
    // The top-left pixel (first flat square, red) sits in the last row of the bottom-up bitmap.
    const size_t lastRow = 40 + 36 * static_cast<size_t>(picture.Header().RowBytes());
    EXPECT_NEAR(picture.Packed()[lastRow + 2], 200, 8); // red
    EXPECT_NEAR(picture.Packed()[lastRow + 1], 30, 8);  // green
    EXPECT_NEAR(picture.Packed()[lastRow + 0], 40, 8);  // blue
}
