#include "Document/DBFolder.h"

#include "Document/DBItemExtendedData.h"
#include "Document/ItemRecords.h"

CDBFolder::CDBFolder(CItemRecords* records, bool notify, int defaultFolderKind)
    : CFolderBase(notify, defaultFolderKind), m_Records(records)
{
    SetNotesLoaded(true);
    SetFoldersLoaded(true);
}

bool CDBFolder::LoadChildren(EChildKind which)
{
    if (CFolderBase* parent = GetParent(); parent && !parent->IsLoaded(EChildKind::Folders))
        if (!parent->LoadChildren(EChildKind::Folders))
            return false;
    if (IsLoaded(which))
        return true;
    if (m_Records && !GetId().IsZero() && GetChildCount() == 0 && !m_Records->LoadChildList(*this))
        return false;
    SetNotesLoaded(true);
    SetFoldersLoaded(true);
    return true;
}

void CDBFolder::RestoreOpenFlag(bool open)
{
    SetOpenFlagOnly(open);
}

std::unique_ptr<CItemExtendedData> CDBFolder::CreateExtendedData() const
{
    return std::make_unique<CDBItemExtendedData>();
}
