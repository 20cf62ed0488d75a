// Storage-backed folders and notes: which fields a save writes, how loading reads them back, the
// note text read only when asked, the password and document information records, and damaged
// child lists.
#include "Document/DBFolder.h"
#include "Document/DBNote.h"
#include "RecordsTestSupport.h"
#include "Shared/RichText/PlainTextWriter.h"

#include <gtest/gtest.h>

using namespace ItemRecordFormat;

namespace
{
class DBItemsTest : public ::testing::Test, public SRecordsFixture
{
protected:
    CDBNote& NewNote(CFolderBase& parent, const std::u16string& caption)
    {
        auto note = std::make_unique<CDBNote>(&records);
        note->SetId(records.CreateItemRecord(CItemRecords::NoteItemKind, false));
        note->SetCaption(caption);
        return static_cast<CDBNote&>(*parent.AddChild(std::move(note)));
    }
    std::unique_ptr<CDBFolder> NewRoot()
    {
        auto root = std::make_unique<CDBFolder>(&records);
        root->SetId(records.CreateItemRecord(CItemRecords::FolderItemKind, true));
        return root;
    }
    std::unique_ptr<CDBNote> LoadedNote(const CUInt128& id)
    {
        auto note = std::make_unique<CDBNote>(&records);
        EXPECT_TRUE(records.LoadNote(*note, id));
        return note;
    }
};

std::u16string Lines(size_t total)
{
    std::u16string text;
    while (text.size() < total)
        text += u"line of text\r\n";
    text.resize(total);
    return text;
}
} // namespace

TEST_F(DBItemsTest, RecordTypesFollowTheItemKind)
{
    const CUInt128 root = records.CreateItemRecord(CItemRecords::FolderItemKind, true);
    const CUInt128 folder = records.CreateItemRecord(CItemRecords::FolderItemKind, false, 8);
    const CUInt128 note = records.CreateItemRecord(CItemRecords::NoteItemKind, false);
    EXPECT_EQ(db.GetRecordType(root), RootFolderRecord);
    EXPECT_EQ(db.GetRecordType(folder), FolderRecord);
    EXPECT_EQ(db.GetRecordType(note), NoteRecord);
    DBRecordInfo info{};
    ASSERT_TRUE(db.GetRecordInfo(folder, info));
    EXPECT_EQ(info[0], 9u); // recycle bin: kind 8, stored as kind + 1
    log.Clear();
    EXPECT_TRUE(records.CreateItemRecord(7, false).IsZero());
    EXPECT_TRUE(log.Has(u"Error: Cannot create database record of type 7"));
    EXPECT_EQ(db.GetRecordsCount(), 3u);
}

TEST_F(DBItemsTest, NoteSaveWritesTheMaskedFieldsOnly)
{
    auto root = NewRoot();
    CDBNote& note = NewNote(*root, u"Caption");
    note.SetAttribute(1, 0x11223344);
    ASSERT_TRUE(records.SaveItem(note, CaptionField));
    EXPECT_EQ(Field(note.GetId(), CaptionField), EncodeText(u"Caption"));
    EXPECT_FALSE(Has(note.GetId(), AttributesField));
    ASSERT_TRUE(records.SaveItem(note, AttributesField | AlarmsField));
    EXPECT_EQ(Field(note.GetId(), AttributesField).size(), 24u);
    EXPECT_FALSE(Has(note.GetId(), AlarmsField)); // no alarm array: nothing stored

    note.SetCaption(u"");
    ASSERT_TRUE(records.SaveItem(note, CaptionField));
    EXPECT_FALSE(Has(note.GetId(), CaptionField));
    EXPECT_EQ(LoadedNote(note.GetId())->GetCaption(), u"");

    log.Clear();
    CDBNote unsaved(&records);
    EXPECT_FALSE(records.SaveItem(unsaved, CaptionField));
    EXPECT_TRUE(log.Has(u"Error: cannot save document in to the database as it has no assigned ID"));
    CDBFolder unsavedFolder(&records);
    EXPECT_FALSE(records.SaveItem(unsavedFolder, CaptionField));
    EXPECT_TRUE(log.Has(u"Error: cannot save folder in to the database as it has no assigned ID"));
}

