#pragma once
// Where imported folders and notes go. Importers first read their whole input into a tree of
// SImportItem, so that input they cannot read adds nothing; only then do they hand the tree to
// the target, which adds all of it or nothing: the data center on the document, and
// CMemImportTarget on in-memory items.
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
    // Appends `items` (their texts are moved out) to `parent`'s children, in order and with their
    // subtrees; either all of them or, after a log line, none.
    virtual bool AddItems(CFolderBase& parent, std::vector<SImportItem>& items) = 0;
};
