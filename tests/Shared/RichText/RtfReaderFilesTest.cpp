// The reader on RTF written by a word processor (the shared samples and files made the same way
// under data/) and on pictures.
#include "RichTextTestSupport.h"

#include "Shared/RichText/RtfReader.h"
#include "Shared/RichText/RtfReaderPicture.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace
{
SFontDescription DefaultFont()
{
    return SFontDescription::Make(u"Arial", 12);
}

std::string ReadFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in.good()) << path;
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

CRichTextDocument ReadRtfFile(const std::string& path)
{
    CRichTextDocument document;
    EXPECT_TRUE(ReadRtf(ReadFile(path), DefaultFont(), document)) << path;
    return document;
}

// The first position of `word` in the line, which must hold it.
int32_t Find(const CRtfTextLine& line, std::u16string_view word)
{
    const size_t at = line.Text().find(word);
    EXPECT_NE(std::u16string::npos, at) << "missing word";
    return static_cast<int32_t>(at == std::u16string::npos ? 0 : at);
}

TEST(RtfReaderFilesTest, LibreOfficeFormattingSample)
{
    const CRichTextDocument document = ReadRtfFile(QUILL_SAMPLES_DIR "/rtf/formatting.rtf");
    ASSERT_EQ(7u, document.LineCount());
    const CRtfTextLine& serif = document.Line(0);
    EXPECT_EQ(u"A serif paragraph at 14 points with bold, italic, underlined and bold italic words.",
              serif.Text());
    EXPECT_EQ(u"DejaVu Serif", serif.EffectiveFont(0)->FaceName());
    EXPECT_EQ(14, serif.EffectiveFont(0)->PointSize());
    EXPECT_FALSE(serif.EffectiveFont(0)->IsBold());
    EXPECT_TRUE(serif.EffectiveFont(Find(serif, u"bold,"))->IsBold());
    EXPECT_TRUE(serif.EffectiveFont(Find(serif, u"italic"))->IsItalic());
    EXPECT_TRUE(serif.EffectiveFont(Find(serif, u"underlined"))->IsUnderlined());
    const SFontDescription both = *serif.EffectiveFont(Find(serif, u"bold italic"));
    EXPECT_TRUE(both.IsBold() && both.IsItalic());

    const CRtfTextLine& centred = document.Line(1);
    EXPECT_EQ(u"Centred line in dark red and yellow highlight.", centred.Text());
    EXPECT_EQ(CRtfTextLine::AlignCentre, centred.Alignment());
    EXPECT_EQ(0x0000C0u, *centred.EffectiveTextColour(Find(centred, u"dark red")));
    EXPECT_EQ(0x00FFFFu, *centred.EffectiveBackColour(Find(centred, u"yellow")));
    EXPECT_EQ(DefaultRichTextColour, *centred.EffectiveBackColour(0));

    // The page's tab character became a space in the word processor.
    EXPECT_EQ(u"Right aligned, with a tab here.", document.Line(2).Text());
    EXPECT_EQ(CRtfTextLine::AlignRight, document.Line(2).Alignment());
    EXPECT_EQ(u"\u2022\tFirst bullet", document.Line(3).Text());
    const CRtfTextLine& second = document.Line(4);
    EXPECT_EQ(u"\u2022\tSecond bullet with blue", second.Text());
    EXPECT_EQ(0xC07000u, *second.EffectiveTextColour(Find(second, u"blue")));
    const CRtfTextLine& mono = document.Line(5);
    EXPECT_EQ(u"monospace 9pt: braces { } and backslash \\ and a pipe |", mono.Text().substr(0, 54));
    EXPECT_EQ(u"DejaVu Sans Mono", mono.EffectiveFont(0)->FaceName());
    EXPECT_EQ(9, mono.EffectiveFont(0)->PointSize());
    // A hyperlink field keeps its shown text, not its instruction.
    const CRtfTextLine& link = document.Line(6);
    EXPECT_EQ(u"Link: https://example.org/page", link.Text());
    EXPECT_TRUE(link.EffectiveFont(Find(link, u"https"))->IsUnderlined());
}

