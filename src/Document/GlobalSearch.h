#pragma once
// The search over the whole item tree: folders are matched by caption, notes by caption and by
// the plain text of their body, with one CTextSearch. Each match becomes one result entry.
//
// Boolean and plain queries treat notes differently on purpose. A plain query lists a note whose
// caption or text matches. A boolean query lists a note only when its caption has none of the
// query's words it needs (the caption gives "no match") and its text matches; a caption that holds
// an excluded word, or that satisfies the query by itself, keeps the note out of the list.
//
// A note's plain text is read only for the moment it is matched and released right after, so a
// search of a large document keeps no texts in memory. Stored texts are read for a batch of
// notes at a time, in the order they lie in the file, so the whole search reads the file in
// large sequential pieces; results are still listed in tree order.
#include "Document/Item.h"
#include "Shared/TextSearch/SearchStatus.h"
#include "Shared/TextSearch/TextSearch.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class CFolderBase;
class CItemRecords;
class CNoteBase;

// One row of the result list; the item belongs to the tree.
struct SSearchResultEntry
{
    int32_t kind = 2;
    std::u16string caption;
    CItem* item = nullptr;
};

class CGlobalSearch
{
public:
    // The kind given to every result row.
    static constexpr int32_t ResultKind = 2;

    // Called after every item with the items searched so far and the items to search; may cancel
    // the run through the status.
    using ProgressCallback = std::function<void(uint64_t done, uint64_t total)>;

    // `search` and `status` must outlive the search object.
    CGlobalSearch(const CTextSearch& search, CSearchStatus& status) : m_Search(search), m_Status(status) {}

    void SetProgressCallback(ProgressCallback callback) { m_Progress = std::move(callback); }

    // Searches `start` and everything below it, appending to Results(). A folder whose children
    // are not in memory yet loads them first; when it cannot, its children are skipped (the
    // loader has logged why). False when the run was cancelled before it finished.
    bool Run(CItem& start);

    const std::vector<SSearchResultEntry>& Results() const { return m_Results; }
    std::vector<SSearchResultEntry> TakeResults() { return std::move(m_Results); }

    // Whether a note, or a folder alone, is listed for `search`.
    static bool NoteMatches(const CTextSearch& search, CNoteBase& note);
    static bool FolderMatches(const CTextSearch& search, const CFolderBase& folder);

private:
    enum class EVerdict : uint8_t
    {
        Listed,
        NotListed,
        ByText // decided by the note's stored text, read with the rest of its batch
    };
    struct SBatchEntry
    {
        CItem* item;
        EVerdict verdict;
        CItemRecords* textSource;
    };

    // What the caption alone decides about a note: Listed, NotListed, or ByText when the text
    // must be matched.
    static EVerdict CaptionVerdict(const CTextSearch& search, const CNoteBase& note);
    static bool TextMatches(const CTextSearch& search, std::u16string_view text);

    // The items below and including `item` that are in memory (a child counts when its kind is
    // loaded in its folder). Counted without recursion and given up as soon as the run is
    // cancelled, so a large tree answers Cancel while it is still being counted.
    uint64_t CountSubtree(const CItem& item) const;
    // The walk keeps its own stack, so a deep tree cannot exhaust the thread's stack.
    void Walk();
    SBatchEntry Examine(CItem& item);
    void ReadBatchTexts();
    void FinishBatch();
    void PushChildren(CFolderBase& folder);
    bool PrepareChildren(CFolderBase& folder);
    void ReportProgress();

    const CTextSearch& m_Search;
    CSearchStatus& m_Status;
    ProgressCallback m_Progress;
    std::vector<SSearchResultEntry> m_Results;
    std::vector<CItem*> m_Pending;
    std::vector<SBatchEntry> m_Batch; // examined items in walk order, not yet listed or counted
};
