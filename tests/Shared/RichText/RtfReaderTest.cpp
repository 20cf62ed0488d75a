#include "RichTextTestSupport.h"

#include "Shared/RichText/RtfReader.h"
#include "Shared/RichText/RtfWriter.h"

#include <gtest/gtest.h>

namespace
{
SFontDescription DefaultFont()
{
    return SFontDescription::Make(u"Arial", 12);
}

CRichTextDocument Read(std::string_view rtf)
{
    CRichTextDocument document;
    EXPECT_TRUE(ReadRtf(rtf, DefaultFont(), document)) << rtf;
    return document;
}

std::u16string TextOf(const CRichTextDocument& document)
{
    std::u16string text;
    for (size_t i = 0; i < document.LineCount(); ++i)
        text += (i > 0 ? u"|" : u"") + document.Line(i).Text();
    return text;
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
            line.EffectiveTextColour(position).value_or(DefaultRichTextColour) & 0xFFFFFF,
            line.EffectiveBackColour(position).value_or(DefaultRichTextColour) & 0xFFFFFF};
}

int32_t WrittenAlignment(int32_t alignment)
{
    return alignment == CRtfTextLine::AlignLeft || alignment == CRtfTextLine::AlignRight
               ? alignment
               : CRtfTextLine::AlignCentre;
}

// What the writer keeps of a document and the reader must give back: per line the text, the
// alignment and each character's font face, size, styles and colours (RTF colours have no byte
// above blue, so only the low 24 bits travel).
void ExpectSameContent(const CRichTextDocument& written, const CRichTextDocument& read)
{
    if (written.IsEmpty())
    {
        EXPECT_TRUE(read.IsEmpty());
        return;
    }
    ASSERT_EQ(written.LineCount(), read.LineCount());
    for (size_t i = 0; i < written.LineCount(); ++i)
    {
        const CRtfTextLine& expected = written.Line(i);
        const CRtfTextLine& actual = read.Line(i);
        ASSERT_EQ(expected.Text(), actual.Text()) << "line " << i;
        EXPECT_EQ(WrittenAlignment(expected.Alignment()), actual.Alignment()) << "line " << i;
        for (int32_t at = 0; at < static_cast<int32_t>(expected.Text().size()); ++at)
            ASSERT_EQ(FormatAt(expected, at), FormatAt(actual, at)) << "line " << i << " position " << at;
    }
}

TEST(RtfReaderTest, RandomDocumentsWrittenByTheWriterReadBackUnchanged)
{
    std::mt19937 random(7);
    SRandomDocumentOptions options;
    options.withObjects = false;
    for (int round = 0; round < 200; ++round)
    {
        const CRichTextDocument written = MakeRandomDocument(random, options);
        const std::u16string rtf = ToRtf(written, DefaultFont());
        CRichTextDocument read;
        ASSERT_TRUE(ReadRtf(rtf, DefaultFont(), read)) << "round " << round;
        ExpectSameContent(written, read);
    }
}

// The bytes of an exported RTF file, non-Latin font names included, read back the same.
TEST(RtfReaderTest, ExportedFileBytesReadBackUnchanged)
{
    std::mt19937 random(70);
    SRandomDocumentOptions options;
    options.withObjects = false;
    for (int round = 0; round < 200; ++round)
    {
        const CRichTextDocument written = MakeRandomDocument(random, options);
        CRichTextDocument read;
        ASSERT_TRUE(ReadRtf(RtfTextToBytes(ToRtf(written, DefaultFont())), DefaultFont(), read)) << round;
        ExpectSameContent(written, read);
    }
}

TEST(RtfReaderTest, WriterOutputReadAsBytesKeepsFormatsAndNonAsciiText)
{
    CRichTextDocument written;
    CRtfTextLine first(u"plain bold \u00e9\u4e2d\U0001F600 end");
    CRtfTextBlockInfo bold(6);
    bold.SetFont(SFontDescription::Make(u"Courier New", 9, 900));
    bold.SetTextColour(0x0000FF);
    bold.SetBackColour(0x00FFFF);
    first.AddBlock(bold);
    CRtfTextBlockInfo plain(11);
    plain.SetFont(DefaultFont());
    plain.SetTextColour(DefaultRichTextColour);
    first.AddBlock(plain);
    first.SetAlignment(CRtfTextLine::AlignRight);
    written.AppendLine(first);
    written.AppendLine(CRtfTextLine(u""));
    written.AppendLine(CRtfTextLine(u"tab\there {braces} \\ |~"));
    // The writer's output holds only ASCII apart from the \u fallbacks of U+0080-U+00FF; as
    // bytes those fallbacks are Windows-1252 bytes, which the reader skips.
    const std::string bytes = Utf16ToCp1252(ToRtf(written, DefaultFont()));
    ExpectSameContent(written, Read(bytes));
}