TEST(RtfReaderFilesTest, LibreOfficePictureSampleGivesThePngAsBitmap)
{
    CRichTextLogCapture log;
    const CRichTextDocument document = ReadRtfFile(QUILL_SAMPLES_DIR "/rtf/picture.rtf");
    ASSERT_EQ(3u, document.LineCount());
    EXPECT_EQ(u"Before the picture.", document.Line(0).Text());
    const CRtfTextLine& pictureLine = document.Line(1);
    ASSERT_EQ(1u, pictureLine.Objects().size());
    EXPECT_EQ(std::u16string(1, CRtfObjectInfo::ObjectCharacter), pictureLine.Text());
    const CDIBitmap& bitmap = *pictureLine.Objects()[0].Picture();
    const SDIBitmapHeader header = bitmap.Header();
    EXPECT_EQ(40, header.width);
    EXPECT_EQ(20, header.height);
    EXPECT_EQ(24, header.bitCount);
    // Every pixel is the picture's red (200, 30, 30), stored blue, green, red.
    const uint8_t* pixels = bitmap.Packed().data() + SDIBitmapHeader::StoredSize;
    for (int i = 0; i < 40 * 20; ++i)
    {
        const uint8_t* pixel = pixels + (i / 40) * header.RowBytes() + 3 * (i % 40);
        ASSERT_EQ(0x1E, pixel[0]) << i;
        ASSERT_EQ(0x1E, pixel[1]) << i;
        ASSERT_EQ(0xC8, pixel[2]) << i;
    }
    EXPECT_EQ(u"After the picture, bold.", document.Line(2).Text());
    EXPECT_TRUE(document.Line(2).EffectiveFont(Find(document.Line(2), u"bold"))->IsBold());
    EXPECT_TRUE(log.TakeMessages().empty());
}

TEST(RtfReaderFilesTest, LibreOfficeNonLatinScriptsAndColours)
{
    const CRichTextDocument document =
        ReadRtfFile(QUILL_SOURCE_DIR "/tests/Shared/RichText/data/scripts.rtf");
    ASSERT_EQ(4u, document.LineCount());
    EXPECT_EQ(u"\u010ce\u0161tina: p\u0159\u00edli\u0161 \u017elu\u0165ou\u010dk\u00fd k\u016f\u0148 "
              u"\u00fap\u011bl "
              u"\u010f\u00e1belsk\u00e9 \u00f3dy.",
              document.Line(0).Text());
    EXPECT_EQ(11, document.Line(0).EffectiveFont(0)->PointSize());
    const CRtfTextLine& russian = document.Line(1);
    EXPECT_TRUE(russian.Text().starts_with(u"\u0420\u0443\u0441\u0441\u043a\u0438\u0439: "));
    EXPECT_TRUE(russian.EffectiveFont(Find(russian, u"\u0441\u044a\u0435\u0448\u044c"))->IsBold());
    EXPECT_EQ(u"\u0395\u03bb\u03bb\u03b7\u03bd\u03b9\u03ba\u03ac \u20ac and "
              u"\u65e5\u672c\u8a9e\u306e\u30c6\u30ad\u30b9\u30c8",
              document.Line(2).Text());
    EXPECT_EQ(CRtfTextLine::AlignCentre, document.Line(2).Alignment());
    const CRtfTextLine& coloured = document.Line(3);
    EXPECT_EQ(CRtfTextLine::AlignRight, coloured.Alignment());
    EXPECT_EQ(0x00FF00u, *coloured.EffectiveTextColour(0));
    EXPECT_EQ(0xFF0000u, *coloured.EffectiveBackColour(0));
    const SFontDescription under = *coloured.EffectiveFont(Find(coloured, u"under italic"));
    EXPECT_TRUE(under.IsUnderlined() && under.IsItalic());
}

std::string Hex(std::string_view bytes)
{
    static constexpr char Digits[] = "0123456789abcdef";
    std::string hex;
    for (const char byte : bytes)
    {
        hex += Digits[static_cast<uint8_t>(byte) >> 4];
        hex += Digits[static_cast<uint8_t>(byte) & 15];
    }
    return hex;
}

void AppendBigEndian(std::string& out, uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        out += static_cast<char>((value >> shift) & 0xFF);
}

// A PNG whose pixel rows travel in one stored (uncompressed) deflate block.
std::string StoredPng(uint32_t width, uint32_t height, uint8_t colourType, uint8_t bitDepth,
                      std::string_view rows, std::string_view palette = {})
{
    auto chunk = [](std::string& out, std::string_view type, std::string_view body)
    {
        AppendBigEndian(out, static_cast<uint32_t>(body.size()));
        out += type;
        out += body;
        AppendBigEndian(out, 0); // the CRC is not checked
    };
    std::string png("\x89PNG\r\n\x1a\n", 8);
    std::string header;
    AppendBigEndian(header, width);
    AppendBigEndian(header, height);
    header += static_cast<char>(bitDepth);
    header += static_cast<char>(colourType);
    header += std::string(3, '\0');
    chunk(png, "IHDR", header);
    if (!palette.empty())
        chunk(png, "PLTE", palette);
    std::string zlib("\x78\x01\x01", 3);
    const uint16_t length = static_cast<uint16_t>(rows.size());
    zlib += static_cast<char>(length & 0xFF);
    zlib += static_cast<char>(length >> 8);
    zlib += static_cast<char>(~length & 0xFF);
    zlib += static_cast<char>((~length >> 8) & 0xFF);
    zlib += rows;
    zlib += std::string(4, '\0'); // Adler-32, not checked
    chunk(png, "IDAT", zlib);
    chunk(png, "IEND", "");
    return png;
}

