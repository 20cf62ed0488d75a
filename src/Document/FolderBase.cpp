#include "Document/FolderBase.h"

#include "Document/DefaultFolders.h"
#include "Document/ItemTextDumpWriter.h"

#include <algorithm>

CFolderBase::CFolderBase(bool notify, int defaultFolderKind)
    : CItem(notify), m_DefaultFolderKind(defaultFolderKind)
{
}

CFolderBase::~CFolderBase() = default;

bool CFolderBase::Matches(const CItem& child, EChildKind which)
{
    return which == EChildKind::Any || child.IsKind(EItemKind::Folder);
}

bool CFolderBase::IsLoaded(EChildKind which) const
{
    if (which == EChildKind::Folders)
        return AreFoldersLoaded();
    return AreFoldersLoaded() && AreNotesLoaded();
}

size_t CFolderBase::CountChildren(EChildKind which, bool recursive) const
{
    if (!IsLoaded(which))
        return 0;
    size_t count = 0;
    for (const auto& child : m_Children)
    {
        if (!Matches(*child, which))
            continue;
        count += 1 + (recursive ? child->CountChildren(which, true) : 0);
    }
    return count;
}

size_t CFolderBase::CountItems(size_t& notes, size_t& folders, uint32_t flags) const
{
    size_t total = 0;
    for (const auto& child : m_Children)
    {
        const bool isFolder = child->IsKind(EItemKind::Folder);
        if (!(isFolder ? AreFoldersLoaded() : AreNotesLoaded()))
            continue;
        ++(isFolder ? folders : notes);
        total += 1 + ((flags & CountItemsDeep) ? child->CountItems(notes, folders, flags) : 0);
    }
    return total;
}

void CFolderBase::SetOpen(bool open)
{
    SetOpenFlagOnly(open);
    for (const auto& child : m_Children)
        child->SetOpen(open);
}

void CFolderBase::SetNotify(bool notify)
{
    CItem::SetNotify(notify);
    for (const auto& child : m_Children)
        child->SetNotify(notify);
}

size_t CFolderBase::CountKnownChildren(EChildKind which) const
{
    return static_cast<size_t>(std::count_if(m_Children.begin(), m_Children.end(),
                                             [which](const auto& child) { return Matches(*child, which); }));
}

bool CFolderBase::IsLoadedInSubtree(EChildKind which) const
{
    if (!IsLoaded(which))
        return false;
    return std::all_of(m_Children.begin(), m_Children.end(),
                       [which](const auto& child)
                       {
                           const auto* folder = dynamic_cast<const CFolderBase*>(child.get());
                           return folder == nullptr || folder->IsLoadedInSubtree(which);
                       });
}

EChildState CFolderBase::GetChildState(EChildKind which, bool recursive) const
{
    const bool loaded = recursive ? IsLoadedInSubtree(which) : IsLoaded(which);
    const bool known = CountKnownChildren(which) > 0;
    if (!loaded)
        return known ? EChildState::NotLoadedSomeKnown : EChildState::NotLoadedNoneKnown;
    return known ? EChildState::HasChildren : EChildState::NoChildren;
}

size_t CFolderBase::EstimateMemory() const
{
    size_t total = CItem::EstimateMemory();
    for (const auto& child : m_Children)
        total += child->EstimateMemory();
    return total;
}

bool CFolderBase::IsDefaultFolder() const
{
    return IsDefaultFolderKind(m_DefaultFolderKind);
}

bool CFolderBase::ContainsDefaultFolder(bool childrenOnly) const
{
    if (!childrenOnly && IsDefaultFolder())
        return true;
    return std::any_of(m_Children.begin(), m_Children.end(),
                       [](const auto& child)
                       {
                           const auto* folder = dynamic_cast<const CFolderBase*>(child.get());
                           return folder != nullptr && folder->ContainsDefaultFolder(false);
                       });
}

bool CFolderBase::CanDelete(bool childrenOnly, bool showMessage)
{
    if (!ContainsDefaultFolder(childrenOnly))
        return true;
    if (showMessage)
        ShowRefusal(u"ERR_CANNOT_DELETE_DEFAULT_FOLDERS");
    return false;
}

bool CFolderBase::CanCut(bool showMessage)
{
    if (!ContainsDefaultFolder(false))
        return true;
    if (showMessage)
        ShowRefusal(u"ERR_CUT_ON_DEFAULT_FOLDERS_NOT_ALLOWED");
    return false;
}

size_t CFolderBase::IndexOf(const CItem& item) const
{
    for (size_t i = 0; i < m_Children.size(); ++i)
        if (m_Children[i].get() == &item)
            return i;
    return SIZE_MAX;
}

CItem* CFolderBase::AddChild(std::unique_ptr<CItem> child, size_t index)
{
    CItem* added = child.get();
    added->m_Parent = this;
    const size_t at = std::min(index, m_Children.size());
    m_Children.insert(m_Children.begin() + static_cast<std::ptrdiff_t>(at), std::move(child));
    NotifyChange(EItemChange::Children);
    return added;
}

std::unique_ptr<CItem> CFolderBase::DetachChild(CItem& child)
{
    const size_t index = IndexOf(child);
    if (index == SIZE_MAX)
        return nullptr;
    std::unique_ptr<CItem> detached = std::move(m_Children[index]);
    m_Children.erase(m_Children.begin() + static_cast<std::ptrdiff_t>(index));
    detached->m_Parent = nullptr;
    NotifyChange(EItemChange::Children);
    return detached;
}

bool CFolderBase::DeleteChild(CItem& child)
{
    return DetachChild(child) != nullptr;
}

void CFolderBase::WriteDump(CItemTextDumpWriter& writer)
{
    writer.WriteFolderHeading(GetCaption(), GetPath(), GetDepth());
    for (const auto& child : m_Children)
        child->WriteDump(writer);
}
