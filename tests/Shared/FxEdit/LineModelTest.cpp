// Format blocks and objects follow their characters through inserts, removals, joins and format
// changes (checked character by character against a resolved model), and the wrap cache with its
// layout positions.
#include "FxEditTestHost.h"
#include "Shared/FxEdit/LineEditing.h"
#include "Shared/FxEdit/LineLayout.h"

#include <gtest/gtest.h>

#include <random>

namespace
{
const SFontDescription DefaultFont = SFontDescription::Make(u"Arial", 12);

// A character's format with every field resolved (defaults filled in).
struct SResolved
{
    int64_t points = 12;
    RichTextColour text = DefaultRichTextColour;
    RichTextColour back = DefaultRichTextColour;
    bool operator==(const SResolved&) const = default;
};

SResolved Resolve(const CRtfTextBlockInfo& format)
{
    SResolved resolved;
    resolved.points = format.HasFont() ? format.Font()->PointSize() : DefaultFont.PointSize();
    resolved.text = format.TextColour().value_or(DefaultRichTextColour);
    resolved.back = format.BackColour().value_or(DefaultRichTextColour);
    return resolved;
}

std::vector<SResolved> CharFormats(const CRtfTextLine& line)
{
    std::vector<SResolved> formats;
    for (size_t i = 0; i < line.Text().size(); ++i)
        formats.push_back(Resolve(FormatAt(line, static_cast<int32_t>(i))));
    return formats;
}

CRtfTextBlockInfo FontBlock(int32_t start, int32_t points)
{
    CRtfTextBlockInfo block(start);
    block.SetFont(SFontDescription::Make(u"Arial", points));
    return block;
}

CRtfTextBlockInfo RandomFormat(std::mt19937& random)
{
    CRtfTextBlockInfo format;
    if (random() % 2)
        format.SetFont(SFontDescription::Make(u"Arial", 8 + static_cast<int32_t>(random() % 5)));
    if (random() % 2)
        format.SetTextColour(static_cast<RichTextColour>(random() % 4));
    if (random() % 3 == 0)
        format.SetBackColour(static_cast<RichTextColour>(random() % 4));
    return format;
}

SResolved Applied(SResolved resolved, const CRtfTextBlockInfo& format)
{
    if (format.HasFont())
        resolved.points = format.Font()->PointSize();
    if (format.HasTextColour())
        resolved.text = *format.TextColour();
    if (format.HasBackColour())
        resolved.back = *format.BackColour();
    return resolved;
}
} // namespace

TEST(LineEditing, RandomEditsKeepEveryCharactersFormat)
{
    std::mt19937 random(7);
    for (int round = 0; round < 40; ++round)
    {
        CRtfTextLine line(u"0123456789");
        std::vector<SResolved> model = CharFormats(line);
        for (int step = 0; step < 60; ++step)
        {
            const auto length = static_cast<int32_t>(line.Text().size());
            const int32_t a = length == 0 ? 0 : static_cast<int32_t>(random() % (length + 1));
            const int32_t b = a + (length == a ? 0 : static_cast<int32_t>(random() % (length - a + 1)));
            switch (random() % 4)
            {
            case 0:
                if (length > 0)
                {
                    InsertLineText(line, a, u"xy");
                    const SResolved inherited = model[static_cast<size_t>(a > 0 ? a - 1 : 0)];
                    model.insert(model.begin() + a, 2, inherited);
                }
                break;
            case 1:
                RemoveLineText(line, a, b);
                model.erase(model.begin() + a, model.begin() + b);
                break;
            case 2:
            {
                const CRtfTextBlockInfo format = RandomFormat(random);
                ApplyLineFormat(line, a, b, format, DefaultFont);
                for (int32_t i = a; i < b; ++i)
                    model[static_cast<size_t>(i)] = Applied(model[static_cast<size_t>(i)], format);
                break;
            }
            case 3:
            {
                // Cut out [a, b) and put it back: the round trip must not change any format.
                const CRtfTextLine part = CopyLinePart(line, a, b);
                RemoveLineText(line, a, b);
                CRtfTextLine rebuilt = CopyLinePart(line, 0, a);
                AppendLine(rebuilt, part, DefaultFont);
                AppendLine(rebuilt, CopyLinePart(line, a, static_cast<int32_t>(line.Text().size())),
                           DefaultFont);
                line = rebuilt;
                break;
            }
            }
            if (line.Text().empty())
            {
                line = CRtfTextLine(u"abc");
                model = CharFormats(line);
            }
            ASSERT_EQ(CharFormats(line), model) << "round " << round << " step " << step;
        }
    }
}