TEST(RtfReaderTest, EmptyDocumentReadsAsOneEmptyLine)
{
    const CRichTextDocument read = Read(Utf16ToCp1252(ToRtf(CRichTextDocument(), DefaultFont())));
    ASSERT_EQ(1u, read.LineCount());
    EXPECT_TRUE(read.IsEmpty());
}

TEST(RtfReaderTest, CharacterFormatsFollowGroupsAndResets)
{
    const CRichTextDocument document =
        Read("{\\rtf1\\ansi\\deff1{\\fonttbl{\\f0\\froman Times;}{\\f1\\fswiss\\fprq2 Helv;}}"
             "{\\colortbl;\\red255\\green0\\blue0;\\red0\\green0\\blue255;}"
             "a{\\b\\fs30 b{\\i\\ul c}\\b0 d}e\\f0\\cf1\\highlight2 f\\plain g\\cb2 h\\chcbpat1 "
             "i\\ulnone\\ul0 j}");
    ASSERT_EQ(1u, document.LineCount());
    const CRtfTextLine& line = document.Line(0);
    ASSERT_EQ(u"abcdefghij", line.Text());
    const RichTextColour none = DefaultRichTextColour;
    const SCharacterFormat expected[] = {
        {u"Helv", 12, false, false, false, none, none},
        {u"Helv", 15, true, false, false, none, none},
        {u"Helv", 15, true, true, true, none, none},
        {u"Helv", 15, false, false, false, none, none},
        {u"Helv", 12, false, false, false, none, none},
        {u"Times", 12, false, false, false, 0x0000FF, 0xFF0000},
        {u"Helv", 12, false, false, false, none, none},
        {u"Helv", 12, false, false, false, none, 0xFF0000},
        {u"Helv", 12, false, false, false, none, 0x0000FF},
        {u"Helv", 12, false, false, false, none, 0x0000FF},
    };
    for (int32_t at = 0; at < 10; ++at)
        EXPECT_EQ(expected[at], FormatAt(line, at)) << "position " << at;
    // The font table's family and pitch come back in the pitch-and-family byte.
    EXPECT_EQ(0x22, line.EffectiveFont(0)->pitchAndFamily);
    EXPECT_EQ(0x10, line.EffectiveFont(5)->pitchAndFamily);
}

TEST(RtfReaderTest, ParagraphsAlignmentAndSpecialCharacters)
{
    const CRichTextDocument document = Read("{\\rtf1 {\\qc centred\\par}\\qr right\\line next\\par\\pard left"
                                            "\\tab x\\~y\\emdash\\bullet\\lquote\\{\\}\\\\\r\n"
                                            "wrapped\\par\n}");
    EXPECT_EQ(u"centred|right|next|left\tx\u00a0y\u2014\u2022\u2018{}\\wrapped", TextOf(document));
    ASSERT_EQ(4u, document.LineCount());
    EXPECT_EQ(CRtfTextLine::AlignCentre, document.Line(0).Alignment());
    EXPECT_EQ(CRtfTextLine::AlignRight, document.Line(1).Alignment());
    EXPECT_EQ(CRtfTextLine::AlignRight, document.Line(2).Alignment());
    EXPECT_EQ(CRtfTextLine::AlignLeft, document.Line(3).Alignment());
}

TEST(RtfReaderTest, UnicodeFallbacksAreSkippedByTheCountInForce)
{
    EXPECT_EQ(u"\u20ac!", TextOf(Read("{\\rtf1 \\u8364?!}")));
    EXPECT_EQ(u"\u20ac c", TextOf(Read("{\\rtf1 \\uc2\\u8364 ab c}")));
    EXPECT_EQ(u"\u20acx", TextOf(Read("{\\rtf1 \\u8364\\'80x}")));
    EXPECT_EQ(u"\u20acab", TextOf(Read("{\\rtf1 \\uc0\\u8364 ab}")));
    // A group boundary ends the fallback; the count belongs to the group.
    EXPECT_EQ(u"\u20acx\u20ac", TextOf(Read("{\\rtf1 {\\u8364}x{\\uc3\\u8364 abc}}")));
    // Negative values are code units above 32767; surrogate halves come through one by one.
    EXPECT_EQ(u"\uff01\U0001F600", TextOf(Read("{\\rtf1 \\u-255?\\u-10179?\\u-8704?}")));
    // A control word in the fallback counts as one character.
    EXPECT_EQ(u"\u20acz", TextOf(Read("{\\rtf1 \\u8364\\bullet z}")));
}

