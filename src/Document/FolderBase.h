#pragma once
// A folder: an item with an ordered list of owned children and flags telling which kinds of
// children have been loaded.
//
// The counting and state queries look only at loaded kinds: a query about folder children needs
// the sub-folders flag, a query about children of any kind needs both flags, and CountItems
// counts a child only when its kind is loaded in its folder.
#include "Document/Item.h"

#include <memory>
#include <vector>

class CFolderBase : public CItem
{
public:
    // Kinds 0-8 mark the default folders of a document (see DefaultFolders.h).
    static constexpr int OrdinaryFolderKind = -1;

    explicit CFolderBase(bool notify, int defaultFolderKind = OrdinaryFolderKind);
    ~CFolderBase() override;

    bool IsKind(EItemKind kind) const override { return kind == EItemKind::Folder; }
    size_t CountChildren(EChildKind which, bool recursive) const override;
    size_t CountItems(size_t& notes, size_t& folders, uint32_t flags) const override;
    void SetOpen(bool open) override;
    void SetNotify(bool notify) override;
    // `recursive` asks whether the whole subtree has the kind loaded, not only this folder.
    EChildState GetChildState(EChildKind which, bool recursive) const override;
    size_t EstimateMemory() const override;
    // Refuses, unless only the children are examined, when this folder is a default folder, and
    // refuses when any folder below is one; shows "ERR_CANNOT_DELETE_DEFAULT_FOLDERS" if asked.
    bool CanDelete(bool childrenOnly, bool showMessage) override;
    // The same rule for cutting to the clipboard, with "ERR_CUT_ON_DEFAULT_FOLDERS_NOT_ALLOWED".
    bool CanCut(bool showMessage);

    // Loads the children of a kind and sets the matching flag. A storage-backed folder first
    // makes sure its parent chain is loaded.
    virtual bool LoadChildren(EChildKind which) = 0;

    bool AreNotesLoaded() const { return m_NotesLoaded != 0; }
    bool AreFoldersLoaded() const { return m_FoldersLoaded != 0; }
    void SetNotesLoaded(bool loaded) { m_NotesLoaded = loaded ? 1 : 0; }
    void SetFoldersLoaded(bool loaded) { m_FoldersLoaded = loaded ? 1 : 0; }
    bool IsLoaded(EChildKind which) const;

    int GetDefaultFolderKind() const { return m_DefaultFolderKind; }
    void SetDefaultFolderKind(int kind) { m_DefaultFolderKind = kind; }
    bool IsDefaultFolder() const;

    size_t GetChildCount() const { return m_Children.size(); }
    CItem* GetChild(size_t index) const
    {
        return index < m_Children.size() ? m_Children[index].get() : nullptr;
    }
    // SIZE_MAX when `item` is not a child of this folder.
    size_t IndexOf(const CItem& item) const;
    // Inserts at `index` (appends when beyond the end) and takes ownership; returns the child.
    CItem* AddChild(std::unique_ptr<CItem> child, size_t index = SIZE_MAX);
    // Hands the child back to the caller, or null when it is not a child of this folder.
    std::unique_ptr<CItem> DetachChild(CItem& child);
    // Deletes the child with its whole subtree.
    bool DeleteChild(CItem& child);

    // The tree's host; set on the topmost folder by whoever owns the tree.
    void SetTreeHost(IItemTreeHost* host) { m_Host = host; }
    IItemTreeHost* GetTreeHost() const { return m_Host; }

protected:
    void WriteDump(CItemTextDumpWriter& writer) override;

private:
    bool ContainsDefaultFolder(bool childrenOnly) const;
    size_t CountKnownChildren(EChildKind which) const;
    bool IsLoadedInSubtree(EChildKind which) const;
    static bool Matches(const CItem& child, EChildKind which);

    std::vector<std::unique_ptr<CItem>> m_Children;
    uint8_t m_NotesLoaded = 0;
    uint8_t m_FoldersLoaded = 0;
    int m_DefaultFolderKind;
    IItemTreeHost* m_Host = nullptr;
};