TEST(LineEditing, ObjectsMoveWithTheirCharactersAndGoWithRemovedText)
{
    CRtfTextLine line(u"ab\x14"
                      u"cd\x14");
    line.SetObjects(
        {CRtfObjectInfo(CRtfObjectInfo::AttachmentType, 2), CRtfObjectInfo(CRtfObjectInfo::PictureType, 5)});
    InsertLineText(line, 1, u"XYZ");
    ASSERT_EQ(line.Objects().size(), 2u);
    EXPECT_EQ(line.Objects()[0].Position(), 5);
    EXPECT_EQ(line.Objects()[1].Position(), 8);
    RemoveLineText(line, 4, 6); // removes "b" and the first object
    ASSERT_EQ(line.Objects().size(), 1u);
    EXPECT_EQ(line.Objects()[0].Position(), 6);
    EXPECT_EQ(line.Text(), u"aXYZcd\x14");

    const CRtfTextLine part = CopyLinePart(line, 5, 7);
    EXPECT_EQ(part.Text(), u"d\x14");
    ASSERT_EQ(part.Objects().size(), 1u);
    EXPECT_EQ(part.Objects()[0].Position(), 1);
}

TEST(LineEditing, AppendedTailKeepsItsOwnDefaultFormat)
{
    CRtfTextLine head(u"big");
    head.AddBlock(FontBlock(0, 20));
    const CRtfTextLine tail(u"plain");
    AppendLine(head, tail, DefaultFont);
    EXPECT_EQ(head.Text(), u"bigplain");
    EXPECT_EQ(Resolve(FormatAt(head, 2)).points, 20);
    EXPECT_EQ(Resolve(FormatAt(head, 3)).points, 12);
    // An empty tail adds nothing, so text typed at the end still continues the head's format.
    CRtfTextLine other(u"big");
    other.AddBlock(FontBlock(0, 20));
    AppendLine(other, CRtfTextLine(), DefaultFont);
    EXPECT_EQ(other.Blocks().size(), 1u);
}

TEST(LineLayout, WrapsAtBreakOpportunitiesAndCutsLongWords)
{
    CFxEditTestHost host;
    SLineLayoutContext context;
    context.host = &host;
    context.width = 100;
    context.defaultFont = &DefaultFont;
    context.tabStopWidth = 80;

    // "hello " fits, "world " would end at 110 (its blank hangs), so the row breaks after "hello ".
    EXPECT_EQ(ComputeLineLayout(CRtfTextLine(u"hello world foo"), context).rowBreaks,
              std::vector<int32_t>{6});
    EXPECT_EQ(ComputeLineLayout(CRtfTextLine(u"aaaa,bbbbbbbb"), context).rowBreaks, std::vector<int32_t>{5});
    EXPECT_EQ(ComputeLineLayout(CRtfTextLine(u"abcdefghijklmnopqrstuvwxy"), context).rowBreaks,
              (std::vector<int32_t>{10, 20}));
    // Blanks at a row's end hang past the edge instead of wrapping.
    EXPECT_TRUE(ComputeLineLayout(CRtfTextLine(u"abcdefghij   "), context).rowBreaks.empty());
    // A tab advances to the next stop at 80: "abc\t" ends at 80, "xyz" would end at 110.
    EXPECT_EQ(ComputeLineLayout(CRtfTextLine(u"abc\txyz"), context).rowBreaks, std::vector<int32_t>{4});

    CRtfTextLine mixed(u"aa bb cc dd");
    mixed.AddBlock(FontBlock(6, 24));
    const SLineLayout layout = ComputeLineLayout(mixed, context);
    EXPECT_EQ(layout.rowBreaks, std::vector<int32_t>{9});
    EXPECT_EQ(layout.rowHeights, (std::vector<int32_t>{28, 28}));
    const SLineLayout empty = ComputeLineLayout(CRtfTextLine(), context);
    EXPECT_EQ(empty.rowHeights, std::vector<int32_t>{16});

    CRtfTextLine centred(u"abcd");
    centred.SetAlignment(CRtfTextLine::AlignCentre);
    EXPECT_EQ(ComputeLineLayout(centred, context).rowIndents, std::vector<int32_t>{30});
}

