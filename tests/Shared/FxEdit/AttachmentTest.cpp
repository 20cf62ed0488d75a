// Attachments written to the temporary folder: counter naming and names that cannot leave it;
// pictures inserted from image files.
#include "FxEditTestHost.h"
#include "Shared/FxEdit/FxEditFileNames.h"
#include "Shared/FxEdit/PictureFile.h"

#include <gtest/gtest.h>

namespace
{
CRtfObjectInfo Attachment(std::u16string name, std::string_view bytes)
{
    CRtfObjectInfo attachment(CRtfObjectInfo::AttachmentType, 0);
    attachment.SetFileName(std::move(name));
    CHugeMemory data(4); // small chunks: the file is written chunk by chunk
    data.Append(std::span<const uint8_t>(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()));
    attachment.SetData(std::move(data));
    return attachment;
}
} // namespace

TEST(FxEditFileNames, HostileNamesStayInsideTheFolder)
{
    EXPECT_EQ(SanitisedAttachmentName(u"report.pdf"), u"report.pdf");
    EXPECT_EQ(SanitisedAttachmentName(u"../../etc/passwd"), u"passwd");
    EXPECT_EQ(SanitisedAttachmentName(u"C:\\Windows\\evil.exe"), u"evil.exe");
    EXPECT_EQ(SanitisedAttachmentName(u".."), u"attachment");
    EXPECT_EQ(SanitisedAttachmentName(u""), u"attachment");
    EXPECT_EQ(SanitisedAttachmentName(u"dir/"), u"attachment");
    EXPECT_EQ(SanitisedAttachmentName(u"..hidden"), u"hidden");
    EXPECT_EQ(SanitisedAttachmentName(u"a:b*c?\x01.txt"), u"abc.txt");
    const std::u16string longName = SanitisedAttachmentName(std::u16string(500, u'n') + u".doc");
    EXPECT_EQ(longName.size(), 200u);
    EXPECT_TRUE(longName.ends_with(u".doc"));
}

TEST(FxEditFileNames, TakenNamesGetACounter)
{
    std::vector<std::u16string> taken = {u"/tmp/a.txt", u"/tmp/a[1].txt", u"/tmp/b"};
    auto exists = [&](const std::u16string& path)
    { return std::find(taken.begin(), taken.end(), path) != taken.end(); };
    EXPECT_EQ(FreeTempFilePath(u"/tmp/", u"a.txt", exists), u"/tmp/a[2].txt");
    EXPECT_EQ(FreeTempFilePath(u"/tmp/", u"c.txt", exists), u"/tmp/c.txt");
    EXPECT_EQ(FreeTempFilePath(u"/tmp/", u"b", exists), u"/tmp/b[1]");
    EXPECT_EQ(FreeTempFilePath(u"/tmp/", u"x", [](const std::u16string&) { return true; }), u"");
}

TEST(FxEditAttachments, OpeningWritesTheDataAndLaunchesIt)
{
    CFxEditTestHost host;
    CFxEdit edit(host, CFxEdit::ModeRich, true);
    edit.InsertObject(Attachment(u"../notes.txt", "hello attachment"));
    edit.InsertObject(Attachment(u"notes.txt", "second"));
    EXPECT_EQ(edit.Line(0).Objects().size(), 2u);
    std::u16string label;
    edit.CanUndo(&label);
    EXPECT_EQ(label, u"Undo Insertion");

    edit.SetCaret({0, 0});
    ASSERT_NE(edit.ObjectAtCaret(), nullptr);
    ASSERT_TRUE(edit.OpenAttachment({0, 0}));
    ASSERT_TRUE(edit.OpenAttachment({0, 1}));
    ASSERT_EQ(host.opened, (std::vector<std::u16string>{u"/tmp/notes.txt", u"/tmp/notes[1].txt"}));
    EXPECT_EQ(host.files.Bytes(u"/tmp/notes.txt"), "hello attachment");
    EXPECT_EQ(host.files.Bytes(u"/tmp/notes[1].txt"), "second");
    EXPECT_FALSE(edit.OpenAttachment({0, 2})); // no object there

    host.shellOpenWorks = false;
    EXPECT_FALSE(edit.OpenAttachment({0, 0}));
    ASSERT_EQ(host.shownMessages.size(), 1u);
    EXPECT_EQ(host.shownMessages.back(), u"Cannot launch ../notes.txt file.");

    host.fileNameAnswer = u"/saved/copy.txt";
    ASSERT_TRUE(edit.SaveAttachmentAs({0, 1}));
    EXPECT_EQ(host.files.Bytes(u"/saved/copy.txt"), "second");

    // Undo takes the objects out again; redo brings them back with their data.
    edit.Undo();
    edit.Undo();
    EXPECT_TRUE(edit.Line(0).Objects().empty());
    edit.Redo();
    ASSERT_EQ(edit.Line(0).Objects().size(), 1u);
    EXPECT_EQ(edit.Line(0).Objects()[0].DataSize(), 16u);
}

