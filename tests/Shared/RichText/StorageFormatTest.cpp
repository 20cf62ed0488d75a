#include "RichTextTestSupport.h"

#include "Shared/RichText/RichTextPlatform.h"

#include <gtest/gtest.h>

namespace
{
using Bytes = std::vector<uint8_t>;

void Append(Bytes& to, std::initializer_list<uint8_t> bytes)
{
    to.insert(to.end(), bytes);
}

void AppendU32(Bytes& to, uint32_t v)
{
    Append(to, {uint8_t(v), uint8_t(v >> 8), uint8_t(v >> 16), uint8_t(v >> 24)});
}

// The framework string form of ASCII text shorter than 255 characters.
void AppendShortString(Bytes& to, std::string_view ascii)
{
    Append(to, {0xFF, 0xFE, 0xFF, uint8_t(ascii.size())});
    for (const char ch : ascii)
        Append(to, {uint8_t(ch), 0});
}

// A valid 1x1 24-bit packed bitmap: 40 header bytes and one 4-byte row.
Bytes TinyPackedBitmap()
{
    Bytes packed;
    AppendU32(packed, 40);
    AppendU32(packed, 1);
    AppendU32(packed, 1);
    Append(packed, {1, 0, 24, 0});
    packed.resize(40, 0);
    Append(packed, {0x11, 0x22, 0x33, 0x00});
    return packed;
}

Bytes ObjectPrefix(uint32_t type, uint32_t position)
{
    Bytes bytes;
    AppendU32(bytes, type);
    AppendU32(bytes, position);
    AppendU32(bytes, 7);
    AppendU32(bytes, 9);
    bytes.resize(bytes.size() + 160, 0);
    return bytes;
}

struct SLoadOutcome
{
    int result;
    std::vector<std::u16string> messages;
};

template <class TElement> SLoadOutcome LoadElement(const Bytes& bytes, int version)
{
    CRichTextLogCapture log;
    TElement element;
    CArchiveReader in(bytes);
    const int result = element.Serialize(in, version);
    return {result, log.TakeMessages()};
}

SLoadOutcome LoadWholeDocument(const Bytes& bytes)
{
    CRichTextLogCapture log;
    CRichTextDocument document;
    const int result = LoadDocument(bytes, document);
    return {result, log.TakeMessages()};
}

std::vector<std::u16string> One(std::u16string line)
{
    return {std::move(line)};
}
} // namespace