TEST(RtfReaderFilesTest, PngRowFiltersAndColourTypesDecodeToBottomUpBgr)
{
    // 2x3 RGB: row 0 with the Sub filter, row 1 with Up, row 2 with Paeth.
    const std::string rows = std::string("\x01\x10\x20\x30\x01\x01\x01", 7) +
                             std::string("\x02\x05\x05\x05\x00\x00\x00", 7) +
                             std::string("\x04\x01\x02\x03\x04\x05\x06", 7);
    const auto bitmap = DecodePngToBitmap(StoredPng(2, 3, 2, 8, rows));
    ASSERT_TRUE(bitmap.has_value());
    // Decoded rows: (10 20 30)(11 21 31) / (15 25 35)(11 21 31) / (16 27 38)(15 26 3B).
    const uint8_t* pixels = bitmap->Packed().data() + SDIBitmapHeader::StoredSize;
    const size_t stride = 8; // 2 pixels * 3 bytes, rounded up to 4
    const uint8_t expectedTop[] = {0x30, 0x20, 0x10, 0x31, 0x21, 0x11};
    const uint8_t expectedMiddle[] = {0x35, 0x25, 0x15, 0x31, 0x21, 0x11};
    for (size_t i = 0; i < 6; ++i)
    {
        EXPECT_EQ(expectedTop[i], pixels[2 * stride + i]) << i;
        EXPECT_EQ(expectedMiddle[i], pixels[stride + i]) << i;
    }
    // Row 2 pixel 0: Paeth with no left takes up (15 25 35) plus 01 02 03.
    EXPECT_EQ(0x38, pixels[0]);
    EXPECT_EQ(0x27, pixels[1]);
    EXPECT_EQ(0x16, pixels[2]);
    // Pixel 1, per byte p = left + up - upleft and the nearest of the three wins, ties to left
    // then up: 16+11-15 = 12 -> up 11; 27+21-25 = 23 -> up 21 (tie with up-left); 38+31-35 = 34
    // -> up-left 35. Adding 04 05 06 gives 15 26 3B.
    EXPECT_EQ(0x3B, pixels[3]);
    EXPECT_EQ(0x26, pixels[4]);
    EXPECT_EQ(0x15, pixels[5]);

    // 1-bit palette: pixels 1,0,1 pick palette entries.
    const auto paletted = DecodePngToBitmap(
        StoredPng(3, 1, 3, 1, std::string("\x00\xA0", 2), std::string("\x00\x00\x00\xFF\x80\x01", 6)));
    ASSERT_TRUE(paletted.has_value());
    const uint8_t* row = paletted->Packed().data() + SDIBitmapHeader::StoredSize;
    const uint8_t expectedPaletted[] = {0x01, 0x80, 0xFF, 0, 0, 0, 0x01, 0x80, 0xFF};
    for (size_t i = 0; i < 9; ++i)
        EXPECT_EQ(expectedPaletted[i], row[i]) << i;

    // Grey with alpha: half transparent black blends to mid grey on white.
    const auto blended = DecodePngToBitmap(StoredPng(1, 1, 4, 8, std::string("\x00\x00\x80", 3)));
    ASSERT_TRUE(blended.has_value());
    EXPECT_EQ(0x7F, blended->Packed()[SDIBitmapHeader::StoredSize]);
}