TEST(RtfReaderTest, CodePageBytesFollowDocumentFontAndGroupCodePages)
{
    EXPECT_EQ(u"\u20ac\u00e9", TextOf(Read("{\\rtf1\\ansi \\'80\\'e9}")));
    EXPECT_EQ(u"\u041f\u0440\u0438", TextOf(Read("{\\rtf1\\ansi\\ansicpg1251 \\'cf\\'f0\\'e8}")));
    EXPECT_EQ(u"\u0105a\u00b9",
              TextOf(Read(
                  "{\\rtf1\\ansi{\\fonttbl{\\f0 Arial;}{\\f1\\fcharset238 Arial CE;}}\\f1\\'b9a\\f0\\'b9}")));
    EXPECT_EQ(u"\u0439", TextOf(Read("{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0\\fcharset204 Arial;}}\\'e9}")));
    // Double-byte code pages need both bytes together.
    EXPECT_EQ(u"\u3042", TextOf(Read("{\\rtf1\\ansi\\ansicpg932 \\'82\\'a0}")));
    EXPECT_EQ(u"\u00e9\u0439", TextOf(Read("{\\rtf1\\ansi \\'e9{\\cpg1251\\'e9}}")));
    // Raw bytes above 0x7F are code page text too.
    EXPECT_EQ(u"\u017e", TextOf(Read("{\\rtf1\\ansi\\ansicpg1250 \x9e}")));
}

TEST(RtfReaderTest, UnknownAndIgnorableDestinationsAreSkipped)
{
    EXPECT_EQ(u"result text",
              TextOf(Read("{\\rtf1{\\stylesheet{\\s0 Normal;}}{\\info{\\title T}}{\\*\\generator G;}"
                          "{\\*\\unknown {deep {deeper \\bin3 {{{}}}{\\field{\\*\\fldinst HYPERLINK \"u\"}"
                          "{\\fldrslt result}} text{\\header head}{\\footnote note}}")));
    EXPECT_EQ(u"ab", TextOf(Read("{\\rtf1 a\\bin4 {}}xb}")));
}

TEST(RtfReaderTest, MalformedTextFailsWithOneLineAndLeavesTheDocument)
{
    CRichTextLogCapture log;
    const char* cases[] = {
        "",
        "plain text",
        "{\\rtf1 never closed",
        "{\\rtf1 {\\*\\skipped never closed}",
        "{\\rtf1 \\bin100 abc}",
    };
    for (const char* rtf : cases)
    {
        CRichTextDocument document;
        document.AppendLine(CRtfTextLine(u"kept"));
        EXPECT_FALSE(ReadRtf(std::string_view(rtf), DefaultFont(), document)) << rtf;
        EXPECT_EQ(u"kept", TextOf(document));
        const auto messages = log.TakeMessages();
        ASSERT_EQ(1u, messages.size()) << rtf;
        EXPECT_TRUE(messages[0].starts_with(u"Error: Cannot read RTF text, ")) << rtf;
    }
}

TEST(RtfReaderTest, GroupNestingIsBoundedWithoutRecursion)
{
    CRichTextLogCapture log;
    auto nested = [](size_t depth)
    { return "{\\rtf1 " + std::string(depth - 1, '{') + "x" + std::string(depth, '}'); };
    CRichTextDocument document;
    EXPECT_TRUE(ReadRtf(nested(MaxRtfGroupDepth), DefaultFont(), document));
    EXPECT_EQ(u"x", TextOf(document));
    EXPECT_FALSE(ReadRtf(nested(MaxRtfGroupDepth + 1), DefaultFont(), document));
    EXPECT_EQ(1u, log.TakeMessages().size());
    EXPECT_FALSE(ReadRtf(nested(1000000), DefaultFont(), document));
    // Inside a skipped destination any depth costs nothing.
    const std::string deepSkip =
        "{\\rtf1 {\\*\\x " + std::string(1000000, '{') + std::string(1000000, '}') + "}y}";
    EXPECT_TRUE(ReadRtf(deepSkip, DefaultFont(), document));
    EXPECT_EQ(u"y", TextOf(document));
}
} // namespace
