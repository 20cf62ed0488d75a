#pragma once
// A note backed by a record of the document's field database. Loading a document reads the
// note's caption, attributes and alarms; its text stays in storage until the note is opened.
#include "Document/NoteBase.h"
#include "Shared/RichText/RichTextDocument.h"

#include <memory>

class CItemRecords;

class CDBNote : public CNoteBase
{
public:
    // `records` is the document's item store, not owned; null for a note that is not stored.
    explicit CDBNote(CItemRecords* records, bool notify = false);

    // Reads the text from the record on first use; null when it cannot be read (tried again on
    // the next call).
    CRichTextDocument* GetRichText() override;
    // From the text in memory when it is loaded (it may hold unsaved changes), else from the
    // record's plain text field, leaving the rich text in storage.
    bool GetPlainText(std::u16string& text) override;
    bool IsTextLoaded() const { return m_Text != nullptr; }
    // The store GetPlainText would read the text from, or null when it would not read the store
    // (the text is in memory, or the note is not stored); lets a search read many texts at once.
    CItemRecords* StoredTextSource() const { return m_Text || GetId().IsZero() ? nullptr : m_Records; }
    // Forgets the text in memory; the next GetRichText reads it again.
    void UnloadText() { m_Text.reset(); }

    // Sets the open flag read from the record.
    void RestoreOpenFlag(bool open);

protected:
    std::unique_ptr<CItemExtendedData> CreateExtendedData() const override;
    // A dump reads the text; one that was in storage goes back there afterwards, so dumping a
    // large tree does not keep every text in memory.
    void WriteDump(CItemTextDumpWriter& writer) override;

private:
    CItemRecords* m_Records;
    std::unique_ptr<CRichTextDocument> m_Text;
};
