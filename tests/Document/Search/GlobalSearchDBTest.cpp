// The search over a stored document: note texts come from their plain-text field and stay out of
// memory, a text changed in memory is searched as changed, and children that were not loaded are
// loaded and counted in.
#include "Document/DBFolder.h"
#include "Document/DBNote.h"
#include "Document/GlobalSearch.h"
#include "Document/ItemRecords.h"
#include "Document/MemNote.h"
#include "Shared/Base/MemFileSystem.h"
#include "Shared/Base/OleDate.h"
#include "Shared/DataFile/DBFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>

using namespace ItemRecordFormat;

namespace
{
class CStillClock : public IClock
{
public:
    OleDate NowLocal() const override { return 46000.5; }
    uint32_t TickCountMs() const override { return 1000; }
};

class GlobalSearchDBTest : public ::testing::Test
{
protected:
    GlobalSearchDBTest()
    {
        db.Create(u"/docs/search.ddb", u"Quillarium Organizer [https://quillarium.org]", 0x74726565, 7000);
        rootId = records.CreateItemRecord(CItemRecords::FolderItemKind, true);
        auto root = std::make_unique<CDBFolder>(&records);
        root->SetId(rootId);
        auto folder = std::make_unique<CDBFolder>(&records);
        folder->SetId(records.CreateItemRecord(CItemRecords::FolderItemKind, false));
        folder->SetCaption(u"Letters");
        CFolderBase& letters = static_cast<CFolderBase&>(*root->AddChild(std::move(folder)));
        StoreNote(letters, u"To Anna", u"The garden needs water");
        StoreNote(letters, u"To Ben", u"Meet at the station");
        StoreNote(*root, u"Shopping", u"water, bread\r\ncheese");
        EXPECT_TRUE(records.SaveItem(letters, CaptionField | ChildListField));
        EXPECT_TRUE(records.SaveItem(*root, ChildListField));
    }

    void StoreNote(CFolderBase& parent, const std::u16string& caption, const std::u16string& text)
    {
        auto note = std::make_unique<CDBNote>(&records);
        note->SetId(records.CreateItemRecord(CItemRecords::NoteItemKind, false));
        note->SetCaption(caption);
        note->GetRichText()->BuildFromPlainText(text);
        ASSERT_TRUE(records.SaveItem(*note, CaptionField | RichTextField));
        parent.AddChild(std::move(note));
    }

    // The stored tree read back whole, with every note's text left in storage.
    std::unique_ptr<CDBFolder> LoadRoot()
    {
        auto root = std::make_unique<CDBFolder>(&records);
        EXPECT_TRUE(records.LoadFolder(*root, rootId));
        return root;
    }

    static std::vector<CDBNote*> Notes(CFolderBase& folder)
    {
        std::vector<CDBNote*> notes;
        for (size_t i = 0; i < folder.GetChildCount(); ++i)
        {
            if (auto* note = dynamic_cast<CDBNote*>(folder.GetChild(i)))
                notes.push_back(note);
            else if (auto* sub = dynamic_cast<CFolderBase*>(folder.GetChild(i)))
                for (CDBNote* inner : Notes(*sub))
                    notes.push_back(inner);
        }
        return notes;
    }

    static std::vector<std::u16string> ResultPaths(const CGlobalSearch& walk)
    {
        std::vector<std::u16string> paths;
        for (const SSearchResultEntry& entry : walk.Results())
            paths.push_back(entry.item->GetPath());
        return paths;
    }

    CMemFileSystem fs;
    CStillClock clock;
    CDBFile db{fs, clock};
    CItemRecords records{db};
    CUInt128 rootId;
};

using Paths = std::vector<std::u16string>;
} // namespace

TEST_F(GlobalSearchDBTest, StoredTextsAreSearchedWithoutLoadingThem)
{
    std::unique_ptr<CDBFolder> root = LoadRoot();
    const std::vector<CDBNote*> notes = Notes(*root);
    ASSERT_EQ(notes.size(), 3u);

    const CTextSearch search(u"water", false, true, false);
    CSearchStatus status;
    CGlobalSearch walk(search, status);
    ASSERT_TRUE(walk.Run(*root));
    EXPECT_EQ(ResultPaths(walk), (Paths{u"\\\\Letters\\To Anna", u"\\\\Shopping"}));
    for (const CDBNote* note : notes)
        EXPECT_FALSE(note->IsTextLoaded()) << "rich text of a searched note was kept in memory";
}

TEST_F(GlobalSearchDBTest, TextChangedInMemoryIsSearchedAsChanged)
{
    std::unique_ptr<CDBFolder> root = LoadRoot();
    CDBNote& ben = *Notes(*root)[1];
    ben.GetRichText()->BuildFromPlainText(u"Meet at the harbour");

    const CTextSearch station(u"station", false, false, true);
    CSearchStatus status;
    CGlobalSearch walk(station, status);
    ASSERT_TRUE(walk.Run(*root));
    EXPECT_TRUE(walk.Results().empty());

    const CTextSearch harbour(u"+harbour -garden", false, false, true);
    CSearchStatus again;
    CGlobalSearch secondWalk(harbour, again);
    ASSERT_TRUE(secondWalk.Run(*root));
    EXPECT_EQ(ResultPaths(secondWalk), (Paths{u"\\\\Letters\\To Ben"}));
}

