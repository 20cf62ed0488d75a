#pragma once
// The import target over in-memory items: folders become CMemFolder, notes CMemNote. Adding to
// memory cannot fail halfway.
#include "Document/Import/ImportTarget.h"

class CMemImportTarget : public IImportTarget
{
public:
    bool AddItems(CFolderBase& parent, std::vector<SImportItem>& items) override;
};
