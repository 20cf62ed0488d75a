#include "RichTextTestSupport.h"

#include <gtest/gtest.h>

#include <map>
#include <stdexcept>

namespace
{
using ESegmentList = CRtfTextLine::ESegmentList;

std::vector<std::u16string> LineTexts(const CRichTextDocument& document)
{
    std::vector<std::u16string> texts;
    for (const CRtfTextLine& line : document.Lines())
        texts.push_back(line.Text());
    return texts;
}

// The straightforward reading of the separator rule, one character at a time.
std::vector<std::u16string> SplitLikeTheRule(std::u16string text)
{
    for (char16_t& ch : text)
        ch = ch == u'\x14' ? u' ' : ch;
    const size_t skip = text.find(u"\r\n") != std::u16string::npos ? 2 : 1;
    const char16_t single = text.find(u'\r') != std::u16string::npos ? u'\r' : u'\n';
    std::vector<std::u16string> lines(1);
    for (size_t i = 0; i < text.size();)
    {
        const bool ends = skip == 2 ? (text[i] == u'\r' || text[i] == u'\n') : text[i] == single;
        if (ends)
        {
            lines.emplace_back();
            i += skip;
        }
        else
            lines.back().push_back(text[i++]);
    }
    return lines;
}

// Segments drawn character by character: a character starts a new segment where a counted block
// starts or an object stands, or right after an object.
std::vector<std::pair<int32_t, int32_t>> ExpectedRanges(const CRtfTextLine& line, ESegmentList list)
{
    const int32_t length = static_cast<int32_t>(line.Text().size());
    if (length == 0)
        return {{0, 0}};
    std::vector<std::pair<int32_t, int32_t>> ranges;
    for (int32_t i = 0; i < length; ++i)
    {
        bool cut = i == 0 || line.FindObject(i) || line.FindObject(i - 1);
        for (const CRtfTextBlockInfo& block : line.Blocks())
            cut = cut || (block.Start() == i && (list == ESegmentList::AllChanges || block.HasFont()));
        if (cut)
            ranges.push_back({i, i});
        else
            ranges.back().second = i;
    }
    return ranges;
}
} // namespace

TEST(RichTextModel, AlignmentIsClampedAndEmptinessFollowsTheRule)
{
    CRtfTextLine line;
    const std::pair<int32_t, int32_t> cases[] = {{-5, 0}, {0, 0}, {1, 1}, {2, 2}, {3, 2}, {INT32_MAX, 2}};
    for (const auto& [given, kept] : cases)
    {
        line.SetAlignment(given);
        EXPECT_EQ(line.Alignment(), kept) << given;
    }
    CRichTextDocument document;
    EXPECT_TRUE(document.IsEmpty());
    document.AppendLine(CRtfTextLine());
    EXPECT_TRUE(document.IsEmpty());
    document.AppendLine(CRtfTextLine());
    EXPECT_FALSE(document.IsEmpty());
    document.RemoveLine(1);
    document.Line(0).SetText(u"x");
    EXPECT_FALSE(document.IsEmpty());
    EXPECT_THROW(document.Line(1), std::invalid_argument);
    EXPECT_THROW(document.InsertLine(2, CRtfTextLine()), std::invalid_argument);
    EXPECT_THROW(line.Segment(ESegmentList::AllChanges, 1), std::invalid_argument);
}

TEST(RichTextModel, PlainTextSeparatorRule)
{
    CRichTextDocument document;
    document.BuildFromPlainText(u"a\r\nb\nc");
    EXPECT_EQ(LineTexts(document), (std::vector<std::u16string>{u"a", u"b", u""}));
    document.BuildFromPlainText(u"a\rb\nc\r");
    EXPECT_EQ(LineTexts(document), (std::vector<std::u16string>{u"a", u"b\nc", u""}));
    document.BuildFromPlainText(u"\n\n");
    EXPECT_EQ(LineTexts(document), (std::vector<std::u16string>{u"", u"", u""}));
    document.BuildFromPlainText(u"x\x14y\r\n");
    EXPECT_EQ(LineTexts(document), (std::vector<std::u16string>{u"x y", u""}));
    EXPECT_EQ(document.Line(0).Alignment(), 0);
    EXPECT_TRUE(document.Line(0).Blocks().empty());

    std::mt19937 random(5);
    static constexpr char16_t Alphabet[] = u"ab\r\n\x14";
    for (int round = 0; round < 2000; ++round)
    {
        std::u16string text;
        for (int i = std::uniform_int_distribution<int>(0, 12)(random); i > 0; --i)
            text.push_back(Alphabet[random() % 5]);
        document.BuildFromPlainText(text);
        ASSERT_EQ(LineTexts(document), SplitLikeTheRule(text));
    }
}

TEST(RichTextModel, EffectiveFormatIsTheLastBlockCarryingTheField)
{
    CRtfTextLine line(u"0123456789");
    CRtfTextBlockInfo colourAt2(2);
    colourAt2.SetTextColour(0x0000FF);
    CRtfTextBlockInfo fontAt4(4);
    fontAt4.SetFont(SFontDescription::Make(u"Serif", 9));
    CRtfTextBlockInfo bothAt6(6);
    bothAt6.SetTextColour(0x00FF00);
    bothAt6.SetBackColour(0x111111);
    line.AddBlock(bothAt6);
    line.AddBlock(colourAt2);
    line.AddBlock(fontAt4);
    EXPECT_EQ(line.Blocks()[0].Start(), 2);
    EXPECT_FALSE(line.EffectiveTextColour(1));
    EXPECT_EQ(line.EffectiveTextColour(2), 0x0000FFu);
    EXPECT_EQ(line.EffectiveTextColour(5), 0x0000FFu);
    EXPECT_EQ(line.EffectiveTextColour(6), 0x00FF00u);
    EXPECT_FALSE(line.EffectiveFont(3));
    EXPECT_EQ(line.EffectiveFont(9)->FaceName(), u"Serif");
    EXPECT_FALSE(line.EffectiveBackColour(5));
    EXPECT_EQ(line.EffectiveBackColour(6), 0x111111u);
}

