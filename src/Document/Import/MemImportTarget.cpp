#include "Document/Import/MemImportTarget.h"

#include "Document/MemFolder.h"
#include "Document/MemNote.h"

CFolderBase* CMemImportTarget::AddFolder(CFolderBase& parent, const std::u16string& caption)
{
    auto folder = std::make_unique<CMemFolder>();
    folder->SetCaption(caption);
    return static_cast<CFolderBase*>(parent.AddChild(std::move(folder)));
}

bool CMemImportTarget::AddNote(CFolderBase& parent, const std::u16string& caption, CRichTextDocument text)
{
    auto note = std::make_unique<CMemNote>();
    note->SetCaption(caption);
    *note->GetRichText() = std::move(text);
    parent.AddChild(std::move(note));
    return true;
}
