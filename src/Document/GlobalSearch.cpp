#include "Document/GlobalSearch.h"

#include "Document/DBNote.h"
#include "Document/FolderBase.h"
#include "Document/ItemRecords.h"
#include "Document/NoteBase.h"

namespace
{
// Notes whose stored texts are read together: enough for the reads to be large, few enough that
// the batch's bookkeeping stays small. The cancel flag is still checked after every text.
constexpr size_t BatchSize = 1024;
} // namespace

CGlobalSearch::EVerdict CGlobalSearch::CaptionVerdict(const CTextSearch& search, const CNoteBase& note)
{
    const int32_t captionResult = search.Match(note.GetCaption());
    if (!search.IsBoolean() && captionResult == CTextSearch::MatchFound)
        return EVerdict::Listed;
    if (search.IsBoolean() && captionResult != CTextSearch::MatchNone)
        return EVerdict::NotListed;
    return EVerdict::ByText;
}

bool CGlobalSearch::TextMatches(const CTextSearch& search, std::u16string_view text)
{
    return search.Match(text) == CTextSearch::MatchFound;
}

bool CGlobalSearch::NoteMatches(const CTextSearch& search, CNoteBase& note)
{
    const EVerdict verdict = CaptionVerdict(search, note);
    if (verdict != EVerdict::ByText)
        return verdict == EVerdict::Listed;
    // A text that cannot be read is not listed; its reader has logged the failure.
    std::u16string text;
    return note.GetPlainText(text) && TextMatches(search, text);
}

bool CGlobalSearch::FolderMatches(const CTextSearch& search, const CFolderBase& folder)
{
    return search.Match(folder.GetCaption()) == CTextSearch::MatchFound;
}

bool CGlobalSearch::Run(CItem& start)
{
    m_Status.SetTotal(m_Status.Total() + CountSubtree(start));
    m_Pending.clear();
    m_Pending.push_back(&start);
    Walk();
    m_Pending.clear();
    return !m_Status.IsCancelled();
}

uint64_t CGlobalSearch::CountSubtree(const CItem& item) const
{
    uint64_t count = 1;
    std::vector<const CFolderBase*> folders;
    if (const auto* folder = dynamic_cast<const CFolderBase*>(&item))
        folders.push_back(folder);
    while (!folders.empty() && !m_Status.IsCancelled())
    {
        const CFolderBase* folder = folders.back();
        folders.pop_back();
        for (size_t i = 0; i < folder->GetChildCount(); ++i)
        {
            const CItem* child = folder->GetChild(i);
            const auto* subFolder = dynamic_cast<const CFolderBase*>(child);
            if (!(subFolder ? folder->AreFoldersLoaded() : folder->AreNotesLoaded()))
                continue;
            ++count;
            if (subFolder)
                folders.push_back(subFolder);
        }
    }
    return count;
}

void CGlobalSearch::Walk()
{
    m_Batch.clear();
    m_Batch.reserve(BatchSize);
    while (!m_Pending.empty() && !m_Status.IsCancelled())
    {
        CItem* item = m_Pending.back();
        m_Pending.pop_back();
        m_Batch.push_back(Examine(*item));
        if (m_Batch.size() >= BatchSize)
            FinishBatch();
    }
    FinishBatch();
}

CGlobalSearch::SBatchEntry CGlobalSearch::Examine(CItem& item)
{
    if (auto* note = dynamic_cast<CNoteBase*>(&item))
    {
        const EVerdict verdict = CaptionVerdict(m_Search, *note);
        if (verdict != EVerdict::ByText)
            return {note, verdict, nullptr};
        const auto* stored = dynamic_cast<const CDBNote*>(note);
        if (CItemRecords* source = stored ? stored->StoredTextSource() : nullptr)
            return {note, EVerdict::ByText, source};
        std::u16string text;
        const bool listed = note->GetPlainText(text) && TextMatches(m_Search, text);
        return {note, listed ? EVerdict::Listed : EVerdict::NotListed, nullptr};
    }
    auto* folder = dynamic_cast<CFolderBase*>(&item);
    if (!folder)
        return {&item, EVerdict::NotListed, nullptr};
    const bool listed = FolderMatches(m_Search, *folder);
    if (PrepareChildren(*folder))
        PushChildren(*folder);
    return {folder, listed ? EVerdict::Listed : EVerdict::NotListed, nullptr};
}

void CGlobalSearch::ReadBatchTexts()
{
    std::vector<size_t> waiting;
    for (size_t i = 0; i < m_Batch.size(); ++i)
        if (m_Batch[i].verdict == EVerdict::ByText)
            waiting.push_back(i);
    // A batch normally holds the notes of one document; notes of several are read per document.
    std::vector<CUInt128> ids;
    std::vector<size_t> positions;
    std::vector<size_t> later;
    while (!waiting.empty() && !m_Status.IsCancelled())
    {
        CItemRecords* source = m_Batch[waiting.front()].textSource;
        ids.clear();
        positions.clear();
        later.clear();
        for (size_t i : waiting)
        {
            if (m_Batch[i].textSource != source)
            {
                later.push_back(i);
                continue;
            }
            ids.push_back(m_Batch[i].item->GetId());
            positions.push_back(i);
        }
        source->VisitPlainTexts(ids,
                                [&](size_t index, std::u16string_view text)
                                {
                                    m_Batch[positions[index]].verdict =
                                        TextMatches(m_Search, text) ? EVerdict::Listed : EVerdict::NotListed;
                                    return !m_Status.IsCancelled();
                                });
        // Texts that could not be read (their reader has logged why) are not listed.
        if (!m_Status.IsCancelled())
            for (size_t i : positions)
                if (m_Batch[i].verdict == EVerdict::ByText)
                    m_Batch[i].verdict = EVerdict::NotListed;
        waiting.swap(later);
    }
}

void CGlobalSearch::FinishBatch()
{
    ReadBatchTexts();
    for (const SBatchEntry& entry : m_Batch)
    {
        // Only a cancelled run leaves texts unread; once cancelled (also from the progress
        // callback) the remaining items count as not searched.
        if (m_Status.IsCancelled() || entry.verdict == EVerdict::ByText)
            break;
        if (entry.verdict == EVerdict::Listed)
            m_Results.push_back({ResultKind, entry.item->GetCaption(), entry.item});
        m_Status.AddDone();
        ReportProgress();
    }
    m_Batch.clear();
}

bool CGlobalSearch::PrepareChildren(CFolderBase& folder)
{
    if (folder.IsLoaded(EChildKind::Any))
        return true;
    // Children of a kind that was not loaded were left out of the total; count them in now.
    const uint64_t countedBefore = CountSubtree(folder);
    if (!folder.LoadChildren(EChildKind::Any))
        return false;
    const uint64_t countedAfter = CountSubtree(folder);
    if (countedAfter > countedBefore)
        m_Status.SetTotal(m_Status.Total() + (countedAfter - countedBefore));
    return true;
}

void CGlobalSearch::PushChildren(CFolderBase& folder)
{
    // Pushed last to first, so the children are searched in their order.
    for (size_t i = folder.GetChildCount(); i-- > 0;)
        m_Pending.push_back(folder.GetChild(i));
}

void CGlobalSearch::ReportProgress()
{
    if (m_Progress)
        m_Progress(m_Status.Done(), m_Status.Total());
}
