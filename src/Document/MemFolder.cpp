#include "Document/MemFolder.h"

CMemFolder::CMemFolder(bool notify, int defaultFolderKind) : CFolderBase(notify, defaultFolderKind)
{
    SetNotesLoaded(true);
    SetFoldersLoaded(true);
}

bool CMemFolder::LoadChildren(EChildKind which)
{
    if (which == EChildKind::Any)
        SetNotesLoaded(true);
    SetFoldersLoaded(true);
    return true;
}