TEST_F(GlobalSearchDBTest, ChildrenNotYetLoadedAreLoadedAndCounted)
{
    CDBFolder root(&records);
    root.SetId(rootId);
    root.SetNotesLoaded(false);
    root.SetFoldersLoaded(false);

    const CTextSearch search(u"cheese", false, false, false);
    CSearchStatus status;
    CGlobalSearch walk(search, status);
    std::vector<uint64_t> totals;
    walk.SetProgressCallback([&](uint64_t, uint64_t total) { totals.push_back(total); });
    ASSERT_TRUE(walk.Run(root));
    EXPECT_EQ(ResultPaths(walk), (Paths{u"\\\\Shopping"}));
    // Only the root was known at the start; loading it brought the four items below it.
    EXPECT_EQ(totals, (std::vector<uint64_t>{5, 5, 5, 5, 5}));
    EXPECT_EQ(status.Done(), 5u);
    EXPECT_EQ(Notes(root).size(), 3u);
}

TEST_F(GlobalSearchDBTest, UnreadableTextIsSearchedAsEmpty)
{
    std::unique_ptr<CDBFolder> root = LoadRoot();
    CDBNote& anna = *Notes(*root)[0];
    ASSERT_TRUE(db.DeleteRecord(anna.GetId()));

    const CTextSearch search(u"e", false, false, false);
    CSearchStatus status;
    CGlobalSearch walk(search, status);
    ASSERT_TRUE(walk.Run(*root));
    // "To Anna" no longer has a record; the other notes and the folder are still found.
    EXPECT_EQ(ResultPaths(walk), (Paths{u"\\\\Letters", u"\\\\Letters\\To Ben", u"\\\\Shopping"}));
}

// A document larger than one read batch, with texts in memory (edited and not saved), notes
// without text and memory-only notes among the stored ones: the batched walk lists what the
// note-by-note rule lists, in tree order, and a cancel from the progress callback keeps exactly
// the results of the items searched before it.
TEST_F(GlobalSearchDBTest, BatchedWalkListsWhatEachNoteAloneWouldGive)
{
    static const char16_t* words[] = {u"red",   u"blue", u"water", u"garden",
                                      u"Ölsee", u"мир",  u"cat",   u"concat"};
    std::mt19937 rng(5);
    const auto randomText = [&]
    {
        std::u16string text;
        for (size_t n = rng() % 12; n > 0; --n)
            text += std::u16string(words[rng() % 8]) + (rng() % 3 == 0 ? u"." : u" ");
        return text;
    };
    CDBFolder root(&records);
    root.SetId(rootId);
    for (int f = 0; f < 5; ++f)
    {
        auto folder = std::make_unique<CDBFolder>(&records);
        folder->SetId(records.CreateItemRecord(CItemRecords::FolderItemKind, false));
        folder->SetCaption(randomText());
        CFolderBase& parent = static_cast<CFolderBase&>(*root.AddChild(std::move(folder)));
        for (int n = 0; n < 500; ++n)
        {
            if (n % 97 == 0)
            {
                auto memNote = std::make_unique<CMemNote>();
                memNote->SetCaption(randomText());
                memNote->GetRichText()->BuildFromPlainText(randomText());
                parent.AddChild(std::move(memNote));
                continue;
            }
            StoreNote(parent, randomText(), n % 13 == 0 ? std::u16string() : randomText());
            auto* note = static_cast<CDBNote*>(parent.GetChild(parent.GetChildCount() - 1));
            if (n % 11 == 0)
                note->GetRichText()->BuildFromPlainText(randomText()); // changed, not saved
            else
                note->UnloadText();
        }
    }
    // Every item in walk order.
    std::vector<CItem*> order;
    std::vector<CItem*> stack{&root};
    while (!stack.empty())
    {
        CItem* item = stack.back();
        stack.pop_back();
        order.push_back(item);
        if (auto* folder = dynamic_cast<CFolderBase*>(item))
            for (size_t i = folder->GetChildCount(); i-- > 0;)
                stack.push_back(folder->GetChild(i));
    }
    const std::pair<const char16_t*, bool> queries[] = {{u"water", false}, {u"+red -blue garden", true},
                                                        {u"cat", false},   {u"ölsee", false},
                                                        {u"-blue", true},  {u"МИР red", true}};
    for (const auto& [query, boolean] : queries)
        for (const bool wholeWords : {false, true})
        {
            const CTextSearch search(query, false, wholeWords, boolean);
            std::vector<CItem*> expected;
            for (CItem* item : order)
            {
                auto* note = dynamic_cast<CNoteBase*>(item);
                if (note ? CGlobalSearch::NoteMatches(search, *note)
                         : CGlobalSearch::FolderMatches(search, static_cast<CFolderBase&>(*item)))
                    expected.push_back(item);
            }
            const auto searchUntil = [&](uint64_t cancelAt)
            {
                CSearchStatus status;
                CGlobalSearch walk(search, status);
                walk.SetProgressCallback(
                    [&](uint64_t done, uint64_t)
                    {
                        if (done == cancelAt)
                            status.Cancel();
                    });
                EXPECT_EQ(walk.Run(root), cancelAt > order.size());
                EXPECT_EQ(status.Done(), std::min<uint64_t>(cancelAt, order.size()));
                std::vector<CItem*> found;
                for (const SSearchResultEntry& entry : walk.Results())
                    found.push_back(entry.item);
                return found;
            };
            EXPECT_EQ(searchUntil(UINT64_MAX), expected) << boolean << wholeWords;
            const uint64_t cancelAt = 1 + rng() % order.size();
            std::vector<CItem*> before;
            for (CItem* item : expected)
                if (std::find(order.begin(), order.begin() + cancelAt, item) != order.begin() + cancelAt)
                    before.push_back(item);
            EXPECT_EQ(searchUntil(cancelAt), before) << cancelAt;
        }
    for (size_t i = 0; i < root.GetChildCount(); ++i)
        for (CDBNote* note : Notes(static_cast<CFolderBase&>(*root.GetChild(i))))
        {
            EXPECT_EQ(note->StoredTextSource(), note->IsTextLoaded() ? nullptr : &records);
        }
}
