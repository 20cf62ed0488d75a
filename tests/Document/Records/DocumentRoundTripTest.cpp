// A document of a few hundred folders and notes with captions, attributes, extended data,
// alarms, rich text and a password, saved, closed, reopened and compared item by item.
#include "Document/DBFolder.h"
#include "Document/DBNote.h"
#include "RecordsTestSupport.h"

#include <gtest/gtest.h>

#include <random>

using namespace ItemRecordFormat;

namespace
{
constexpr uint32_t FolderMask =
    CaptionField | AttributesField | ChildListField | AlarmsField | SyncSettingsField;
constexpr uint32_t NoteMask = CaptionField | AttributesField | AlarmsField | RichTextField;

class CTreeBuilder
{
public:
    CTreeBuilder(CItemRecords& records, uint32_t seed) : m_Records(records), m_Rng(seed) {}

    void Fill(CDBFolder& folder, int depth)
    {
        const int children = depth == 0 ? 12 : static_cast<int>(m_Rng() % 9);
        for (int i = 0; i < children; ++i)
        {
            if (depth < 3 && m_Rng() % 3 == 0)
                Fill(AddFolder(folder), depth + 1);
            else
                AddNote(folder);
        }
    }
    size_t Count() const { return m_Count; }

private:
    CDBFolder& AddFolder(CDBFolder& parent)
    {
        const int kind = m_Count % 37 == 0 ? static_cast<int>(m_Count % 9) : CFolderBase::OrdinaryFolderKind;
        auto folder = std::make_unique<CDBFolder>(&m_Records, false, kind);
        folder->SetId(m_Records.CreateItemRecord(CItemRecords::FolderItemKind, false, kind));
        Decorate(*folder);
        if (m_Rng() % 4 == 0)
            folder->SetSyncSettings({static_cast<uint8_t>(m_Rng()), 7, 7});
        return static_cast<CDBFolder&>(*parent.AddChild(std::move(folder)));
    }

    void AddNote(CDBFolder& parent)
    {
        auto note = std::make_unique<CDBNote>(&m_Records);
        note->SetId(m_Records.CreateItemRecord(CItemRecords::NoteItemKind, false));
        Decorate(*note);
        for (size_t i = 0; i < CNoteBase::AttributeCount; ++i)
            note->SetAttribute(i, static_cast<uint32_t>(m_Rng()));
        FillText(*note->GetRichText());
        parent.AddChild(std::move(note));
    }

    void Decorate(CItem& item)
    {
        ++m_Count;
        if (m_Count % 10 != 0) // some items keep an empty caption
            item.SetCaption(u"Item \u00E4\u4E2D " + std::u16string(m_Rng() % 40, u'x') + u"#" +
                            std::u16string(1, static_cast<char16_t>(u'A' + m_Count % 26)));
        if (m_Rng() % 3 == 0)
        {
            CItemExtendedData& extended = *item.GetExtendedData(true);
            extended.SetTextColour(static_cast<uint32_t>(m_Rng() & 0xFFFFFF));
            extended.SetTaskState(static_cast<int32_t>(m_Rng() % 5));
        }
        if (m_Rng() % 5 == 0)
            item.SetOpen(false);
        if (m_Rng() % 4 == 0)
        {
            CAlarmInfo alarm(45000.0 + m_Rng() % 1000);
            alarm.SetText(EAlarmText::Description, u"alarm " + std::u16string(m_Rng() % 20, u'z'));
            item.GetAlarms(true)->Add(alarm);
        }
    }

    void FillText(CRichTextDocument& text)
    {
        const int kind = static_cast<int>(m_Rng() % 4);
        if (kind == 0)
            return; // empty note
        std::u16string plain;
        const size_t lines = kind == 3 ? 120 : 1 + m_Rng() % 5;
        for (size_t i = 0; i < lines; ++i)
            plain += u"Line " + std::u16string(m_Rng() % 90, u'q') + u"\r\n";
        text.BuildFromPlainText(plain);
        CRtfTextBlockInfo bold(0);
        bold.SetTextColour(0x0000FF);
        text.Line(0).AddBlock(bold);
        text.Line(0).SetAlignment(static_cast<int32_t>(m_Rng() % 3));
    }