TEST(RichTextModel, SegmentListsMatchACharacterByCharacterModel)
{
    std::mt19937 random(42);
    for (int round = 0; round < 300; ++round)
    {
        const CRichTextDocument document = MakeRandomDocument(random);
        for (const CRtfTextLine& line : document.Lines())
        {
            for (const ESegmentList list : {ESegmentList::AllChanges, ESegmentList::FontChanges})
            {
                const auto expected = ExpectedRanges(line, list);
                ASSERT_EQ(line.SegmentCount(list), expected.size());
                for (size_t i = 0; i < expected.size(); ++i)
                {
                    const SRtfTextSegment& segment = line.Segment(list, i);
                    ASSERT_EQ(std::make_pair(segment.start, segment.end), expected[i]);
                    ASSERT_EQ(segment.IsObjectSegment(), line.FindObject(segment.start) != nullptr);
                }
            }
        }
    }
}

TEST(RichTextModel, SegmentFlagsAndLazyRebuild)
{
    CRtfTextLine line(u"ab\x14"
                      u"cd");
    line.AddObject(CRtfObjectInfo(CRtfObjectInfo::PictureType, 2));
    CRtfTextBlockInfo colour(1);
    colour.SetTextColour(1);
    colour.SetMarker(true);
    line.AddBlock(colour);
    const std::vector<SRtfTextSegment> all = {{0, 0, 0}, {1, 1, 0x12}, {2, 2, 0x1A}, {3, 4, 0x12}};
    EXPECT_EQ(line.Segments(ESegmentList::AllChanges), all);
    const std::vector<SRtfTextSegment> fonts = {{0, 1, 0}, {2, 2, 0x08}, {3, 4, 0}};
    EXPECT_EQ(line.Segments(ESegmentList::FontChanges), fonts);

    CRtfTextBlockInfo font(3);
    font.SetFont(SFontDescription::Make(u"A", 1));
    line.AddBlock(font);
    const std::vector<SRtfTextSegment> rebuilt = {{0, 1, 0}, {2, 2, 0x08}, {3, 4, 0x01}};
    EXPECT_EQ(line.Segments(ESegmentList::FontChanges), rebuilt);

    CRtfTextLine empty;
    EXPECT_EQ(empty.Segments(ESegmentList::AllChanges), (std::vector<SRtfTextSegment>{{0, 0, 0}}));
}

TEST(RichTextModel, HugeMemoryFollowsAVectorModel)
{
    std::mt19937 random(3);
    CHugeMemory memory(7);
    std::vector<uint8_t> model;
    for (int step = 0; step < 3000; ++step)
    {
        const size_t offset = model.empty() ? 0 : random() % (model.size() + 3);
        std::vector<uint8_t> bytes(random() % 20);
        for (uint8_t& byte : bytes)
            byte = static_cast<uint8_t>(random());
        switch (random() % 4)
        {
        case 0:
            memory.Append(bytes);
            model.insert(model.end(), bytes.begin(), bytes.end());
            break;
        case 1:
        {
            const bool fits = offset + bytes.size() <= model.size();
            ASSERT_EQ(memory.Write(offset, bytes), fits);
            if (fits)
                std::copy(bytes.begin(), bytes.end(), model.begin() + static_cast<std::ptrdiff_t>(offset));
            break;
        }
        case 2:
        {
            const size_t size = random() % 60;
            memory.Resize(size);
            model.resize(size, 0);
            break;
        }
        default:
        {
            std::vector<uint8_t> out(bytes.size());
            const bool fits = offset + out.size() <= model.size();
            ASSERT_EQ(memory.Read(offset, out), fits);
            if (fits)
            {
                ASSERT_TRUE(
                    std::equal(out.begin(), out.end(), model.begin() + static_cast<std::ptrdiff_t>(offset)));
            }
        }
        }
        ASSERT_EQ(memory.ToVector(), model);
        size_t total = 0;
        for (size_t i = 0; i < memory.ChunkCount(); ++i)
        {
            ASSERT_LE(memory.Chunk(i).size(), 7u);
            total += memory.Chunk(i).size();
        }
        ASSERT_EQ(total, model.size());
    }
}

TEST(RichTextModel, BitmapFromPlatformFillsHeaderAndImageSize)
{
    class CFakeBitmap : public IPlatformBitmap
    {
    public:
        bool GetSize(int32_t& width, int32_t& height, uint16_t& planes, uint16_t& bits) const override
        {
            width = 3;
            height = 2;
            planes = 1;
            bits = 8;
            return true;
        }
        bool GetBits(std::span<uint8_t> packed) const override
        {
            seenSize = packed.size();
            std::fill(packed.begin() + 40, packed.end(), 0x5A);
            return true;
        }
        mutable size_t seenSize = 0;
    };
    CFakeBitmap platform;
    CDIBitmap bitmap;
    ASSERT_TRUE(bitmap.CreateFromPlatformBitmap(platform, 0));
    EXPECT_EQ(platform.seenSize, 40u + 1024 + 8);
    const SDIBitmapHeader header = bitmap.Header();
    EXPECT_EQ(header.bitCount, 8);
    EXPECT_EQ(header.sizeImage, 40u + 1024 + 8);
    EXPECT_EQ(bitmap.Packed().back(), 0x5A);
    EXPECT_FALSE(CDIBitmap().CreateFromPlatformBitmap(platform, SDIBitmapHeader::BitFieldsCompression));
}
