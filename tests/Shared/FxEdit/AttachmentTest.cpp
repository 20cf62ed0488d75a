// Attachments written to the temporary folder: counter naming and names that cannot leave it.
#include "FxEditTestHost.h"
#include "Shared/FxEdit/FxEditFileNames.h"

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
