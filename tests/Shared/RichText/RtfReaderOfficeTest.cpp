// The reader on RTF that LibreOffice wrote from data/office.html (soffice --headless
// --infilter="HTML (StarWriter)" --convert-to rtf): fonts and sizes, styles, colours,
// alignment, a JPEG picture, a bulleted list and non-Latin scripts.
#include "RichTextTestSupport.h"

#include "Shared/RichText/RtfReader.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace
{
const SFontDescription Font = SFontDescription::Make(u"Arial", 12);

const CRtfTextLine& LineWith(const CRichTextDocument& document, std::u16string_view text)
{
    for (const CRtfTextLine& line : document.Lines())
        if (line.Text().find(text) != std::u16string::npos)
            return line;
    throw std::runtime_error("no line holds " + Utf16ToUtf8(text));
}

int32_t At(const CRtfTextLine& line, std::u16string_view text)
{
    return static_cast<int32_t>(line.Text().find(text));
}
} // namespace

TEST(RtfReaderOfficeTest, FormatsPictureListAndScripts)
{
    std::ifstream in(QUILL_SOURCE_DIR "/tests/Shared/RichText/data/office.rtf", std::ios::binary);
    const std::string rtf(std::istreambuf_iterator<char>(in), {});
    CRichTextLogCapture log;
    CRichTextDocument document;
    ASSERT_TRUE(ReadRtf(rtf, Font, document));

    const CRtfTextLine& heading = LineWith(document, u"Heading in serif 16");
    EXPECT_EQ(heading.EffectiveFont(0)->FaceName(), u"DejaVu Serif");
    EXPECT_EQ(heading.EffectiveFont(0)->PointSize(), 16);
    EXPECT_TRUE(heading.EffectiveFont(0)->IsBold());

    const CRtfTextLine& mono = LineWith(document, u"mono 9 with {braces} and back\\slash");
    EXPECT_EQ(mono.EffectiveFont(0)->FaceName(), u"DejaVu Sans Mono");
    EXPECT_EQ(mono.EffectiveFont(0)->PointSize(), 9);

    const CRtfTextLine& mixed = LineWith(document, u"Mixed bold, italic, underline and all three.");
    EXPECT_TRUE(mixed.EffectiveFont(At(mixed, u"bold"))->IsBold());
    EXPECT_FALSE(mixed.EffectiveFont(At(mixed, u"bold"))->IsItalic());
    EXPECT_TRUE(mixed.EffectiveFont(At(mixed, u"italic"))->IsItalic());
    EXPECT_TRUE(mixed.EffectiveFont(At(mixed, u"underline"))->IsUnderlined());
    const SFontDescription all = *mixed.EffectiveFont(At(mixed, u"all three"));
    EXPECT_TRUE(all.IsBold() && all.IsItalic() && all.IsUnderlined());
    EXPECT_FALSE(mixed.EffectiveFont(0)->IsBold());

    const CRtfTextLine& red = LineWith(document, u"dark red centred");
    EXPECT_EQ(red.Alignment(), CRtfTextLine::AlignCentre);
    EXPECT_EQ(*red.EffectiveTextColour(0), 0x0000C0u);
    const CRtfTextLine& yellow = LineWith(document, u"yellow highlight right");
    EXPECT_EQ(yellow.Alignment(), CRtfTextLine::AlignRight);
    EXPECT_EQ(*yellow.EffectiveBackColour(0), 0x00FFFFu);

    const CRtfTextLine& picture = LineWith(document, u"Picture: ");
    ASSERT_EQ(picture.Objects().size(), 1u);
    EXPECT_EQ(picture.Text()[static_cast<size_t>(picture.Objects()[0].Position())], u'\x14');
    const SDIBitmapHeader header = picture.Objects()[0].Picture()->Header();
    EXPECT_EQ(header.width, 61);
    EXPECT_EQ(header.height, 37);
    EXPECT_NE(picture.Text().find(u"after it."), std::u16string::npos);

    // The list's bullets come as LibreOffice writes them: the bullet text before each item.
    EXPECT_NE(LineWith(document, u"first bullet").Text().find(u"\u2022"), std::u16string::npos);
    LineWith(document, u"second bullet");
    LineWith(document,
             u"\u0395\u03bb\u03bb\u03b7\u03bd\u03b9\u03ba\u03ac, \u0420\u0443\u0441\u0441\u043a\u0438\u0439, "
             u"\u4e2d\u6587, \u05e2\u05d1\u05e8\u05d9\u05ea.");
    EXPECT_TRUE(log.TakeMessages().empty());
}
