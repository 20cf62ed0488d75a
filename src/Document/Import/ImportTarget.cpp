#include "Document/Import/ImportTarget.h"

SImportItem SImportItem::Folder(std::u16string caption)
{
    SImportItem item;
    item.isFolder = true;
    item.caption = std::move(caption);
    return item;
}

SImportItem SImportItem::Note(std::u16string caption, CRichTextDocument text)
{
    SImportItem item;
    item.caption = std::move(caption);
    item.text = std::move(text);
    return item;
}

bool AddImportItems(std::vector<SImportItem>& items, IImportTarget& target, CFolderBase& parent)
{
    for (SImportItem& item : items)
    {
        if (!item.isFolder)
        {
            if (!target.AddNote(parent, item.caption, std::move(item.text)))
                return false;
            continue;
        }
        CFolderBase* folder = target.AddFolder(parent, item.caption);
        if (folder == nullptr || !AddImportItems(item.children, target, *folder))
            return false;
    }
    return true;
}
