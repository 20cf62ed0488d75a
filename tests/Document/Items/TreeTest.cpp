#include "Alarms/Alarms/LogCapture.h"
#include "Document/DefaultFolders.h"
#include "TestTree.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace
{
// root
//   A            (folder)
//     a1         (note)
//     B          (folder)
//       b1, b2   (notes)
//   r1           (note)
struct SSampleTree
{
    SSampleTree()
    {
        root.SetCaption(u"Root");
        a = AddFolder(root, u"A");
        a1 = AddNote(*a, u"a1");
        b = AddFolder(*a, u"B");
        b1 = AddNote(*b, u"b1");
        b2 = AddNote(*b, u"b2");
        r1 = AddNote(root, u"r1");
    }
    CMemFolder root;
    CMemFolder* a;
    CMemNote* a1;
    CMemFolder* b;
    CMemNote* b1;
    CMemNote* b2;
    CMemNote* r1;
};
} // namespace

TEST(ItemTree, CountingFollowsTheLoadedFlags)
{
    SSampleTree t;
    EXPECT_EQ(t.root.CountChildren(EChildKind::Any, false), 2u);
    EXPECT_EQ(t.root.CountChildren(EChildKind::Any, true), 6u);
    EXPECT_EQ(t.root.CountChildren(EChildKind::Folders, true), 2u);
    EXPECT_EQ(t.a1->CountChildren(EChildKind::Any, true), 0u);
    size_t notes = 0, folders = 0;
    EXPECT_EQ(t.root.CountItems(notes, folders, CountItemsDeep), 6u);
    EXPECT_EQ(std::make_pair(notes, folders), std::make_pair(size_t{4}, size_t{2}));
    notes = folders = 0;
    EXPECT_EQ(t.root.CountItems(notes, folders, 0), 2u);
    EXPECT_EQ(std::make_pair(notes, folders), std::make_pair(size_t{1}, size_t{1}));

    t.b->SetNotesLoaded(false);
    EXPECT_EQ(t.b->CountChildren(EChildKind::Any, false), 0u);
    EXPECT_EQ(t.root.CountChildren(EChildKind::Any, true), 4u);
    EXPECT_EQ(t.root.CountChildren(EChildKind::Folders, true), 2u);
    notes = folders = 0;
    EXPECT_EQ(t.root.CountItems(notes, folders, CountItemsDeep), 4u);
    EXPECT_EQ(notes, 2u);
    t.a->SetFoldersLoaded(false);
    EXPECT_EQ(t.root.CountChildren(EChildKind::Folders, true), 1u);
    EXPECT_EQ(t.a->CountChildren(EChildKind::Folders, false), 0u);
    EXPECT_TRUE(t.a->LoadChildren(EChildKind::Folders));
    EXPECT_EQ(t.a->CountChildren(EChildKind::Folders, false), 1u);
}

TEST(ItemTree, ChildStatesForTheExpandBox)
{
    SSampleTree t;
    CMemFolder* empty = AddFolder(t.root, u"E");
    EXPECT_EQ(t.a->GetChildState(EChildKind::Any, false), EChildState::HasChildren);
    EXPECT_EQ(empty->GetChildState(EChildKind::Any, false), EChildState::NoChildren);
    EXPECT_EQ(t.b->GetChildState(EChildKind::Folders, false), EChildState::NoChildren);
    EXPECT_EQ(t.a1->GetChildState(EChildKind::Any, false), EChildState::NoChildren);
    empty->SetNotesLoaded(false);
    EXPECT_EQ(empty->GetChildState(EChildKind::Any, false), EChildState::NotLoadedNoneKnown);
    EXPECT_EQ(empty->GetChildState(EChildKind::Folders, false), EChildState::NoChildren);
    t.b->SetNotesLoaded(false);
    EXPECT_EQ(t.b->GetChildState(EChildKind::Any, false), EChildState::NotLoadedSomeKnown);
    EXPECT_EQ(t.a->GetChildState(EChildKind::Any, false), EChildState::HasChildren);
    EXPECT_EQ(t.a->GetChildState(EChildKind::Any, true), EChildState::NotLoadedSomeKnown);
}