TEST_F(DBItemsTest, ExtendedDataIsDroppedWhenAllZero)
{
    auto root = NewRoot();
    CDBNote& note = NewNote(*root, u"n");
    note.GetExtendedData(true)->SetIcon(3);
    ASSERT_TRUE(records.SaveItem(note, AttributesField));
    EXPECT_EQ(Field(note.GetId(), AttributesField).size(), 224u);
    auto back = LoadedNote(note.GetId());
    ASSERT_NE(back->FindExtendedData(), nullptr);
    EXPECT_EQ(back->FindExtendedData()->Icon(), 3);

    note.GetExtendedData(false)->SetIcon(0);
    ASSERT_TRUE(records.SaveItem(note, AttributesField));
    EXPECT_EQ(note.FindExtendedData(), nullptr);
    EXPECT_EQ(Field(note.GetId(), AttributesField).size(), 24u);
    // Loading into an item that had extended data clears and frees it.
    ASSERT_TRUE(records.LoadNote(*back, note.GetId()));
    EXPECT_EQ(back->FindExtendedData(), nullptr);
}

TEST_F(DBItemsTest, NoteAttributeFieldQuirksOnLoad)
{
    auto root = NewRoot();
    CDBNote& note = NewNote(*root, u"n");
    ASSERT_TRUE(db.SetFieldData(note.GetId(), AttributesField, "\0\1\1", 3, 0));
    CDBNote back(&records);
    back.SetAttribute(2, 99);
    ASSERT_TRUE(records.LoadNote(back, note.GetId()));
    EXPECT_FALSE(back.IsOpen());
    EXPECT_EQ(back.GetAttribute(2), 0u);

    ASSERT_TRUE(db.DeleteField(note.GetId(), AttributesField));
    back.SetOpen(false);
    back.GetExtendedData(true)->SetIcon(1);
    log.Clear();
    ASSERT_TRUE(records.LoadNote(back, note.GetId()));
    EXPECT_TRUE(log.Has(u"Warning: Note DB record has no attribute field"));
    EXPECT_TRUE(back.IsOpen());
    EXPECT_EQ(back.FindExtendedData(), nullptr);
}

TEST_F(DBItemsTest, TextFieldsAndThePreviewThreshold)
{
    auto root = NewRoot();
    CDBNote& note = NewNote(*root, u"n");
    CRichTextDocument& text = *note.GetRichText();
    text.BuildFromPlainText(Lines(3360));
    ASSERT_EQ(ToPlainText(text).size(), 3360u);
    ASSERT_TRUE(records.SaveItem(note, RichTextField));
    EXPECT_TRUE(Has(note.GetId(), RichTextField));
    EXPECT_EQ(Field(note.GetId(), PlainTextField), EncodeText(Lines(3360)));
    EXPECT_FALSE(Has(note.GetId(), PreviewTextField));

    text.BuildFromPlainText(Lines(3361));
    ASSERT_TRUE(records.SaveItem(note, RichTextField));
    EXPECT_EQ(Field(note.GetId(), PreviewTextField), EncodeText(BuildPreview(Lines(3361))));
    std::u16string plain;
    ASSERT_TRUE(records.LoadPlainText(note.GetId(), plain));
    EXPECT_EQ(plain, Lines(3361));

    text.Clear();
    ASSERT_TRUE(records.SaveItem(note, RichTextField));
    for (uint16_t field : {RichTextField, PlainTextField, PreviewTextField})
        EXPECT_FALSE(Has(note.GetId(), field));
}

TEST_F(DBItemsTest, TextIsReadOnlyWhenTheNoteIsOpened)
{
    auto root = NewRoot();
    CDBNote& note = NewNote(*root, u"n");
    note.GetRichText()->BuildFromPlainText(u"first\r\nsecond");
    ASSERT_TRUE(records.SaveItem(note, CaptionField | RichTextField));
    const CRichTextDocument saved = *note.GetRichText();

    auto loaded = LoadedNote(note.GetId());
    EXPECT_FALSE(loaded->IsTextLoaded());
    // Saving a note that was never opened keeps its stored text.
    ASSERT_TRUE(records.SaveItem(*loaded, RichTextField | CaptionField));
    EXPECT_TRUE(Has(note.GetId(), RichTextField));
    ASSERT_NE(loaded->GetRichText(), nullptr);
    EXPECT_EQ(*loaded->GetRichText(), saved);

    // A damaged text gives no document, and the note can try again later.
    ASSERT_TRUE(db.SetFieldData(note.GetId(), RichTextField, "\x64\x00\xFF\xFF\xFF\x7F", 6, 0));
    auto damaged = LoadedNote(note.GetId());
    log.Clear();
    EXPECT_EQ(damaged->GetRichText(), nullptr);
    EXPECT_FALSE(damaged->IsTextLoaded());
    EXPECT_TRUE(log.HasText(u"Error"));
}

