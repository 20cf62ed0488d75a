#pragma once
// Where imported folders and notes go. Importers first read their whole input into a tree of
// SImportItem, so that input they cannot read adds nothing; only then do they hand the tree to
// the target, which the data center implements on the document (and CMemImportTarget on
// in-memory items).
#include "Shared/RichText/RichTextDocument.h"

#include <string>
#include <vector>

class CFolderBase;

// A folder with its children, or a note with its text.
struct SImportItem
{
    bool isFolder = false;
    std::u16string caption;
    CRichTextDocument text;            // notes only
    std::vector<SImportItem> children; // folders only

    static SImportItem Folder(std::u16string caption);
    static SImportItem Note(std::u16string caption, CRichTextDocument text);
};

class IImportTarget
{
public:
    virtual ~IImportTarget() = default;
    // The new folder, appended to `parent`'s children; null after the target logged why not.
    virtual CFolderBase* AddFolder(CFolderBase& parent, const std::u16string& caption) = 0;
    // Appends a note; false after the target logged why not.
    virtual bool AddNote(CFolderBase& parent, const std::u16string& caption, CRichTextDocument text) = 0;
};

// Adds `items` under `parent` in order, depth first. Stops at the first refusal of the target
// and returns false (what was added until then stays).
bool AddImportItems(std::vector<SImportItem>& items, IImportTarget& target, CFolderBase& parent);