namespace
{
void PutU32(std::string& bytes, size_t at, uint32_t value)
{
    for (size_t i = 0; i < 4; ++i)
        bytes[at + i] = static_cast<char>((value >> (8 * i)) & 0xFF);
}

// A .bmp file: file header, an info header of `infoSize` bytes, `between` (masks or palette) and
// the rows.
std::string BmpFile(uint32_t infoSize, int32_t width, int32_t height, uint16_t bits, uint32_t compression,
                    uint32_t clrUsed, const std::string& between, const std::string& rows)
{
    std::string bytes(14 + infoSize, '\0');
    bytes[0] = 'B';
    bytes[1] = 'M';
    PutU32(bytes, 10, static_cast<uint32_t>(14 + infoSize + between.size()));
    PutU32(bytes, 14, infoSize);
    PutU32(bytes, 18, static_cast<uint32_t>(width));
    PutU32(bytes, 22, static_cast<uint32_t>(height));
    bytes[26] = 1;
    bytes[28] = static_cast<char>(bits);
    PutU32(bytes, 30, compression);
    PutU32(bytes, 46, clrUsed);
    bytes += between;
    bytes += rows;
    PutU32(bytes, 2, static_cast<uint32_t>(bytes.size()));
    return bytes;
}

std::string Packed(const CDIBitmap& bitmap)
{
    return std::string(bitmap.Packed().begin(), bitmap.Packed().end());
}
} // namespace

