#pragma once
// The import target over in-memory items: folders become CMemFolder, notes CMemNote.
#include "Document/Import/ImportTarget.h"

class CMemImportTarget : public IImportTarget
{
public:
    CFolderBase* AddFolder(CFolderBase& parent, const std::u16string& caption) override;
    bool AddNote(CFolderBase& parent, const std::u16string& caption, CRichTextDocument text) override;
};