TEST(RtfReaderFilesTest, InterlacedPngPassesFillTheirPixels)
{
    // A 3x3 picture in its seven passes (three of them empty at this size); every pixel has its
    // own colour: red 10x + y, green 100 + x, blue 200 + y.
    const auto pixel = [](uint32_t x, uint32_t y) {
        return std::string{char(10 * x + y), char(100 + x), char(200 + y)};
    };
    const std::vector<std::vector<std::pair<uint32_t, uint32_t>>> passRows = {
        {{0, 0}}, {{2, 0}}, {{0, 2}, {2, 2}}, {{1, 0}}, {{1, 2}}, {{0, 1}, {1, 1}, {2, 1}}};
    std::string rows;
    for (const auto& row : passRows)
    {
        rows += '\0'; // no filter
        for (const auto& [x, y] : row)
            rows += pixel(x, y);
    }
    std::string png = StoredPng(3, 3, 2, 8, rows);
    png[28] = 1; // the header's interlace method: Adam7
    const std::optional<CDIBitmap> bitmap = DecodePngToBitmap(png);
    ASSERT_TRUE(bitmap.has_value());
    const SDIBitmapHeader header = bitmap->Header();
    ASSERT_EQ(3, header.width);
    ASSERT_EQ(3, header.height);
    for (uint32_t y = 0; y < 3; ++y)
        for (uint32_t x = 0; x < 3; ++x)
        {
            const uint8_t* bgr = bitmap->Packed().data() + 40 + (2 - y) * header.RowBytes() + 3 * x;
            EXPECT_EQ(std::string({char(bgr[2]), char(bgr[1]), char(bgr[0])}), pixel(x, y)) << x << "," << y;
        }
    png.resize(png.size() - 20); // pass data cut short
    EXPECT_FALSE(DecodePngToBitmap(png).has_value());
}

TEST(RtfReaderFilesTest, DamagedOrHostilePngIsRefused)
{
    const std::string rows("\x00\x10\x20\x30", 4);
    const std::string good = StoredPng(1, 1, 2, 8, rows);
    ASSERT_TRUE(DecodePngToBitmap(good).has_value());
    // Cut anywhere before the end of the image data (the end chunk itself is not needed).
    for (size_t cut = 0; cut < good.size() - 16; cut += 3)
        EXPECT_FALSE(DecodePngToBitmap(good.substr(0, cut)).has_value()) << cut;
    // Header announcing far more pixels than the data could inflate to.
    EXPECT_FALSE(DecodePngToBitmap(StoredPng(60000, 60000, 2, 8, rows)).has_value());
    EXPECT_FALSE(DecodePngToBitmap(StoredPng(1, 1, 2, 8, std::string("\x07\x10\x20\x30", 4))).has_value());
    EXPECT_FALSE(DecodePngToBitmap(StoredPng(1, 1, 7, 8, rows)).has_value());
}

TEST(RtfReaderFilesTest, PicturesInRtfBecomeObjectsOrAreSkippedWithAWarning)
{
    CRichTextLogCapture log;
    // A packed 1x1 24-bit bitmap: header, one pixel, padding.
    std::string dib(40, '\0');
    dib[0] = 40;
    dib[4] = 1;
    dib[8] = 1;
    dib[12] = 1;
    dib[14] = 24;
    dib += std::string("\x11\x22\x33\x00", 4);
    const std::string png = StoredPng(1, 1, 2, 8, std::string("\x00\x10\x20\x30", 4));
    const std::string rtf =
        "{\\rtf1 a{\\pict\\dibitmap0\\picw1\\pich1 " + Hex(dib) + "}b{\\*\\shppict{\\pict\\pngblip " +
        Hex(png) + "}}{\\nonshppict{\\pict\\wmetafile8 0102}}c{\\pict\\jpegblip ffd8ffe0}d" +
        "{\\pict\\pngblip 0102}e{\\pict\\dibitmap0\\bin" + std::to_string(dib.size()) + " " + dib + "}}";
    CRichTextDocument document;
    ASSERT_TRUE(ReadRtf(rtf, DefaultFont(), document));
    ASSERT_EQ(1u, document.LineCount());
    const CRtfTextLine& line = document.Line(0);
    EXPECT_EQ(u"a\x14"
              u"b\x14"
              u"cde\x14",
              line.Text());
    ASSERT_EQ(3u, line.Objects().size());
    EXPECT_EQ(1, line.Objects()[0].Position());
    EXPECT_EQ(std::vector<uint8_t>(dib.begin(), dib.end()), line.Objects()[0].Picture()->Packed());
    EXPECT_EQ(3, line.Objects()[1].Position());
    EXPECT_EQ(0x30, line.Objects()[1].Picture()->Packed()[SDIBitmapHeader::StoredSize]);
    EXPECT_EQ(line.Objects()[0].Picture()->Packed(), line.Objects()[2].Picture()->Packed());
    const auto messages = log.TakeMessages();
    ASSERT_EQ(2u, messages.size());
    EXPECT_EQ(messages[0],
              u"Warning: RTF picture skipped, its JPEG data cannot be decoded: the data ends inside "
              u"a marker (4 bytes)");
    EXPECT_TRUE(messages[1].starts_with(u"Warning: RTF picture skipped, its data is damaged"));
}
} // namespace