TEST(RichTextStorage, SmallDocumentHasHandComputedBytes)
{
    CRichTextDocument document;
    CRtfTextLine line(u"Hi");
    line.SetAlignment(1);
    CRtfTextBlockInfo block(1);
    block.SetTextColour(0x0000FF);
    line.AddBlock(block);
    line.AddBlock(CRtfTextBlockInfo(2)); // no optional field: the start and three zero bytes
    document.AppendLine(line);

    Bytes expected = {0x64, 0x00, 1, 0, 0, 0};
    AppendShortString(expected, "Hi");
    Append(expected, {1, 0, 0, 0, /*objects*/ 0, 0, 0, 0, /*blocks*/ 2, 0, 0, 0});
    Append(expected, {1, 0, 0, 0, 0, 1, 0xFF, 0, 0, 0, 0});
    Append(expected, {2, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(SaveDocument(document), expected);

    EXPECT_EQ(SaveDocument(CRichTextDocument()), (Bytes{0x64, 0, 0, 0, 0, 0}));
}

TEST(RichTextStorage, FontAttachmentAndPictureHaveHandComputedBytes)
{
    SFontDescription font = SFontDescription::Make(u"Ab", -13, 700);
    font.italic = 1;
    font.charSet = 0xCC;
    font.quality = 4;
    font.pitchAndFamily = 0x22;
    CRtfTextBlockInfo block(3);
    block.SetFont(font);
    block.SetBackColour(0x123456);
    CArchiveWriter blockOut;
    ASSERT_EQ(block.Serialize(blockOut), 0);
    Bytes expected = {3, 0, 0, 0, 1};
    Append(expected, {0xF3, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xBC, 0x02, 0, 0});
    Append(expected, {1, 0, 0, 0xCC, 0, 0, 4, 0x22, 'A', 0, 'b', 0});
    expected.resize(expected.size() + 60, 0);
    Append(expected, {0, 1, 0x56, 0x34, 0x12, 0x00});
    EXPECT_EQ(blockOut.Bytes(), expected);

    CRtfObjectInfo attachment(CRtfObjectInfo::AttachmentType, 2);
    attachment.SetParam1(7);
    attachment.SetParam2(9);
    attachment.SetFileName(u"a.b");
    CHugeMemory data;
    data.Append(std::vector<uint8_t>{0xAB, 0xCD});
    attachment.SetData(data);
    CArchiveWriter objectOut;
    ASSERT_EQ(attachment.Serialize(objectOut), 0);
    expected = ObjectPrefix(1, 2);
    AppendShortString(expected, "a.b");
    Append(expected, {2, 0, 0, 0, 0xAB, 0xCD});
    EXPECT_EQ(objectOut.Bytes(), expected);

    CRtfObjectInfo picture(CRtfObjectInfo::PictureType, 0);
    picture.SetParam1(7);
    picture.SetParam2(9);
    CDIBitmap bitmap;
    ASSERT_TRUE(bitmap.SetPacked(TinyPackedBitmap()));
    picture.SetPicture(bitmap);
    CArchiveWriter pictureOut;
    ASSERT_EQ(picture.Serialize(pictureOut), 0);
    expected = ObjectPrefix(0, 0);
    AppendU32(expected, 44);
    const Bytes packed = TinyPackedBitmap();
    expected.insert(expected.end(), packed.begin(), packed.end());
    EXPECT_EQ(pictureOut.Bytes(), expected);
}

TEST(RichTextStorage, RandomDocumentsRoundTrip)
{
    CRichTextLogCapture log;
    std::mt19937 random(1234);
    for (int i = 0; i < 200; ++i)
    {
        const CRichTextDocument document = MakeRandomDocument(random);
        const Bytes bytes = SaveDocument(document);
        ASSERT_FALSE(bytes.empty());
        CRichTextDocument loaded;
        ASSERT_EQ(LoadDocument(bytes, loaded), 0);
        ASSERT_EQ(loaded, document) << "document " << i;
        ASSERT_EQ(SaveDocument(loaded), bytes);
    }
    EXPECT_TRUE(log.TakeMessages().empty());
}

TEST(RichTextStorage, MegabyteAndEmptyAttachmentsRoundTrip)
{
    std::mt19937 random(77);
    SRandomDocumentOptions options;
    options.hugeAttachmentBytes = 1024 * 1024;
    CRichTextDocument document = MakeRandomDocument(random, options);
    CRtfTextLine line(std::u16string(1, CRtfObjectInfo::ObjectCharacter));
    CRtfObjectInfo empty(CRtfObjectInfo::AttachmentType, 0);
    empty.SetFileName(u"empty.txt");
    empty.SetData(CHugeMemory());
    line.AddObject(empty);
    document.AppendLine(line);

    CRichTextDocument loaded;
    ASSERT_EQ(LoadDocument(SaveDocument(document), loaded), 0);
    EXPECT_EQ(loaded, document);
    const CRtfObjectInfo& big = loaded.Line(loaded.LineCount() - 2).Objects().at(0);
    EXPECT_EQ(big.DataSize(), 1024u * 1024u);
    EXPECT_GT(big.Data()->ChunkCount(), 1u);
}

TEST(RichTextStorage, AttachmentWithoutBufferLoadsWithEmptyBuffer)
{
    CRtfObjectInfo object(CRtfObjectInfo::AttachmentType, 0);
    CArchiveWriter out;
    ASSERT_EQ(object.Serialize(out), 0);
    EXPECT_EQ(out.Bytes().size(), 176u + 4 + 4);
    CRtfObjectInfo loaded;
    CArchiveReader in(out.Bytes());
    ASSERT_EQ(loaded.Serialize(in, 100), 0);
    ASSERT_TRUE(loaded.Data().has_value());
    EXPECT_EQ(loaded.DataSize(), 0u);
}

TEST(RichTextStorage, LoadedFontTakesDisplayQualityAndMarkerIsCleared)
{
    class CClearTypePlatform : public IRichTextPlatform
    {
    public:
        uint8_t DisplayFontQuality() const override
        {
            ++asked;
            return ClearTypeQuality;
        }
        mutable int asked = 0;
    };
    CRtfTextBlockInfo block(0);
    SFontDescription font = SFontDescription::Make(u"X", 10);
    font.quality = 0;
    block.SetFont(font);
    block.SetMarker(true);
    CArchiveWriter out;
    ASSERT_EQ(block.Serialize(out), 0);

    CRtfTextBlockInfo loaded;
    loaded.SetMarker(true);
    CArchiveReader headless(out.Bytes());
    ASSERT_EQ(loaded.Serialize(headless, 100), 0);
    EXPECT_EQ(loaded.Font()->quality, 4);
    EXPECT_FALSE(loaded.Marker());

    CClearTypePlatform platform;
    InstallRichTextPlatform(&platform);
    for (int i = 0; i < 3; ++i)
    {
        CArchiveReader in(out.Bytes());
        ASSERT_EQ(loaded.Serialize(in, 100), 0);
        EXPECT_EQ(loaded.Font()->quality, 5);
    }
    EXPECT_EQ(platform.asked, 1);
    InstallRichTextPlatform(nullptr);
}

TEST(RichTextStorage, UnsupportedVersionAtEachLevel)
{
    Bytes document = {101, 0, 0, 0, 0, 0};
    EXPECT_EQ(LoadWholeDocument(document).result, 1);
    EXPECT_EQ(LoadWholeDocument(document).messages,
              One(u"Error: Cannot load Rich Text object, version number is unsupported - 101"));

    const SLoadOutcome line = LoadElement<CRtfTextLine>({}, 101);
    EXPECT_EQ(line.result, 1);
    EXPECT_EQ(line.messages,
              One(u"Error: Cannot load Rich Text Line object, version number is unsupported - 101"));
    const SLoadOutcome block = LoadElement<CRtfTextBlockInfo>({}, 101);
    EXPECT_EQ(block.result, 1);
    EXPECT_EQ(
        block.messages,
        One(u"Error: Cannot load Rich Text Formatting Block object, version number is unsupported - 101"));
    const SLoadOutcome object = LoadElement<CRtfObjectInfo>({}, 101);
    EXPECT_EQ(object.result, 1);
    EXPECT_EQ(object.messages,
              One(u"Error: Cannot load Rich Text Attachment object, version number is unsupported - 101"));
}

TEST(RichTextStorage, ShortFontAndShortAttachmentFailWithSizeError)
{
    Bytes block = {0, 0, 0, 0, 1};
    block.resize(block.size() + 91, 0x41);
    const SLoadOutcome font = LoadElement<CRtfTextBlockInfo>(block, 100);
    EXPECT_EQ(font.result, 2);
    EXPECT_EQ(font.messages, One(u"Error: Cannot load Rich Text Formatting Block object, object size is too "
                                 u"small in storage file/location"));

    Bytes attachment = ObjectPrefix(1, 0);
    AppendShortString(attachment, "f");
    AppendU32(attachment, 0xFFFFFFF0); // far more than the input holds: refused before allocation
    Append(attachment, {1, 2, 3});
    const SLoadOutcome data = LoadElement<CRtfObjectInfo>(attachment, 100);
    EXPECT_EQ(data.result, 2);
    EXPECT_EQ(data.messages,
              One(u"Error: Cannot load Rich Text Attachment object, object size is too small in "
                  u"storage file/location"));
}

TEST(RichTextStorage, UnknownObjectTypeFailsLoadAndSave)
{
    const SLoadOutcome load = LoadElement<CRtfObjectInfo>(ObjectPrefix(2, 0), 100);
    EXPECT_EQ(load.result, 2);
    EXPECT_EQ(load.messages,
              One(u"Error: Cannot load Rich Text Attachment object, unsupported Object Typesize "
                  u"is too small in storage file/location"));

    CRichTextLogCapture log;
    CRichTextDocument document;
    CRtfTextLine line(u"\x14");
    line.AddObject(CRtfObjectInfo(5, 0));
    document.AppendLine(line);
    CArchiveWriter out;
    EXPECT_EQ(document.Serialize(out), 2);
    EXPECT_EQ(log.TakeMessages(), One(u"Error: Cannot save Rich Text Attachment object, unsupported Object "
                                      u"Typesize is too small in storage file/location"));
}

TEST(RichTextStorage, BadBitmapHeadersFailTheObject)
{
    const auto withHeaderByte = [](size_t offset, uint8_t value)
    {
        Bytes packed = TinyPackedBitmap();
        packed[offset] = value;
        Bytes object = ObjectPrefix(0, 0);
        AppendU32(object, static_cast<uint32_t>(packed.size()));
        object.insert(object.end(), packed.begin(), packed.end());
        return object;
    };
    // Header size 41, width 0, height 0, two planes, 0 and 49 bits per pixel.
    const std::pair<size_t, uint8_t> breakages[] = {{0, 41}, {4, 0}, {8, 0}, {12, 2}, {14, 0}, {14, 49}};
    for (const auto& [offset, value] : breakages)
    {
        const SLoadOutcome outcome = LoadElement<CRtfObjectInfo>(withHeaderByte(offset, value), 100);
        EXPECT_EQ(outcome.result, 2) << offset;
        EXPECT_EQ(outcome.messages,
                  One(u"Error: General exception caught on loading Rich Text Attachment object"));
    }
    EXPECT_EQ(LoadElement<CRtfObjectInfo>(withHeaderByte(14, 48), 100).result, 0);

    Bytes truncated = ObjectPrefix(0, 0);
    AppendU32(truncated, 1000);
    truncated.resize(truncated.size() + 60, 0);
    const SLoadOutcome shortPacked = LoadElement<CRtfObjectInfo>(truncated, 100);
    EXPECT_EQ(shortPacked.result, 2);
    EXPECT_EQ(shortPacked.messages,
              One(u"Error: [on loading serialized deviceDependantBitmap] "
                  u"deviceDependantBitmap size is incorrect (expected size = 1000, actual "
                  u"size = 60)."));
}

TEST(RichTextStorage, OlderBitmapLayoutGetsWhiteColourTable)
{
    // A 3x2 4-bit bitmap: rows of 4 bytes, a 16-entry colour table that the old layout lacks.
    Bytes header;
    AppendU32(header, 40);
    AppendU32(header, 3);
    AppendU32(header, 2);
    Append(header, {1, 0, 4, 0});
    header.resize(40, 0);
    Bytes stored = header;
    const Bytes rows = {1, 2, 3, 4, 5, 6, 7, 8};
    stored.insert(stored.end(), rows.begin(), rows.end());

    CRichTextLogCapture log;
    CDIBitmap bitmap;
    CArchiveReader in(stored);
    ASSERT_EQ(bitmap.Serialize(in), CDIBitmap::ELoadResult::Loaded);
    Bytes expected = header;
    expected.resize(40 + 64, 0xFF);
    expected.insert(expected.end(), rows.begin(), rows.end());
    EXPECT_EQ(bitmap.Packed(), expected);

    CArchiveReader shortHeader(header.data(), 20);
    EXPECT_EQ(CDIBitmap().Serialize(shortHeader), CDIBitmap::ELoadResult::FailedWithMessage);
    CArchiveReader shortRows(stored.data(), stored.size() - 1);
    EXPECT_EQ(CDIBitmap().Serialize(shortRows), CDIBitmap::ELoadResult::FailedWithMessage);
    EXPECT_EQ(
        log.TakeMessages(),
        (std::vector<std::u16string>{
            u"Error: [on loading serialized deviceDependantBitmap X2] header size is incorrect (expected "
            u"size = 36, actual size = 16).",
            u"Error: [on loading serialized deviceDependantBitmap] deviceDependantBitmap bits data size is "
            u"incorrect (expected size = 8, actual size = 7)."}));

    // A hostile old header asking for terabytes is refused before allocating.
    Bytes huge;
    AppendU32(huge, 40);
    AppendU32(huge, 0x7FFFFFFF);
    AppendU32(huge, 0x7FFFFFFF);
    Append(huge, {1, 0, 48, 0});
    huge.resize(40, 0);
    CArchiveReader hugeIn(huge);
    EXPECT_EQ(CDIBitmap().Serialize(hugeIn), CDIBitmap::ELoadResult::FailedWithMessage);
}

TEST(RichTextStorage, EveryTruncationFailsWithExactlyOneMessage)
{
    std::mt19937 random(99);
    CRichTextDocument document;
    while (document.LineCount() < 3)
        document = MakeRandomDocument(random);
    const Bytes bytes = SaveDocument(document);
    CRichTextLogCapture log;
    for (size_t size = 0; size < bytes.size(); ++size)
    {
        CRichTextDocument loaded;
        CArchiveReader in(bytes.data(), size);
        ASSERT_EQ(loaded.Serialize(in), 2) << size;
        ASSERT_EQ(log.TakeMessages().size(), 1u) << size;
    }
}

TEST(RichTextStorage, StoredSizeOf41IsThePackedLayoutAndShortPixelsAreReported)
{
    // 41 bytes: a valid header for a 1x1 1-bit picture (which needs 52) and one byte more.
    Bytes stored;
    AppendU32(stored, 41);
    Bytes packed;
    AppendU32(packed, 40);
    AppendU32(packed, 1);
    AppendU32(packed, 1);
    Append(packed, {1, 0, 1, 0});
    packed.resize(41, 0);
    stored.insert(stored.end(), packed.begin(), packed.end());
    CDIBitmap bitmap;
    CArchiveReader in(stored);
    ASSERT_EQ(bitmap.Serialize(in), CDIBitmap::ELoadResult::Loaded);
    EXPECT_EQ(bitmap.Packed(), packed);
    EXPECT_FALSE(bitmap.HasAllPixels());

    packed.resize(52, 0);
    ASSERT_TRUE(bitmap.SetPacked(packed));
    EXPECT_TRUE(bitmap.HasAllPixels());
    EXPECT_FALSE(CDIBitmap().HasAllPixels());
}
