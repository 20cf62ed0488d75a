#pragma once
// A folder held in memory only: all its children are there from the start, so both kinds count
// as loaded.
#include "Document/FolderBase.h"

class CMemFolder : public CFolderBase
{
public:
    explicit CMemFolder(bool notify = false, int defaultFolderKind = OrdinaryFolderKind);

    bool LoadChildren(EChildKind which) override;
};