    CItemRecords& m_Records;
    std::mt19937 m_Rng;
    size_t m_Count = 0;
};

void SaveTree(CItemRecords& records, CItem& item)
{
    if (auto* folder = dynamic_cast<CFolderBase*>(&item))
    {
        for (size_t i = 0; i < folder->GetChildCount(); ++i)
            SaveTree(records, *folder->GetChild(i));
        ASSERT_TRUE(records.SaveItem(item, FolderMask));
    }
    else
        ASSERT_TRUE(records.SaveItem(item, NoteMask));
}

void ExpectSameItem(CItem& expected, CItem& actual)
{
    ASSERT_EQ(expected.GetId(), actual.GetId());
    EXPECT_EQ(expected.GetCaption(), actual.GetCaption());
    EXPECT_EQ(expected.IsOpen(), actual.IsOpen());
    ASSERT_EQ(expected.FindExtendedData() != nullptr, actual.FindExtendedData() != nullptr);
    if (expected.FindExtendedData())
    {
        EXPECT_EQ(expected.FindExtendedData()->Bytes(), actual.FindExtendedData()->Bytes());
    }
    ASSERT_EQ(expected.FindAlarms() != nullptr, actual.FindAlarms() != nullptr);
    if (expected.FindAlarms())
    {
        EXPECT_EQ(*expected.FindAlarms(), *actual.FindAlarms());
    }
}

void ExpectSameTree(CItem& expected, CItem& actual, size_t& compared)
{
    ExpectSameItem(expected, actual);
    ++compared;
    if (auto* folder = dynamic_cast<CDBFolder*>(&expected))
    {
        auto& other = dynamic_cast<CDBFolder&>(actual);
        EXPECT_EQ(folder->GetDefaultFolderKind(), other.GetDefaultFolderKind());
        EXPECT_EQ(folder->GetSyncSettings(), other.GetSyncSettings());
        EXPECT_TRUE(other.IsLoaded(EChildKind::Any));
        ASSERT_EQ(folder->GetChildCount(), other.GetChildCount());
        for (size_t i = 0; i < folder->GetChildCount(); ++i)
        {
            ASSERT_EQ(other.GetChild(i)->GetParent(), &other);
            ExpectSameTree(*folder->GetChild(i), *other.GetChild(i), compared);
        }
        return;
    }
    auto& note = dynamic_cast<CDBNote&>(expected);
    auto& other = dynamic_cast<CDBNote&>(actual);
    for (size_t i = 0; i < CNoteBase::AttributeCount; ++i)
        EXPECT_EQ(note.GetAttribute(i), other.GetAttribute(i));
    EXPECT_FALSE(other.IsTextLoaded());
    ASSERT_NE(other.GetRichText(), nullptr);
    if (note.GetRichText()->IsEmpty())
    {
        EXPECT_TRUE(other.GetRichText()->IsEmpty());
    }
    else
    {
        EXPECT_EQ(*note.GetRichText(), *other.GetRichText());
    }
}
} // namespace

TEST(DocumentRoundTrip, ATreeOfHundredsOfItemsSurvivesCloseAndReopen)
{
    SRecordsFixture doc;
    auto root = std::make_unique<CDBFolder>(&doc.records);
    root->SetId(doc.records.CreateItemRecord(CItemRecords::FolderItemKind, true));
    root->SetCaption(u"root");
    CTreeBuilder builder(doc.records, 77);
    builder.Fill(*root, 0);
    while (builder.Count() < 300)
        builder.Fill(*root, 1);
    SaveTree(doc.records, *root);
    ASSERT_TRUE(doc.records.SetPassword(u"", u"s3cret \u00DF"));
    doc.log.Clear();

    doc.db.Close(true, 0xFFFFFFFF);
    ASSERT_TRUE(doc.db.Open(SRecordsFixture::Path));
    ASSERT_EQ(doc.db.GetRecordsCountByType(RootFolderRecord), 1u);
    CDBFolder loaded(&doc.records);
    ASSERT_TRUE(doc.records.LoadFolder(loaded, doc.db.GetRecordIDByTypedIndex(RootFolderRecord, 0)));
    size_t compared = 0;
    ExpectSameTree(*root, loaded, compared);
    EXPECT_EQ(compared, builder.Count() + 1);
    EXPECT_TRUE(doc.records.IsPasswordSet());
    EXPECT_TRUE(doc.records.CheckPassword(u"s3cret \u00DF"));
    EXPECT_FALSE(doc.records.CheckPassword(u"s3cret"));
    EXPECT_FALSE(doc.log.HasText(u"Error"));
    EXPECT_FALSE(doc.log.HasText(u"Warning"));
}

TEST(DocumentRoundTrip, EditsAfterReopenAreKeptAndUnopenedTextsSurviveSaves)
{
    SRecordsFixture doc;
    auto root = std::make_unique<CDBFolder>(&doc.records);
    root->SetId(doc.records.CreateItemRecord(CItemRecords::FolderItemKind, true));
    CTreeBuilder builder(doc.records, 5);
    builder.Fill(*root, 0);
    SaveTree(doc.records, *root);
    doc.Reopen();

    CDBFolder first(&doc.records);
    ASSERT_TRUE(doc.records.LoadFolder(first, root->GetId()));
    // Save every item again without opening any note, then rename one and move another.
    SaveTree(doc.records, first);
    CItem* moved = first.GetChild(first.GetChildCount() - 1);
    CItem* renamed = first.GetChild(0);
    renamed->SetCaption(u"renamed");
    ASSERT_TRUE(doc.records.SaveItem(*renamed, CaptionField));
    auto detached = first.DetachChild(*moved);
    first.AddChild(std::move(detached), 0);
    ASSERT_TRUE(doc.records.SaveItem(first, ChildListField));
    doc.Reopen();

    CDBFolder second(&doc.records);
    ASSERT_TRUE(doc.records.LoadFolder(second, root->GetId()));
    size_t compared = 0;
    ExpectSameTree(first, second, compared);
    EXPECT_EQ(second.GetChild(1)->GetCaption(), u"renamed");
}
