// Our RTF as another program reads it: data/writer.rtf is the RTF writer's output for the
// document below, and data/writer-libreoffice.rtf is that file opened and saved again by
// LibreOffice 7.4 (soffice --headless --convert-to rtf:"Rich Text" --outdir OUT writer.rtf).
// What LibreOffice kept, our reader must find: so the font and colour tables (the sorted colour
// table whose entry 0 is a real colour, the sentinel entry), sizes, styles and alignment of our
// writer mean to LibreOffice what they mean to us. When the writer's output changes on purpose,
// both files are made again that way.
#include "RichTextTestSupport.h"

#include "Shared/RichText/RtfReader.h"
#include "Shared/RichText/RtfWriter.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace
{
SFontDescription Font(std::u16string_view face, int32_t points, uint8_t pitchAndFamily, int32_t weight = 400,
                      bool italic = false, bool underline = false)
{
    SFontDescription font = SFontDescription::Make(face, points, weight);
    font.pitchAndFamily = pitchAndFamily;
    font.italic = italic ? 1 : 0;
    font.underline = underline ? 1 : 0;
    return font;
}

SFontDescription DefaultFont()
{
    return Font(u"Arial", 12, 0x26);
}

void AddBlock(CRtfTextLine& line, int32_t start, std::optional<SFontDescription> font,
              std::optional<RichTextColour> text = std::nullopt,
              std::optional<RichTextColour> back = std::nullopt)
{
    CRtfTextBlockInfo block(start);
    if (font)
        block.SetFont(*font);
    if (text)
        block.SetTextColour(*text);
    if (back)
        block.SetBackColour(*back);
    line.AddBlock(block);
}

// Fonts of three families, sizes from 9 to 20 points, each style alone and together, colours
// with components below 0x10 (as the HTML writer's short form has them), backgrounds, the three
// alignments, RTF's special characters, Latin, Cyrillic, Greek and CJK text and an empty line.
CRichTextDocument DocumentForLibreOffice()
{
    const SFontDescription times = Font(u"Times New Roman", 20, 0x16, 900);
    const SFontDescription courier = Font(u"Courier New", 10, 0x31, 400, true);
    const SFontDescription arialUnderlined = Font(u"Arial", 12, 0x26, 400, false, true);
    const SFontDescription all = Font(u"Arial", 9, 0x26, 900, true, true);
    CRichTextDocument document;

    CRtfTextLine first(u"Plain, bold serif, italic mono, red underlined.");
    AddBlock(first, 7, times);
    AddBlock(first, 17, DefaultFont());
    AddBlock(first, 19, courier, 0x0A1005);
    AddBlock(first, 30, DefaultFont(), 0xFEFFFF);
    AddBlock(first, 32, arialUnderlined, 0x0000C0);
    AddBlock(first, 46, DefaultFont(), 0xFEFFFF);
    document.AppendLine(first);

    CRtfTextLine second(u"Centred on yellow and on white.");
    second.SetAlignment(CRtfTextLine::AlignCentre);
    AddBlock(second, 11, std::nullopt, std::nullopt, 0x00FFFF);
    AddBlock(second, 17, std::nullopt, std::nullopt, 0xFEFFFF);
    AddBlock(second, 25, std::nullopt, 0xFF0000, 0xFFFFFF);
    document.AppendLine(second);

    CRtfTextLine third(u"Right:\ttab {braces} back\\slash caf\u00e9 \u00fc|~");
    third.SetAlignment(CRtfTextLine::AlignRight);
    document.AppendLine(third);

    document.AppendLine(CRtfTextLine());

    CRtfTextLine fourth(u"\u0420\u0443\u0441\u0441\u043a\u0438\u0439 \u0395\u03bb\u03bb\u03b7\u03bd\u03b9"
                        u"\u03ba\u03ac \u4e2d\u6587 all three");
    AddBlock(fourth, 20, all, 0x008000);
    document.AppendLine(fourth);
    return document;
}

std::string ReadDataFile(const char* name)
{
    std::ifstream in(std::string(QUILL_SOURCE_DIR "/tests/Shared/RichText/data/") + name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

struct SCharacterFormat
{
    std::u16string face;
    int64_t points = 0;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    RichTextColour text = 0;
    RichTextColour back = 0;
    bool operator==(const SCharacterFormat&) const = default;
};

void PrintTo(const SCharacterFormat& format, std::ostream* out)
{
    *out << Utf16ToUtf8(format.face) << ' ' << format.points << (format.bold ? " bold" : "")
         << (format.italic ? " italic" : "") << (format.underline ? " underline" : "") << std::hex << " text "
         << format.text << " back " << format.back;
}

SCharacterFormat FormatAt(const CRtfTextLine& line, int32_t position)
{
    const SFontDescription font = line.EffectiveFont(position).value_or(DefaultFont());
    return {font.FaceName(),
            font.PointSize(),
            font.IsBold(),
            font.IsItalic(),
            font.IsUnderlined(),
            line.EffectiveTextColour(position).value_or(DefaultRichTextColour),
            line.EffectiveBackColour(position).value_or(DefaultRichTextColour)};
}
} // namespace

TEST(RtfLibreOfficeRoundTrip, TheCommittedFileIsTheWritersCurrentOutput)
{
    EXPECT_EQ(RtfTextToBytes(ToRtf(DocumentForLibreOffice(), DefaultFont())), ReadDataFile("writer.rtf"));
}

TEST(RtfLibreOfficeRoundTrip, LibreOfficeKeepsTextFontsStylesColoursAndAlignment)
{
    const std::string resaved = ReadDataFile("writer-libreoffice.rtf");
    ASSERT_TRUE(resaved.starts_with("{\\rtf1"));
    CRichTextLogCapture log;
    CRichTextDocument read;
    ASSERT_TRUE(ReadRtf(resaved, DefaultFont(), read));
    EXPECT_TRUE(log.TakeMessages().empty());

    const CRichTextDocument written = DocumentForLibreOffice();
    ASSERT_EQ(read.LineCount(), written.LineCount());
    for (size_t i = 0; i < written.LineCount(); ++i)
    {
        const CRtfTextLine& expected = written.Line(i);
        const CRtfTextLine& actual = read.Line(i);
        ASSERT_EQ(actual.Text(), expected.Text()) << "line " << i;
        EXPECT_EQ(actual.Alignment(), expected.Alignment()) << "line " << i;
        for (int32_t at = 0; at < static_cast<int32_t>(expected.Text().size()); ++at)
            EXPECT_EQ(FormatAt(actual, at), FormatAt(expected, at)) << "line " << i << " position " << at;
    }
}
