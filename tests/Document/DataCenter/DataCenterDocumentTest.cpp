// Creating a document, editing it through the data center, and reading it back after a reopen;
// each edit is written as one group with a single flush at its end.
#include "DataCenterTestSupport.h"
#include "Document/DBFolder.h"
#include "Document/DBNote.h"
#include "Document/DocumentIdentity.h"
#include "Shared/DataFile/DataFileFormat.h"
#include "Shared/RichText/PlainTextWriter.h"

#include <gtest/gtest.h>

namespace
{
class DataCenterDocument : public ::testing::Test, public SDataCenterFixture
{
protected:
    void SetUp() override { ASSERT_TRUE(center.CreateDocument(Path)); }
    CFolderBase& Root() { return *center.GetRoot(); }
    CFolderBase& DefaultFolder(int kind) { return static_cast<CFolderBase&>(*Root().GetChild(kind)); }
    void Reopen()
    {
        center.CloseDocument();
        ASSERT_TRUE(center.OpenDocument(Path));
    }
    // Every item as "depth kind caption" lines, for comparing whole trees.
    static void Describe(const CItem& item, std::u16string& out)
    {
        out += std::u16string(item.GetDepth(), u' ') + (item.IsKind(EItemKind::Folder) ? u"F " : u"N ") +
               item.GetCaption() + u"\n";
        if (auto* folder = dynamic_cast<const CFolderBase*>(&item))
            for (size_t i = 0; i < folder->GetChildCount(); ++i)
                Describe(*folder->GetChild(i), out);
    }
    std::u16string Describe()
    {
        std::u16string out;
        Describe(Root(), out);
        return out;
    }
    static std::u16string TextOf(CItem& item)
    {
        return ToPlainText(*static_cast<CDBNote&>(item).GetRichText());
    }
};

TEST_F(DataCenterDocument, NewFileCarriesTheIdentityAndTheDefaultTree)
{
    EXPECT_TRUE(Logged(u"Generating new tree data..."));
    EXPECT_TRUE(Logged(u"End of deafult tree data generation"));
    CDataFile& file = center.GetDatabase().GetDataFile();
    EXPECT_EQ(file.GetCreatorSignature(), u"Quillarium Organizer [https://quillarium.org]");
    // File type little-endian at its header offset: "eert" in file order; version 7000 = 0x1B58.
    const std::string& bytes = fs.Bytes(Path);
    EXPECT_EQ(bytes.substr(DataFileFormat::OffFileType, 4), "eert");
    EXPECT_EQ(bytes.substr(DataFileFormat::OffFileVersion, 4), std::string("\x58\x1B\x00\x00", 4));

    Reopen();
    ASSERT_EQ(Root().GetChildCount(), 9u);
    for (int kind = 0; kind < 9; ++kind)
    {
        auto& folder = DefaultFolder(kind);
        EXPECT_EQ(folder.GetDefaultFolderKind(), kind);
        EXPECT_EQ(folder.GetCaption(), u"Folder " + std::u16string(1, char16_t(u'0' + kind)));
    }
    ASSERT_EQ(DefaultFolder(0).GetChildCount(), 1u);
    EXPECT_EQ(DefaultFolder(0).GetChild(0)->GetCaption(), u"Sample WELCOME");
    EXPECT_EQ(TextOf(*DefaultFolder(0).GetChild(0)), u"First line of WELCOME\r\nSecond line");
    EXPECT_EQ(DefaultFolder(1).GetChild(0)->GetCaption(), u"Sample TASK");
    EXPECT_EQ(DefaultFolder(3).GetChild(0)->GetCaption(), u"Sample IDEA");
    EXPECT_TRUE(box.shown.empty());
}

TEST_F(DataCenterDocument, EditsSurviveAReopen)
{
    CDBFolder* projects = center.AddFolder(DefaultFolder(0), u"Projects");
    ASSERT_NE(projects, nullptr);
    CDBNote* plan = center.AddNote(*projects, u"Plan", u"step one\nstep two");
    ASSERT_NE(plan, nullptr);
    ASSERT_NE(center.AddNote(*projects, u"Budget \u00E4\u4E2D", u"42"), nullptr);
    CDBFolder* archive = center.AddFolder(*projects, u"Archive");
    ASSERT_NE(archive, nullptr);
    ASSERT_TRUE(center.MoveItem(*plan, *archive));
    plan->SetCaption(u"Old plan");
    plan->GetRichText()->BuildFromPlainText(u"rewritten");
    center.MarkChanged(*plan, ItemRecordFormat::RichTextField);
    ASSERT_TRUE(center.Save());
    EXPECT_FALSE(center.HasPendingChanges());
    const std::u16string before = Describe();

    Reopen();
    EXPECT_EQ(Describe(), before);
    CFolderBase& reloaded = static_cast<CFolderBase&>(*DefaultFolder(0).GetChild(1));
    CItem& archived = *static_cast<CFolderBase&>(*reloaded.GetChild(1)).GetChild(0);
    EXPECT_EQ(archived.GetCaption(), u"Old plan");
    EXPECT_EQ(TextOf(archived), u"rewritten");
}

TEST_F(DataCenterDocument, ChangesWaitForTheSaveAndCloseWritesThem)
{
    DefaultFolder(2).SetCaption(u"People");
    DefaultFolder(4).SetOpen(false);
    EXPECT_TRUE(center.HasPendingChanges());
    center.CloseDocument(); // saves
    ASSERT_TRUE(center.OpenDocument(Path));
    EXPECT_EQ(DefaultFolder(2).GetCaption(), u"People");
    EXPECT_FALSE(DefaultFolder(4).IsOpen());
}

TEST_F(DataCenterDocument, EachSaveFlushesOnce)
{
    fs.flushes = 0;
    ASSERT_NE(center.AddNote(DefaultFolder(0), u"one", u"text"), nullptr);
    EXPECT_EQ(fs.flushes, 1);
    fs.flushes = 0;
    for (int kind = 0; kind < 9; ++kind)
        DefaultFolder(kind).SetCaption(u"renamed");
    ASSERT_TRUE(center.Save());
    EXPECT_EQ(fs.flushes, 1);
    fs.flushes = 0;
    ASSERT_TRUE(center.Save()); // nothing pending: no write, no flush
    EXPECT_EQ(fs.flushes, 0);
}

TEST_F(DataCenterDocument, DeletingRemovesTheRecordsOfTheSubtree)
{
    const uint32_t recordsBefore = center.GetDatabase().GetRecordsCount();
    CDBFolder* folder = center.AddFolder(DefaultFolder(3), u"Temporary");
    ASSERT_NE(folder, nullptr);
    ASSERT_NE(center.AddNote(*folder, u"a", u"x"), nullptr);
    ASSERT_NE(center.AddFolder(*folder, u"b"), nullptr);
    EXPECT_EQ(center.GetDatabase().GetRecordsCount(), recordsBefore + 3);
    ASSERT_TRUE(center.DeleteItem(*folder));
    EXPECT_EQ(center.GetDatabase().GetRecordsCount(), recordsBefore);
    Reopen();
    EXPECT_EQ(DefaultFolder(3).GetChildCount(), 1u);
    EXPECT_TRUE(center.GetDatabase().GetDataFile().IsCacheConsistentWithFile());
}

TEST_F(DataCenterDocument, DefaultFoldersAndFoldersHoldingThemAreNotDeleted)
{
    EXPECT_FALSE(center.DeleteItem(DefaultFolder(8)));
    ASSERT_EQ(box.shown.size(), 1u);
    EXPECT_EQ(box.shown[0], u"[ERR_CANNOT_DELETE_DEFAULT_FOLDERS]");
    CDBFolder* holder = center.AddFolder(DefaultFolder(0), u"holder");
    ASSERT_NE(holder, nullptr);
    ASSERT_TRUE(center.MoveItem(DefaultFolder(7), *holder));
    EXPECT_FALSE(center.DeleteItem(*holder));
    Reopen();
    EXPECT_EQ(Root().GetChildCount(), 8u);
}

TEST_F(DataCenterDocument, SaveAsContinuesInTheNewFile)
{
    ASSERT_NE(center.AddNote(DefaultFolder(0), u"before", u""), nullptr);
    ASSERT_TRUE(center.SaveAs(u"/docs/Copy.ddb"));
    EXPECT_EQ(center.GetFilePath(), u"/docs/Copy.ddb");
    ASSERT_NE(center.AddNote(DefaultFolder(0), u"after", u""), nullptr);
    center.CloseDocument();

    ASSERT_TRUE(center.OpenDocument(Path));
    EXPECT_EQ(DefaultFolder(0).GetChildCount(), 2u);
    ASSERT_TRUE(center.OpenDocument(u"/docs/Copy.ddb"));
    EXPECT_EQ(DefaultFolder(0).GetChildCount(), 3u);
}

TEST_F(DataCenterDocument, SaveAsOverAnExistingFileReplacesIt)
{
    fs.Bytes(u"/docs/Target.ddb") = "old contents";
    ASSERT_TRUE(center.SaveAs(u"/docs/Target.ddb"));
    center.CloseDocument();
    ASSERT_TRUE(center.OpenDocument(u"/docs/Target.ddb"));
    EXPECT_EQ(Root().GetChildCount(), 9u);
}

TEST_F(DataCenterDocument, SaveAsFailuresKeepTheDocumentOpen)
{
    int cause = 0;
    ASSERT_TRUE(fs.CreateFolder(u"/docs/taken", cause));
    ClearLog();
    EXPECT_FALSE(center.SaveAs(u"/docs/taken"));
    EXPECT_TRUE(Logged(u"Error: Cannot delete already excisting file with same name - /docs/taken."));
    ASSERT_EQ(box.shown.size(), 1u);
    EXPECT_EQ(box.shown[0], u"[ERR_CANNOT_DELETE_FILE] /docs/taken");

    fs.Faults().failWriteAfter = 0;
    EXPECT_FALSE(center.SaveAs(u"/docs/Copy.ddb"));
    fs.Faults().failWriteAfter = -1;
    EXPECT_TRUE(Logged(u"Error: Cannot save tree storage file as /docs/Copy.ddb."));
    ASSERT_EQ(box.shown.size(), 2u);
    EXPECT_EQ(box.shown[1], u"[ERR_CANNOT_SAVE_FILE] /docs/Copy.ddb");
    EXPECT_TRUE(center.IsOpen());
    EXPECT_EQ(center.GetFilePath(), Path);
    ASSERT_NE(center.AddNote(DefaultFolder(0), u"still works", u""), nullptr);
}

TEST_F(DataCenterDocument, CreatingOverAnUnwritableDiskFails)
{
    center.CloseDocument();
    fs.Faults().failWriteAfter = 0;
    ClearLog();
    EXPECT_FALSE(center.CreateDocument(u"/docs/New.ddb"));
    fs.Faults().failWriteAfter = -1;
    EXPECT_TRUE(Logged(u"Error: Cannot create tree storage file /docs/New.ddb."));
    ASSERT_EQ(box.shown.size(), 1u);
    EXPECT_EQ(box.shown[0], u"[ERR_CANNOT_CREATE_FILE] /docs/New.ddb");
    EXPECT_FALSE(center.IsOpen());
}
} // namespace
