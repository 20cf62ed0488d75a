// Byte layouts of item record fields checked against bytes computed by hand, the preview rule and
// the password hash.
#include "Document/ItemRecordFormat.h"
#include "Document/ItemExtendedData.h"

#include <gtest/gtest.h>

using namespace ItemRecordFormat;

TEST(ItemRecordFormat, NoteAttributeBlockShortAndExtended)
{
    SNoteAttributes attributes;
    attributes.open = 1;
    attributes.words = {1, 0x11223344, 0, 0xFFFFFFFF, 7};
    const std::vector<uint8_t> expected = {1, 0, 0, 0, 1,    0,    0,    0,    0x44, 0x33, 0x22, 0x11,
                                           0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 7,    0,    0,    0};
    EXPECT_EQ(EncodeNoteAttributes(attributes, nullptr), expected);

    CItemExtendedData extended;
    extended.SetTextColour(0x0000FF);
    extended.SetIcon(5);
    const std::vector<uint8_t> block = EncodeNoteAttributes(attributes, &extended);
    ASSERT_EQ(block.size(), 224u);
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), block.begin()));
    const std::vector<uint8_t> extendedStart = {1, 0, 0, 0, 0xFF, 0, 0, 0, 0, 0, 0, 0, 5, 0, 0, 0};
    EXPECT_TRUE(std::equal(extendedStart.begin(), extendedStart.end(), block.begin() + 24));
    EXPECT_TRUE(std::all_of(block.begin() + 40, block.end(), [](uint8_t b) { return b == 0; }));

    const SNoteAttributes back = DecodeNoteAttributes(block);
    EXPECT_EQ(back.open, 1);
    EXPECT_EQ(back.words, attributes.words);
    EXPECT_EQ(FindExtendedBlock(block, NoteExtendedOffset), block.data() + 24);
    EXPECT_EQ(FindExtendedBlock(expected, NoteExtendedOffset), nullptr);
}

TEST(ItemRecordFormat, FolderAttributeBlockShortAndExtended)
{
    const SFolderAttributes flags{1, 0, 1};
    EXPECT_EQ(EncodeFolderAttributes(flags, nullptr), (std::vector<uint8_t>{1, 0, 1}));
    CItemExtendedData extended;
    extended.SetPriority(-2);
    const std::vector<uint8_t> block = EncodeFolderAttributes(flags, &extended);
    ASSERT_EQ(block.size(), 208u);
    const std::vector<uint8_t> start = {1, 0, 1, 0, 0, 0, 0, 0};
    EXPECT_TRUE(std::equal(start.begin(), start.end(), block.begin()));
    const std::vector<uint8_t> priority = {0xFE, 0xFF, 0xFF, 0xFF}; // at 8 + 16
    EXPECT_TRUE(std::equal(priority.begin(), priority.end(), block.begin() + 24));
    EXPECT_EQ(FindExtendedBlock(block, FolderExtendedOffset), block.data() + 8);
}

TEST(ItemRecordFormat, ShortAttributeBlocksKeepDefaults)
{
    // A note attribute field of 3 bytes (as a folder writes it) gives five zero words.
    const std::vector<uint8_t> folderLike = {0, 1, 1};
    const SNoteAttributes note = DecodeNoteAttributes(folderLike);
    EXPECT_EQ(note.open, 0);
    EXPECT_EQ(note.words, (std::array<uint32_t, 5>{}));
    const SFolderAttributes folder = DecodeFolderAttributes(std::vector<uint8_t>{1});
    EXPECT_EQ(folder.notesLoaded, 1);
    EXPECT_EQ(folder.foldersLoaded, 0);
    EXPECT_EQ(folder.open, 1);
    EXPECT_EQ(FindExtendedBlock(std::vector<uint8_t>(223, 1), NoteExtendedOffset), nullptr);
}