TEST(ItemTree, PathsDepthsAndAncestry)
{
    SSampleTree t;
    EXPECT_EQ(t.root.GetDepth(), 1);
    EXPECT_EQ(t.a->GetDepth(), 2);
    EXPECT_EQ(t.b2->GetDepth(), 4);
    EXPECT_EQ(t.b2->GetPath(), u"\\Root\\A\\B\\b2");
    EXPECT_EQ(t.root.GetPath(), u"\\Root");
    EXPECT_TRUE(t.b2->IsDescendantOf(t.root));
    EXPECT_TRUE(t.b2->IsDescendantOf(*t.a));
    EXPECT_FALSE(t.b2->IsDescendantOf(*t.b2));
    EXPECT_FALSE(t.a->IsDescendantOf(*t.b));
    EXPECT_FALSE(t.r1->IsDescendantOf(*t.a));
}

TEST(ItemTree, StateSettersReachTheWholeSubtree)
{
    SSampleTree t;
    CRecordingHost host;
    t.root.SetTreeHost(&host);
    t.a->SetNotify(true);
    EXPECT_TRUE(t.b2->IsNotifying());
    EXPECT_FALSE(t.r1->IsNotifying());
    t.b2->SetId(22);
    t.a->SetOpen(false);
    EXPECT_FALSE(t.b2->IsOpen());
    EXPECT_FALSE(t.a1->IsOpen());
    EXPECT_TRUE(t.r1->IsOpen());
    EXPECT_EQ(host.changes.size(), 5u); // A, a1, B, b1, b2: open flag changed
    host.changes.clear();
    t.b2->SetCaption(u"renamed");
    t.b2->SetCaption(u"renamed");
    t.b2->SetAttribute(4, 9);
    t.b2->GetAlarms(true);
    EXPECT_EQ(host.changes, (std::vector<std::pair<CUInt128, EItemChange>>{{22, EItemChange::Content},
                                                                           {22, EItemChange::Content}}));
    t.r1->SetCaption(u"quiet"); // notify flag clear
    EXPECT_EQ(host.changes.size(), 2u);
}

TEST(ItemTree, DefaultFoldersAreProtectedThroughNestedFolders)
{
    CLogCapture log;
    SSampleTree t;
    CRecordingHost host;
    t.root.SetTreeHost(&host);
    EXPECT_TRUE(t.a->CanDelete(false, true));
    EXPECT_TRUE(t.a1->CanDelete(false, true));
    CMemFolder* deep = AddFolder(*t.b, u"Deep", 3);
    EXPECT_FALSE(deep->CanDelete(false, false));
    EXPECT_TRUE(deep->CanDelete(true, false));
    EXPECT_FALSE(t.b->CanDelete(false, false));
    EXPECT_FALSE(t.b->CanDelete(true, false)); // its child is a default folder
    EXPECT_TRUE(host.shown.empty());
    EXPECT_FALSE(t.a->CanDelete(false, true));
    ASSERT_EQ(host.shown.size(), 1u);
    EXPECT_EQ(host.shown[0].first, u"text of ERR_CANNOT_DELETE_DEFAULT_FOLDERS");
    EXPECT_EQ(host.shown[0].second, EMsgIcon::Error);
    EXPECT_FALSE(t.a->CanCut(true));
    EXPECT_EQ(host.shown.at(1).first, u"text of ERR_CUT_ON_DEFAULT_FOLDERS_NOT_ALLOWED");
    EXPECT_EQ(log.CountMessages(), 2u);
    deep->SetDefaultFolderKind(9);
    EXPECT_TRUE(t.root.CanDelete(false, true));
    deep->SetDefaultFolderKind(0);
    EXPECT_TRUE(t.root.CanDelete(true, true) == false);
    for (int kind = -2; kind <= 10; ++kind)
        EXPECT_EQ(DefaultFolderCaptionKey(kind) != nullptr, kind >= 0 && kind <= 8);
    EXPECT_EQ(std::u16string(DefaultFolderCaptionKey(RecycleBinFolderKind)), u"FOLDER_RECYCLE_BIN");
}

TEST(ItemTree, MovingKeepsOwnershipAndRefusesCycles)
{
    CLogCapture log;
    SSampleTree t;
    CRecordingHost host;
    t.root.SetTreeHost(&host);
    ASSERT_TRUE(t.b->MoveTo(t.root, 0));
    EXPECT_EQ(t.b->GetParent(), &t.root);
    EXPECT_EQ(t.root.GetChild(0), t.b);
    EXPECT_EQ(t.a->GetChildCount(), 1u);
    EXPECT_EQ(t.b1->GetPath(), u"\\Root\\B\\b1");
    EXPECT_FALSE(t.root.MoveTo(*t.a));
    EXPECT_FALSE(t.a->MoveTo(*t.a));
    ASSERT_TRUE(t.b->MoveTo(*t.a));
    EXPECT_FALSE(t.a->MoveTo(*t.b));
    EXPECT_EQ(log.CountMessages(), 3u);
    EXPECT_EQ(t.a->GetChild(1), t.b);
    EXPECT_EQ(t.root.CountChildren(EChildKind::Any, true), 6u);
}

