#pragma once
// A folder backed by a record of the document's field database. Loading a folder reads its whole
// subtree at once (except note texts), so a loaded folder has both kinds of children loaded.
#include "Document/FolderBase.h"

#include <cstdint>
#include <vector>

class CItemRecords;

class CDBFolder : public CFolderBase
{
public:
    // `records` is the document's item store, not owned. A new folder has nothing stored below
    // it, so both kinds of children count as loaded until the folder is loaded from its record.
    explicit CDBFolder(CItemRecords* records, bool notify = false,
                       int defaultFolderKind = OrdinaryFolderKind);

    // Makes sure the parent chain is loaded, then reads the child list from the record when this
    // folder's children of the kind are not loaded yet.
    bool LoadChildren(EChildKind which) override;

    // The folder synchronisation settings, kept as stored (empty: none).
    const std::vector<uint8_t>& GetSyncSettings() const { return m_SyncSettings; }
    void SetSyncSettings(std::vector<uint8_t> settings) { m_SyncSettings = std::move(settings); }

    // Sets the open flag read from the record on this folder only (SetOpen reaches the children).
    void RestoreOpenFlag(bool open);

protected:
    std::unique_ptr<CItemExtendedData> CreateExtendedData() const override;

private:
    CItemRecords* m_Records;
    std::vector<uint8_t> m_SyncSettings;
};