TEST(ItemRecordFormat, TextsAndChildLists)
{
    EXPECT_EQ(EncodeText(u"A\u00E9"), (std::vector<uint8_t>{0x41, 0, 0xE9, 0, 0, 0}));
    EXPECT_EQ(DecodeText(EncodeText(u"caption")), u"caption");
    EXPECT_EQ(DecodeText(std::vector<uint8_t>{0x41, 0, 0x42}), u"A"); // odd tail ignored
    EXPECT_EQ(DecodeText(std::vector<uint8_t>{0x41, 0, 0, 0, 0x42, 0}), u"A");
    // Units are tested in blocks: a zero unit at every place of a block and beyond, also with a
    // zero high or low byte in the units before it (U+0100 and U+0041), and at odd addresses.
    for (size_t length = 0; length < 40; ++length)
        for (size_t end = 0; end <= length; ++end)
        {
            std::u16string text;
            for (size_t i = 0; i < length; ++i)
                text += i == end ? u'\0' : (i % 2 ? u'\u0100' : static_cast<char16_t>(u'A' + i % 26));
            std::vector<uint8_t> bytes(1, 0xEE);
            for (char16_t unit : text)
            {
                bytes.push_back(static_cast<uint8_t>(unit));
                bytes.push_back(static_cast<uint8_t>(unit >> 8));
            }
            const std::span<const uint8_t> stored(bytes.data() + 1, bytes.size() - 1);
            std::u16string out(length + 1, u'#');
            const size_t units = DecodeTextInto(stored, out.data());
            ASSERT_EQ(units, std::min(end, length)) << length;
            EXPECT_EQ(out.substr(0, units), text.substr(0, units));
            EXPECT_EQ(out[units], units < length ? u'#' : out[units]) << "wrote past the first zero unit";
            EXPECT_EQ(DecodeText(stored), text.substr(0, units));
        }

    const CUInt128 ids[] = {CUInt128(1), CUInt128(0x0102030405060708ull, 0x090A0B0C0D0E0F10ull)};
    std::vector<uint8_t> list = EncodeChildList(ids);
    const std::vector<uint8_t> expected = {0, 0, 0,    0,    0,    0, 0,    0,    0,    0,   0,
                                           0, 1, 0,    0,    0,    4, 3,    2,    1,    8,   7,
                                           6, 5, 0x0C, 0x0B, 0x0A, 9, 0x10, 0x0F, 0x0E, 0x0D};
    EXPECT_EQ(list, expected);
    list.resize(list.size() + 15, 0xAA); // a remainder that is not a whole ID is ignored
    EXPECT_EQ(DecodeChildList(list), std::vector<CUInt128>(std::begin(ids), std::end(ids)));
    EXPECT_TRUE(DecodeChildList({}).empty());
}

TEST(ItemRecordFormat, PreviewCutsLinesAtSixtyCharacters)
{
    const std::u16string longLine(200, u'a');
    EXPECT_EQ(BuildPreview(longLine), std::u16string(60, u'a') + u"...");
    // Later lines start with the counter at 1, which still admits 60 characters.
    EXPECT_EQ(BuildPreview(u"ab\r\n" + longLine + u"\rxy"),
              u"ab\r\n" + std::u16string(60, u'a') + u"...\r\nxy");
    EXPECT_EQ(BuildPreview(std::u16string(60, u'b')), std::u16string(60, u'b'));
    // A lone LF is an ordinary character; only CR ends a line.
    EXPECT_EQ(BuildPreview(u"a\nb"), u"a\nb");

    std::u16string manyLines;
    for (int i = 0; i < 50; ++i)
        manyLines += u"L\r\n";
    std::u16string forty;
    for (int i = 0; i < 40; ++i)
        forty += u"L\r\n";
    EXPECT_EQ(BuildPreview(manyLines), forty);
}

TEST(ItemRecordFormat, PasswordHashAndItsBytes)
{
    EXPECT_EQ(PasswordHash(u""), 0u);
    // "ab": A = (97*255-255) + (2*98*255-255) = 74205, B = 2*97 + 2*98 = 390, C = 97*1*173 = 16781.
    // low = 74205 ^ 390 = 0x1205B, high = 0 | 16781 = 0x418D.
    const uint64_t hash = PasswordHash(u"ab");
    EXPECT_EQ(hash, 0x0000418D0001205Bull);
    EXPECT_EQ(EncodePasswordHash(hash),
              (std::array<uint8_t, 8>{0x5B, 0x20, 0x01, 0x00, 0x8D, 0x41, 0x00, 0x00}));
    const auto bytes = EncodePasswordHash(hash);
    EXPECT_EQ(DecodePasswordHash(bytes), hash);
    // One unit 0xFFFF at index 200: its A term 201*65535*255-255 wraps negative in 32 bits, and
    // sign-extended it makes A negative, so the high word of A is all ones. C is 0, as the unit
    // meets the factor i = 0.
    std::u16string wide(200, u'\0');
    wide += u'\xFFFF';
    const int64_t a = -255 * 200 + static_cast<int64_t>(static_cast<int32_t>(201u * 65535u * 255u - 255u));
    const int64_t b = static_cast<int64_t>(static_cast<int32_t>(65535u * 201u));
    const uint32_t low = static_cast<uint32_t>(a) ^ static_cast<uint32_t>(b);
    const uint32_t high = static_cast<uint32_t>(static_cast<uint64_t>(a) >> 32) ^
                          static_cast<uint32_t>(static_cast<uint64_t>(b) >> 32);
    EXPECT_EQ(high, 0xFFFFFFFFu);
    EXPECT_EQ(PasswordHash(wide), static_cast<uint64_t>(high) << 32 | low);
}
