#include "Document/Import/MemImportTarget.h"

#include "Document/MemFolder.h"
#include "Document/MemNote.h"

bool CMemImportTarget::AddItems(CFolderBase& parent, std::vector<SImportItem>& items)
{
    for (SImportItem& item : items)
    {
        if (item.isFolder)
        {
            auto folder = std::make_unique<CMemFolder>();
            folder->SetCaption(item.caption);
            AddItems(*static_cast<CFolderBase*>(parent.AddChild(std::move(folder))), item.children);
            continue;
        }
        auto note = std::make_unique<CMemNote>();
        note->SetCaption(item.caption);
        *note->GetRichText() = std::move(item.text);
        parent.AddChild(std::move(note));
    }
    return true;
}
