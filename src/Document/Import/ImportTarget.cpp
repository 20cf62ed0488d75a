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