TEST(OneLineInfo, LayoutPositionsGiveEachWrappedRowAnExtraPlace)
{
    COneLineInfo line(CRtfTextLine(u"hello world foo"));
    SLineLayout layout;
    layout.rowBreaks = {6};
    layout.rowHeights = {16, 16};
    line.SetLayout(layout);
    ASSERT_TRUE(line.IsLayoutValid());
    EXPECT_EQ(line.LastLayoutPosition(), 16);
    // Positions 6 (end of row 0) and 7 (start of row 1) are both character 6.
    const std::vector<int32_t> offsets = {0, 1, 2, 3, 4, 5, 6, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    for (int32_t p = 0; p <= 16; ++p)
        EXPECT_EQ(line.LayoutToOffset(p), offsets[static_cast<size_t>(p)]) << p;
    EXPECT_EQ(line.OffsetToLayout(5), 5);
    EXPECT_EQ(line.OffsetToLayout(6), 7);
    EXPECT_EQ(line.OffsetToLayout(15), 16);
    EXPECT_EQ(line.RowOfLayoutPosition(6), 0);
    EXPECT_EQ(line.RowOfLayoutPosition(7), 1);
    EXPECT_EQ(line.RowHeight(2), COneLineInfo::MissingRowHeight);

    // Copies carry the paragraph only; a moved line keeps its wrapping.
    const COneLineInfo copy(line);
    EXPECT_FALSE(copy.IsLayoutValid());
    EXPECT_EQ(copy.Paragraph(), line.Paragraph());
    COneLineInfo assigned;
    assigned = line;
    EXPECT_FALSE(assigned.IsLayoutValid());
    const COneLineInfo moved(std::move(line));
    EXPECT_TRUE(moved.IsLayoutValid());
}

TEST(LineLayout, ReLayoutFromTheChangedPartEqualsAFullLayout)
{
    CFxEditTestHost host;
    SLineLayoutContext context;
    context.host = &host;
    context.width = 100;
    context.defaultFont = &DefaultFont;
    context.tabStopWidth = 80;
    std::mt19937 random(11);
    const std::u16string alphabet = u"abc de,f\tghijklmnopq ";
    int reused = 0;
    for (int round = 0; round < 300; ++round)
    {
        std::u16string text;
        for (int i = 0; i < 200; ++i)
            text += alphabet[random() % alphabet.size()];
        COneLineInfo line{CRtfTextLine(text)};
        line.AddBlock(
            FontBlock(static_cast<int32_t>(random() % 200), 8 + static_cast<int32_t>(random() % 20)));
        line.SetLayout(ComputeLineLayout(line, context));
        for (int edit = 0; edit < 10; ++edit)
        {
            CRtfTextLine changed = line.Paragraph();
            const auto length = static_cast<int32_t>(changed.Text().size());
            const int32_t at = static_cast<int32_t>(random() % static_cast<uint32_t>(length + 1));
            switch (random() % 3)
            {
            case 0:
                InsertLineText(changed, at,
                               std::u16string(1 + random() % 30, alphabet[random() % alphabet.size()]));
                break;
            case 1:
                RemoveLineText(changed, at, at + static_cast<int32_t>(random() % 20));
                break;
            case 2:
                ApplyLineFormat(changed, at, at + 5, FontBlock(at, 8 + static_cast<int32_t>(random() % 20)),
                                DefaultFont);
                break;
            }
            line.ReplaceParagraph(changed);
            reused += line.Hint().has_value() ? 1 : 0;
            const SLineLayout incremental =
                ComputeLineLayout(line, context, line.Hint() ? &*line.Hint() : nullptr);
            const SLineLayout full = ComputeLineLayout(line, context);
            ASSERT_EQ(incremental.rowBreaks, full.rowBreaks) << round << "/" << edit;
            ASSERT_EQ(incremental.rowHeights, full.rowHeights) << round << "/" << edit;
            ASSERT_EQ(incremental.rowWidths, full.rowWidths) << round << "/" << edit;
            ASSERT_EQ(incremental.rowIndents, full.rowIndents) << round << "/" << edit;
            ASSERT_EQ(incremental.rowLookahead, full.rowLookahead) << round << "/" << edit;
            line.SetLayout(incremental);
        }
    }
    EXPECT_GT(reused, 1500); // most edits could reuse rows
}

TEST(LineEditing, ReplacingManyRangesAtOnceEqualsReplacingThemOneByOne)
{
    std::mt19937 random(5);
    for (int round = 0; round < 300; ++round)
    {
        CRtfTextLine line(u"ab\x14"
                          u"cab abab cdab\x14"
                          u"xab");
        line.SetObjects({CRtfObjectInfo(CRtfObjectInfo::AttachmentType, 2),
                         CRtfObjectInfo(CRtfObjectInfo::PictureType, 13)});
        for (int i = 0; i < 3; ++i)
        {
            const auto at = static_cast<int32_t>(random() % 17);
            ApplyLineFormat(line, at, at + 1 + static_cast<int32_t>(random() % 5), RandomFormat(random),
                            DefaultFont);
        }
        const int32_t length = 1 + static_cast<int32_t>(random() % 3);
        std::vector<int32_t> starts;
        for (int32_t at = static_cast<int32_t>(random() % 3); at + length <= 17;
             at += length + static_cast<int32_t>(random() % 4))
            starts.push_back(at);
        const std::u16string replacement(random() % 4, u'R');
        CRtfTextLine sequential = line;
        const auto delta = static_cast<int32_t>(replacement.size()) - length;
        for (size_t k = 0; k < starts.size(); ++k)
        {
            const int32_t at = starts[k] + static_cast<int32_t>(k) * delta;
            sequential = WithInsertedText(WithRemovedText(sequential, at, at + length), at, replacement);
        }
        ASSERT_EQ(WithReplacedRanges(line, starts, length, replacement), sequential) << round;
    }
}