// Random moves, additions and deletions against a model of parent links.
TEST(ItemTree, RandomEditsMatchAParentModel)
{
    std::mt19937 rng(11);
    CMemFolder root;
    std::vector<CItem*> items = {&root};
    std::map<CItem*, CItem*> parentOf = {{&root, nullptr}};
    auto pick = [&]() { return items[rng() % items.size()]; };
    auto pickFolder = [&]()
    {
        for (;;)
            if (auto* folder = dynamic_cast<CFolderBase*>(pick()))
                return folder;
    };
    auto forget = [&](auto& self, CItem* item) -> void
    {
        if (auto* folder = dynamic_cast<CFolderBase*>(item))
            for (size_t i = 0; i < folder->GetChildCount(); ++i)
                self(self, folder->GetChild(i));
        std::erase(items, item);
        parentOf.erase(item);
    };
    for (int step = 0; step < 2000; ++step)
    {
        const int action = static_cast<int>(rng() % 4);
        if (action == 0 || items.size() < 3)
        {
            CFolderBase* parent = pickFolder();
            CItem* added =
                (rng() & 1) ? static_cast<CItem*>(AddFolder(*parent, u"f")) : AddNote(*parent, u"n");
            items.push_back(added);
            parentOf[added] = parent;
        }
        else if (action == 1)
        {
            CItem* item = pick();
            CFolderBase* target = pickFolder();
            const bool allowed = item != &root && item != target && !target->IsDescendantOf(*item);
            ASSERT_EQ(item->MoveTo(*target, rng() % 3), allowed);
            if (allowed)
                parentOf[item] = target;
        }
        else if (action == 2)
        {
            CItem* item = pick();
            if (item == &root)
                continue;
            forget(forget, item);
            ASSERT_TRUE(item->GetParent()->DeleteChild(*item));
        }
        else
        {
            for (CItem* item : items)
            {
                ASSERT_EQ(item->GetParent(), parentOf[item]);
                if (item->GetParent())
                {
                    ASSERT_NE(item->GetParent()->IndexOf(*item), SIZE_MAX);
                }
            }
            ASSERT_EQ(root.CountChildren(EChildKind::Any, true), items.size() - 1);
        }
    }
}

TEST(ItemTree, ExtendedDataAlarmsAndMemory)
{
    CMemNote note;
    note.SetCaption(u"four");
    EXPECT_EQ(note.EstimateMemory(), 40u + 20 + 4 + 1);
    EXPECT_EQ(note.GetExtendedData(false), nullptr);
    EXPECT_EQ(note.GetTextColour(), 0xFEFFFFu);
    EXPECT_EQ(note.GetBackColour(), 0u);
    CItemExtendedData* data = note.GetExtendedData(true);
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(note.GetExtendedData(true), data);
    data->SetTextColour(0);
    data->SetBackColour(0x123456);
    EXPECT_EQ(note.GetTextColour(), 0u);
    EXPECT_EQ(note.GetBackColour(), 0x123456u);
    EXPECT_EQ(data->Bytes()[0], 3);
    EXPECT_EQ(data->Bytes()[8], 0x56);
    note.GetAlarms(true)->Add(CAlarmInfo(0.0));
    note.GetAlarms(true)->Add(CAlarmInfo(0.0));
    EXPECT_EQ(note.EstimateMemory(), 40u + 200 + 2 * 192 + 20 + 4 + 1);
    note.DropEmptyExtendedData();
    EXPECT_NE(note.FindExtendedData(), nullptr);
    data->SetTextColour(std::nullopt);
    data->SetBackColour(std::nullopt);
    EXPECT_TRUE(data->IsAllZero());
    note.DropEmptyExtendedData();
    EXPECT_EQ(note.FindExtendedData(), nullptr);

    CMemFolder folder;
    folder.AddChild(std::make_unique<CMemNote>());
    EXPECT_EQ(folder.EstimateMemory(), 2 * (40u + 20 + 1));
}