TEST(FxEditPictures, BitmapFilesBecomeThePackedForm)
{
    std::u16string failure;
    // 24 bits, two pixels in one row padded to 8 bytes: taken as it is after the file header.
    const std::string rows24("\x01\x02\x03\x04\x05\x06\x00\x00", 8);
    const std::string plain = BmpFile(40, 2, 1, 24, 0, 0, "", rows24);
    const auto picture = PictureFromImageFile(plain, failure);
    ASSERT_TRUE(picture.has_value()) << std::string(failure.begin(), failure.end());
    EXPECT_EQ(Packed(*picture), plain.substr(14));

    // A 108-byte header with a two-colour palette of an 8-bit picture: the stored form has the
    // 40-byte header, all 256 palette entries and the rows.
    const std::string palette("\x10\x20\x30\x00\x40\x50\x60\x00", 8);
    const std::string rows8("\x01\x00\x00\x00", 4);
    const std::string v4 = BmpFile(108, 1, 1, 8, 0, 2, palette, rows8);
    const auto paletted = PictureFromImageFile(v4, failure);
    ASSERT_TRUE(paletted.has_value());
    std::string expected = v4.substr(14, 40);
    PutU32(expected, 0, 40);
    PutU32(expected, 32, 0); // every entry is stored
    expected += palette + std::string(254 * 4, '\0') + rows8;
    EXPECT_EQ(Packed(*paletted), expected);
    EXPECT_TRUE(paletted->HasAllPixels());

    // Bit fields: a long header carries the masks in its fields 40 to 52; they follow the short
    // header in the stored form.
    std::string v5 = BmpFile(124, 2, 1, 16, 3, 0, "", std::string("\x1F\x00\xE0\x03", 4));
    PutU32(v5, 14 + 40, 0x7C00);
    PutU32(v5, 14 + 44, 0x03E0);
    PutU32(v5, 14 + 48, 0x001F);
    const auto fields = PictureFromImageFile(v5, failure);
    ASSERT_TRUE(fields.has_value());
    EXPECT_EQ(Packed(*fields).substr(40), v5.substr(14 + 40, 12) + std::string("\x1F\x00\xE0\x03", 4));

    // Damaged and foreign files fail with a reason, never read past the end.
    EXPECT_FALSE(PictureFromImageFile(plain.substr(0, plain.size() - 1), failure));
    EXPECT_FALSE(PictureFromImageFile(plain.substr(0, 30), failure));
    std::string badOffset = plain;
    PutU32(badOffset, 10, 0xFFFFFFF0u);
    EXPECT_FALSE(PictureFromImageFile(badOffset, failure));
    std::string hugeInfo = plain;
    PutU32(hugeInfo, 14, 0x7FFFFFFFu);
    EXPECT_FALSE(PictureFromImageFile(hugeInfo, failure));
    EXPECT_FALSE(PictureFromImageFile(BmpFile(40, 2, 1, 24, 1, 0, "", rows24), failure)); // RLE
    EXPECT_FALSE(PictureFromImageFile("GIF89a....", failure));
    EXPECT_EQ(failure, u"GIF pictures are not supported");
    EXPECT_FALSE(PictureFromImageFile("\xFF\xD8garbage", failure));
}

TEST(FxEditPictures, InsertedPictureAndItsRestoredSize)
{
    CFxEditTestHost host;
    host.width = 1000;
    CFxEdit edit(host, CFxEdit::ModeRich, true);
    const std::string rows24("\x01\x02\x03\x04\x05\x06\x00\x00", 8);
    host.files.Bytes(u"/pics/a.bmp") = (BmpFile(40, 2, 1, 24, 0, 0, "", rows24));
    host.files.Bytes(u"/pics/broken.bmp") = "BM";
    host.fileNameAnswer = u"/pics/broken.bmp";
    EXPECT_FALSE(edit.InsertImageFromFile());
    EXPECT_EQ(host.shownMessages, std::vector<std::u16string>{u"Cannot load the file."});
    EXPECT_FALSE(edit.CanUndo());

    host.fileNameAnswer = u"/pics/a.bmp";
    ASSERT_TRUE(edit.InsertImageFromFile());
    EXPECT_EQ(host.lastDialogCaption, u"Insert Image");
    EXPECT_EQ(host.statusTexts.back(), u"");
    ASSERT_NE(edit.Line(0).FindObject(0), nullptr);
    EXPECT_EQ(edit.Line(0).FindObject(0)->Picture()->Header().width, 2);

    // A picture shown at another size goes back to the bitmap's own.
    CRichTextDocument document;
    CRtfTextLine line(u"a\x14");
    CRtfObjectInfo picture = *edit.Line(0).FindObject(0);
    picture.SetPosition(1);
    picture.SetParam1(200);
    picture.SetParam2(100);
    line.AddObject(picture);
    document.AppendLine(line);
    edit.SetDocument(document);
    EXPECT_EQ(edit.Line(0).RowHeight(0), 100);
    edit.SetCaret({0, 0});
    EXPECT_FALSE(edit.RestoreImageSize()); // no picture there
    edit.SetCaret({0, 1});
    ASSERT_TRUE(edit.RestoreImageSize());
    EXPECT_EQ(edit.Line(0).FindObject(1)->Param1(), 0u);
    EXPECT_EQ(edit.Line(0).RowHeight(0), 16); // now one pixel high: the text's row height
    EXPECT_FALSE(edit.RestoreImageSize());    // already at its size
}
