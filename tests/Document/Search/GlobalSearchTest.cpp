// The search over the item tree: which folders and notes a plain and a boolean query list (with
// the boolean caption rule), the order of the results, cancelling from the progress callback and
// the progress counts.
#include "Document/GlobalSearch.h"
#include "Document/MemFolder.h"
#include "Document/MemNote.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace
{
CMemFolder& AddFolder(CFolderBase& parent, const std::u16string& caption)
{
    auto folder = std::make_unique<CMemFolder>();
    folder->SetCaption(caption);
    return static_cast<CMemFolder&>(*parent.AddChild(std::move(folder)));
}

CMemNote& AddNote(CFolderBase& parent, const std::u16string& caption, const std::u16string& text)
{
    auto note = std::make_unique<CMemNote>();
    note->SetCaption(caption);
    note->GetRichText()->BuildFromPlainText(text);
    return static_cast<CMemNote&>(*parent.AddChild(std::move(note)));
}

// Root
//   Kitchen red            (folder)
//     Tomato soup          "Red tomatoes\r\nand basil"
//     red and text         "a red line"
//     Blue plate           "red dish"
//   Plain note             "red and blue"
//   Archive                (folder)
//     red caption only     "green grapes"
//     Empty                ""
class GlobalSearchTest : public ::testing::Test
{
protected:
    GlobalSearchTest()
    {
        root.SetCaption(u"Root");
        CMemFolder& kitchen = AddFolder(root, u"Kitchen red");
        AddNote(kitchen, u"Tomato soup", u"Red tomatoes\r\nand basil");
        AddNote(kitchen, u"red and text", u"a red line");
        AddNote(kitchen, u"Blue plate", u"red dish");
        AddNote(root, u"Plain note", u"red and blue");
        CMemFolder& archive = AddFolder(root, u"Archive");
        AddNote(archive, u"red caption only", u"green grapes");
        AddNote(archive, u"Empty", u"");
    }

    std::vector<std::u16string> Search(std::u16string_view query, bool boolean, bool matchCase = false,
                                       bool wholeWords = false)
    {
        const CTextSearch search(query, matchCase, wholeWords, boolean);
        CSearchStatus status;
        CGlobalSearch walk(search, status);
        EXPECT_TRUE(walk.Run(root));
        std::vector<std::u16string> captions;
        for (const SSearchResultEntry& entry : walk.Results())
        {
            EXPECT_EQ(entry.kind, 2);
            EXPECT_EQ(entry.caption, entry.item->GetCaption());
            captions.push_back(entry.caption);
        }
        return captions;
    }

    CMemFolder root;
};

using Captions = std::vector<std::u16string>;
} // namespace

TEST_F(GlobalSearchTest, PlainQueryListsNotesByCaptionOrTextInTreeOrder)
{
    EXPECT_EQ(Search(u"red", false), (Captions{u"Kitchen red", u"Tomato soup", u"red and text", u"Blue plate",
                                               u"Plain note", u"red caption only"}));
    // A phrase is searched as one keyword, across the caption/text boundary never.
    EXPECT_EQ(Search(u"red and", false), (Captions{u"red and text", u"Plain note"}));
    EXPECT_EQ(Search(u"Red", false, true), (Captions{u"Tomato soup"}));
    EXPECT_EQ(Search(u"tomatoe", false, false, true), Captions{});
    EXPECT_EQ(Search(u"tomatoes", false, false, true), (Captions{u"Tomato soup"}));
    EXPECT_EQ(Search(u"", false), Captions{});
}

TEST_F(GlobalSearchTest, BooleanQueryListsNotesOnlyThroughTheirText)
{
    // Notes whose caption holds "red" are left out even when their text holds it too; folders are
    // still listed by caption.
    EXPECT_EQ(Search(u"red", true), (Captions{u"Kitchen red", u"Tomato soup", u"Blue plate", u"Plain note"}));
    // The caption satisfying only part of the query gives "no match", so the text decides.
    EXPECT_EQ(Search(u"+red +line", true), (Captions{u"red and text"}));
    EXPECT_EQ(Search(u"+red +dish", true), (Captions{u"Blue plate"}));
    EXPECT_EQ(Search(u"grapes", true), (Captions{u"red caption only"}));
}

TEST_F(GlobalSearchTest, ExcludedWordInCaptionOrTextKeepsANoteOut)
{
    // "Blue plate" has red in its text but blue in its caption; "Plain note" has blue in its text.
    EXPECT_EQ(Search(u"+red -blue", true), (Captions{u"Kitchen red", u"Tomato soup"}));
    // Without the boolean flag the same words are one phrase that occurs nowhere.
    EXPECT_EQ(Search(u"+red -blue", false), Captions{});
    // Excluded words alone match nothing, in captions or texts.
    EXPECT_EQ(Search(u"-blue", true), Captions{});
    // A sign inside a word starts a new word: "kitchen+grapes" is just "+grapes".
    EXPECT_EQ(Search(u"kitchen+grapes", true), (Captions{u"red caption only"}));
}

TEST_F(GlobalSearchTest, ProgressCountsEveryItemOnce)
{
    const CTextSearch search(u"red", false, false, false);
    CSearchStatus status;
    CGlobalSearch walk(search, status);
    std::vector<std::pair<uint64_t, uint64_t>> reports;
    walk.SetProgressCallback([&](uint64_t done, uint64_t total) { reports.emplace_back(done, total); });
    ASSERT_TRUE(walk.Run(root));
    ASSERT_EQ(reports.size(), 9u); // the root, two folders and six notes
    for (size_t i = 0; i < reports.size(); ++i)
        EXPECT_EQ(reports[i], std::make_pair(uint64_t(i + 1), uint64_t(9)));
    EXPECT_EQ(status.Done(), 9u);
    EXPECT_EQ(status.Total(), 9u);
}

TEST_F(GlobalSearchTest, CancellingFromTheProgressCallbackStopsTheWalk)
{
    const CTextSearch search(u"red", false, false, false);
    for (uint64_t stopAfter = 0; stopAfter <= 9; ++stopAfter)
    {
        CSearchStatus status;
        if (stopAfter == 0)
            status.Cancel();
        CGlobalSearch walk(search, status);
        uint64_t calls = 0;
        walk.SetProgressCallback(
            [&](uint64_t done, uint64_t)
            {
                ++calls;
                if (done == stopAfter)
                    status.Cancel();
            });
        EXPECT_EQ(walk.Run(root), false) << stopAfter;
        EXPECT_EQ(calls, stopAfter);
        EXPECT_EQ(status.Done(), stopAfter);
        // Items in walk order: Root, Kitchen red, Tomato soup, red and text, Blue plate, ...
        const size_t expectedHits[] = {0, 0, 1, 2, 3, 4, 5, 5, 6, 6};
        EXPECT_EQ(walk.Results().size(), expectedHits[stopAfter]) << stopAfter;
    }
}

// The tree is counted for the progress bar before the walk; a cancelled run gives that up too,
// so a large tree does not keep the user waiting after Cancel.
TEST_F(GlobalSearchTest, CancelledRunDoesNotCountTheTree)
{
    const CTextSearch search(u"red", false, false, false);
    CSearchStatus status;
    status.Cancel();
    CGlobalSearch walk(search, status);
    EXPECT_FALSE(walk.Run(root));
    EXPECT_EQ(status.Total(), 1u);
    EXPECT_EQ(status.Done(), 0u);
    EXPECT_TRUE(walk.Results().empty());
}