TEST_F(DBItemsTest, FolderFieldsAndChildren)
{
    auto root = NewRoot();
    root->SetCaption(u"Root");
    auto folder = std::make_unique<CDBFolder>(&records, false, 3);
    folder->SetId(records.CreateItemRecord(CItemRecords::FolderItemKind, false, 3));
    folder->SetCaption(u"Ideas");
    folder->SetSyncSettings({1, 2, 3});
    folder->GetExtendedData(true)->SetBackColour(0x00FF00);
    auto* ideas = static_cast<CDBFolder*>(root->AddChild(std::move(folder)));
    NewNote(*ideas, u"idea");
    const uint32_t all = CaptionField | AttributesField | ChildListField | AlarmsField | SyncSettingsField;
    ASSERT_TRUE(records.SaveItem(*ideas, all));
    ASSERT_TRUE(records.SaveItem(*ideas->GetChild(0), CaptionField | AttributesField));
    ASSERT_TRUE(records.SaveItem(*root, all));
    EXPECT_EQ(Field(ideas->GetId(), AttributesField).size(), 208u);
    EXPECT_EQ(Field(root->GetId(), ChildListField), EncodeChildList(std::vector<CUInt128>{ideas->GetId()}));

    Reopen();
    CDBFolder back(&records);
    ASSERT_TRUE(records.LoadFolder(back, root->GetId()));
    ASSERT_EQ(back.GetChildCount(), 1u);
    auto* loaded = static_cast<CDBFolder*>(back.GetChild(0));
    EXPECT_EQ(loaded->GetCaption(), u"Ideas");
    EXPECT_EQ(loaded->GetDefaultFolderKind(), 3);
    EXPECT_EQ(loaded->GetSyncSettings(), (std::vector<uint8_t>{1, 2, 3}));
    EXPECT_EQ(loaded->GetBackColour(), 0x00FF00u);
    EXPECT_TRUE(loaded->IsLoaded(EChildKind::Any));
    ASSERT_EQ(loaded->GetChildCount(), 1u);
    EXPECT_EQ(loaded->GetChild(0)->GetCaption(), u"idea");
    EXPECT_EQ(loaded->GetChild(0)->GetParent(), loaded);
    EXPECT_EQ(back.GetDefaultFolderKind(), CFolderBase::OrdinaryFolderKind);
}

TEST_F(DBItemsTest, DamagedChildListsSkipTheBadEntries)
{
    auto root = NewRoot();
    const CUInt128 info = db.CreateRecord(DocumentInfoRecord);
    const CUInt128 sub = records.CreateItemRecord(CItemRecords::FolderItemKind, false);
    const CUInt128 note = records.CreateItemRecord(CItemRecords::NoteItemKind, false);
    // root -> [missing, info record, sub, note, note again]; sub -> [root, sub] (a cycle)
    const std::vector<CUInt128> rootList = {CUInt128(12345), info, sub, note, note};
    const std::vector<CUInt128> subList = {root->GetId(), sub};
    std::vector<uint8_t> bytes = EncodeChildList(rootList);
    bytes.push_back(0xEE); // a stray byte
    ASSERT_TRUE(
        db.SetFieldData(root->GetId(), ChildListField, bytes.data(), static_cast<uint32_t>(bytes.size()), 0));
    bytes = EncodeChildList(subList);
    ASSERT_TRUE(db.SetFieldData(sub, ChildListField, bytes.data(), static_cast<uint32_t>(bytes.size()), 0));
    log.Clear();
    CDBFolder back(&records);
    ASSERT_TRUE(records.LoadFolder(back, root->GetId()));
    EXPECT_TRUE(log.Has(u"Error: Folder sub-item DB record not found."));
    EXPECT_TRUE(log.Has(u"Error: Unknown folder sub-item type found. Type = 4"));
    EXPECT_TRUE(log.Has(u"Error: Cannot load sub-note item"));
    EXPECT_TRUE(log.Has(u"Error: Cannot load sub-folder item"));
    EXPECT_TRUE(log.Has(u"Warning: folder DB record has no attribute field"));
    ASSERT_EQ(back.GetChildCount(), 2u);
    EXPECT_TRUE(back.GetChild(0)->IsKind(EItemKind::Folder));
    EXPECT_TRUE(back.GetChild(1)->IsKind(EItemKind::Note));
    EXPECT_EQ(static_cast<CFolderBase*>(back.GetChild(0))->GetChildCount(), 0u);
}

