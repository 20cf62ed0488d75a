// The data center as an import target (all or nothing, one save) and stored notes exported
// without staying in memory.
#include "DataCenterTestSupport.h"

#include "Document/DBFolder.h"
#include "Document/DBNote.h"
#include "Document/Export/ItemExporter.h"

#include <gtest/gtest.h>

#include <functional>

namespace
{
std::vector<SImportItem> SomeItems()
{
    std::vector<SImportItem> items;
    SImportItem folder = SImportItem::Folder(u"Imported");
    CRichTextDocument text;
    text.BuildFromPlainText(u"hello\r\nw\u00f6rld");
    folder.children.push_back(SImportItem::Note(u"Greeting", text));
    folder.children.push_back(SImportItem::Folder(u"Empty"));
    items.push_back(std::move(folder));
    items.push_back(SImportItem::Note(u"Loose", CRichTextDocument()));
    return items;
}

std::u16string Outline(const CItem& item)
{
    const auto* folder = dynamic_cast<const CFolderBase*>(&item);
    if (!folder)
        return item.GetCaption();
    std::u16string text = item.GetCaption() + u"[";
    for (size_t i = 0; i < folder->GetChildCount(); ++i)
        text += (i > 0 ? u"," : u"") + Outline(*folder->GetChild(i));
    return text + u"]";
}

void VisitNotes(CItem& item, const std::function<void(CDBNote&)>& visit)
{
    if (auto* note = dynamic_cast<CDBNote*>(&item))
        visit(*note);
    else if (auto* folder = dynamic_cast<CFolderBase*>(&item))
        for (size_t i = 0; i < folder->GetChildCount(); ++i)
            VisitNotes(*folder->GetChild(i), visit);
}
} // namespace

TEST(DataCenterImport, ItemsAreStoredInOneSaveAndSurviveReopening)
{
    SDataCenterFixture f;
    ASSERT_TRUE(f.center.CreateDocument(f.Path));
    const size_t before = f.center.GetRoot()->GetChildCount();
    std::vector<SImportItem> items = SomeItems();
    const int flushes = f.fs.flushes;
    ASSERT_TRUE(f.center.AddItems(*f.center.GetRoot(), items));
    EXPECT_EQ(f.fs.flushes, flushes + 1);
    f.center.CloseDocument();

    ASSERT_TRUE(f.center.OpenDocument(f.Path));
    CDBFolder& root = *f.center.GetRoot();
    ASSERT_EQ(root.GetChildCount(), before + 2);
    EXPECT_EQ(Outline(*root.GetChild(before)), u"Imported[Greeting,Empty[]]");
    auto& greeting = static_cast<CDBNote&>(*static_cast<CFolderBase&>(*root.GetChild(before)).GetChild(0));
    std::u16string plain;
    ASSERT_TRUE(greeting.GetPlainText(plain));
    EXPECT_EQ(plain, u"hello\r\nw\u00f6rld");
    EXPECT_EQ(root.GetChild(before + 1)->GetCaption(), u"Loose");
}

TEST(DataCenterImport, AFailedSaveTakesEverythingBack)
{
    SDataCenterFixture f;
    ASSERT_TRUE(f.center.CreateDocument(f.Path));
    const std::u16string outline = Outline(*f.center.GetRoot());
    for (const long long writes : {0LL, 2LL, 5LL, 9LL})
    {
        std::vector<SImportItem> items = SomeItems();
        f.fs.Faults().failWriteAfter = writes;
        EXPECT_FALSE(f.center.AddItems(*f.center.GetRoot(), items)) << writes;
        f.fs.Faults().failWriteAfter = -1;
        EXPECT_EQ(Outline(*f.center.GetRoot()), outline) << writes;
    }
    f.center.CloseDocument();
    ASSERT_TRUE(f.center.OpenDocument(f.Path));
    EXPECT_EQ(Outline(*f.center.GetRoot()), outline);
}

TEST(DataCenterExport, StoredNotesAreReadOneAtATimeAndLeftInStorage)
{
    SDataCenterFixture f;
    ASSERT_TRUE(f.center.CreateDocument(f.Path));
    std::vector<SImportItem> items = SomeItems();
    ASSERT_TRUE(f.center.AddItems(*f.center.GetRoot(), items));
    f.center.CloseDocument();
    ASSERT_TRUE(f.center.OpenDocument(f.Path));
    CDBFolder& root = *f.center.GetRoot();
    CDBNote* opened = nullptr;
    VisitNotes(root,
               [&](CDBNote& note)
               {
                   if (!opened)
                   {
                       opened = &note;
                       note.GetRichText(); // the note open in the editor
                   }
               });
    ASSERT_NE(opened, nullptr);

    CMemFileSystem out;
    CItemExporter exporter(out, SFontDescription::Make(u"Arial", 12));
    ASSERT_TRUE(exporter.ExportAsHtmlFiles(root, u"/site"));
    ASSERT_TRUE(exporter.ExportToFile(root, EExportFormat::PlainText, u"/all.txt"));
    EXPECT_NE(out.Bytes(u"/all.txt").find("hello\r\nw\xC3\xB6rld"), std::string::npos);
    EXPECT_NE(out.Bytes(u"/site/Imported/Greeting.html").find("hello"), std::string::npos);
    size_t loaded = 0;
    VisitNotes(root, [&](CDBNote& note) { loaded += note.IsTextLoaded() ? 1 : 0; });
    EXPECT_EQ(loaded, 1u);
    EXPECT_TRUE(opened->IsTextLoaded());
}
