// The data center as the target of imports: all imported items are stored in one save, or none.
#include "Document/DBFolder.h"
#include "Document/DBNote.h"
#include "Document/DataCenter.h"
#include "Document/ItemRecordFormat.h"
#include "Shared/Log/Log.h"

using namespace ItemRecordFormat;

bool CDataCenter::AddItems(CFolderBase& parent, std::vector<SImportItem>& items)
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot import as no data file is open.");
        return false;
    }
    if (IsReadOnly())
    {
        LogMessage(u"Warning: nothing is imported into the write-protected file %s", GetFilePath());
        return false;
    }
    const size_t keptChildren = parent.GetChildCount();
    bool added = true;
    for (SImportItem& item : items)
    {
        if (!AddImported(parent, item))
        {
            added = false;
            break;
        }
    }
    if (added && Save())
    {
        // The texts are stored now; they are read again when a note is opened.
        for (size_t i = keptChildren; i < parent.GetChildCount(); ++i)
            UnloadNoteTexts(*parent.GetChild(i));
        return true;
    }
    // The failure was logged where it happened; the items added so far go again, records and all.
    while (parent.GetChildCount() > keptChildren)
        DeleteItem(*parent.GetChild(parent.GetChildCount() - 1));
    // While the disk keeps failing, the stored child list may still name them: it is written
    // again with the next save that succeeds.
    MarkChanged(parent, ChildListField);
    return false;
}

void CDataCenter::UnloadNoteTexts(CItem& item)
{
    if (auto* note = dynamic_cast<CDBNote*>(&item))
        note->UnloadText();
    else if (auto* folder = dynamic_cast<CFolderBase*>(&item))
        for (size_t i = 0; i < folder->GetChildCount(); ++i)
            UnloadNoteTexts(*folder->GetChild(i));
}

bool CDataCenter::AddImported(CFolderBase& parent, SImportItem& item)
{
    const CUInt128 id = m_Records.CreateItemRecord(
        item.isFolder ? CItemRecords::FolderItemKind : CItemRecords::NoteItemKind, false);
    if (id.IsZero())
        return false;
    if (item.isFolder)
    {
        auto folder = std::make_unique<CDBFolder>(&m_Records, true);
        folder->SetId(id);
        folder->SetCaption(std::move(item.caption));
        auto* added = static_cast<CDBFolder*>(parent.AddChild(std::move(folder)));
        MarkChanged(*added, NewFolderFields);
        for (SImportItem& child : item.children)
            if (!AddImported(*added, child))
                return false;
        return true;
    }
    auto note = std::make_unique<CDBNote>(&m_Records, true);
    note->SetId(id);
    note->SetCaption(std::move(item.caption));
    CRichTextDocument* text = note->GetRichText();
    if (!text)
    {
        m_Db.DeleteRecord(id);
        return false;
    }
    *text = std::move(item.text);
    MarkChanged(*parent.AddChild(std::move(note)), NewNoteFields);
    return true;
}
