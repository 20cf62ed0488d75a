#include "Document/DefaultTree.h"

#include "Document/DBFolder.h"
#include "Document/DBNote.h"
#include "Document/DefaultFolders.h"
#include "Document/ItemRecords.h"
#include "Shared/LanguagesMgr/StringTemplate.h"

#include <memory>

using namespace ItemRecordFormat;

namespace
{
constexpr uint32_t FolderFields = CaptionField | AttributesField | ChildListField;
constexpr uint32_t NoteFields = CaptionField | AttributesField | RichTextField;

struct SSampleNote
{
    int folderKind;
    const char16_t* captionKey;
    const char16_t* textKey;
};

constexpr SSampleNote SampleNotes[] = {
    {0, u"WIZARDDLG_SAMPLE_TREE_WELCOME_CAPTION", u"WIZARDDLG_SAMPLE_TREE_WELCOME_TEXT"},
    {1, u"WIZARDDLG_SAMPLE_TREE_TASK_CAPTION", u"WIZARDDLG_SAMPLE_TREE_TASK_TEXT"},
    {3, u"WIZARDDLG_SAMPLE_TREE_IDEA_CAPTION", u"WIZARDDLG_SAMPLE_TREE_IDEA_TEXT"},
};

CDBFolder* AddDefaultFolder(CDBFolder& root, CItemRecords& records, int kind)
{
    auto folder = std::make_unique<CDBFolder>(&records, false, kind);
    folder->SetId(records.CreateItemRecord(CItemRecords::FolderItemKind, false, kind));
    if (folder->GetId().IsZero())
        return nullptr;
    folder->SetCaption(LoadLanguageString(DefaultFolderCaptionKey(kind)));
    return static_cast<CDBFolder*>(root.AddChild(std::move(folder)));
}

bool AddSampleNote(CDBFolder& folder, CItemRecords& records, const SSampleNote& sample)
{
    auto note = std::make_unique<CDBNote>(&records);
    note->SetId(records.CreateItemRecord(CItemRecords::NoteItemKind, false));
    if (note->GetId().IsZero())
        return false;
    note->SetCaption(LoadLanguageString(sample.captionKey));
    CRichTextDocument* text = note->GetRichText();
    if (!text)
        return false;
    text->BuildFromPlainText(LoadLanguageString(sample.textKey));
    CItem* added = folder.AddChild(std::move(note));
    return records.SaveItem(*added, NoteFields);
}
} // namespace

bool BuildDefaultTree(CDBFolder& root, CItemRecords& records)
{
    CDBFolder* folders[DefaultFolderKindCount] = {};
    for (int kind = 0; kind < DefaultFolderKindCount; ++kind)
        if (!(folders[kind] = AddDefaultFolder(root, records, kind)))
            return false;
    for (const SSampleNote& sample : SampleNotes)
        if (!AddSampleNote(*folders[sample.folderKind], records, sample))
            return false;
    for (CDBFolder* folder : folders)
        if (!records.SaveItem(*folder, FolderFields))
            return false;
    return records.SaveItem(root, FolderFields);
}