TEST_F(DBItemsTest, PasswordRules)
{
    EXPECT_FALSE(records.IsPasswordSet());
    EXPECT_TRUE(records.CheckPassword(u""));
    EXPECT_FALSE(records.CheckPassword(u"x"));
    ASSERT_TRUE(records.SetPassword(u"", u"")); // nothing to remove: no record made
    EXPECT_EQ(db.GetRecordsCountByType(PasswordRecord), 0u);

    ASSERT_TRUE(records.SetPassword(u"", u"ab"));
    EXPECT_TRUE(records.IsPasswordSet());
    const CUInt128 id = db.GetRecordIDByTypedIndex(PasswordRecord, 0);
    EXPECT_EQ(Field(id, 1), (std::vector<uint8_t>{0x5B, 0x20, 0x01, 0x00, 0x8D, 0x41, 0x00, 0x00}));
    EXPECT_TRUE(records.CheckPassword(u"ab"));
    EXPECT_FALSE(records.CheckPassword(u"ba"));
    EXPECT_TRUE(records.CheckPassword(u"")); // kept as it has always been: callers ask IsPasswordSet
    log.Clear();
    EXPECT_FALSE(records.SetPassword(u"wrong", u"new"));
    EXPECT_TRUE(log.HasText(u"Error: Cannot change DB password"));
    ASSERT_TRUE(records.SetPassword(u"ab", u"new"));
    EXPECT_EQ(db.GetRecordsCountByType(PasswordRecord), 1u);
    EXPECT_TRUE(records.CheckPassword(u"new"));

    // A damaged password record does not lock the user out.
    ASSERT_TRUE(db.SetFieldData(id, 1, "1234567", 7, 0));
    log.Clear();
    EXPECT_TRUE(records.CheckPassword(u"anything"));
    EXPECT_TRUE(log.Has(u"Error: Unable to retrieve DB security attributes."));

    ASSERT_TRUE(db.SetFieldData(id, 1, EncodePasswordHash(PasswordHash(u"new")).data(), 8, 0));
    ASSERT_TRUE(records.SetPassword(u"new", u""));
    EXPECT_FALSE(records.IsPasswordSet());
}

TEST_F(DBItemsTest, DocumentInformationUsesTheFirstTypeFourRecord)
{
    CItemRecords::DocumentInfo info{};
    for (size_t i = 0; i < info.size(); ++i)
        info[i] = static_cast<uint8_t>(i * 7);
    ASSERT_TRUE(records.SaveDocumentInfo(info));
    info[0] = 0xAA;
    ASSERT_TRUE(records.SaveDocumentInfo(info));
    EXPECT_EQ(db.GetRecordsCountByType(DocumentInfoRecord), 1u);
    Reopen();
    CItemRecords::DocumentInfo back{};
    ASSERT_TRUE(records.LoadDocumentInfo(back));
    EXPECT_EQ(back, info);
}

TEST_F(DBItemsTest, AlarmsRoundTrip)
{
    auto root = NewRoot();
    CDBNote& note = NewNote(*root, u"n");
    CAlarmInfo alarm(45000.25);
    alarm.SetText(EAlarmText::Title, u"Call back");
    note.GetAlarms(true)->Add(alarm);
    ASSERT_TRUE(records.SaveItem(note, AlarmsField));
    auto back = LoadedNote(note.GetId());
    ASSERT_NE(back->FindAlarms(), nullptr);
    EXPECT_EQ(*back->FindAlarms(), *note.FindAlarms());
}
