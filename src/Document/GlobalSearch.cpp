#include "Document/GlobalSearch.h"

#include "Document/FolderBase.h"
#include "Document/NoteBase.h"

bool CGlobalSearch::NoteMatches(const CTextSearch& search, CNoteBase& note)
{
    const int32_t captionResult = search.Match(note.GetCaption());
    if (!search.IsBoolean() && captionResult == CTextSearch::MatchFound)
        return true;
    if (search.IsBoolean() && captionResult != CTextSearch::MatchNone)
        return false;
    // A text that cannot be read is searched as empty; its reader has logged the failure.
    std::u16string text;
    if (!note.GetPlainText(text))
        return false;
    return search.Match(text) == CTextSearch::MatchFound;
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
    while (!m_Pending.empty() && !m_Status.IsCancelled())
    {
        CItem* item = m_Pending.back();
        m_Pending.pop_back();
        SearchItem(*item);
        m_Status.AddDone();
        ReportProgress();
    }
}

void CGlobalSearch::SearchItem(CItem& item)
{
    if (auto* note = dynamic_cast<CNoteBase*>(&item))
    {
        if (NoteMatches(m_Search, *note))
            m_Results.push_back({ResultKind, note->GetCaption(), note});
        return;
    }
    auto* folder = dynamic_cast<CFolderBase*>(&item);
    if (!folder)
        return;
    if (FolderMatches(m_Search, *folder))
        m_Results.push_back({ResultKind, folder->GetCaption(), folder});
    if (PrepareChildren(*folder))
        PushChildren(*folder);
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
