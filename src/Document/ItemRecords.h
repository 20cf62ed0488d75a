#pragma once
// The items of a document as records of its field database: creating an item's record, saving
// chosen fields of an item, loading folders (with their whole subtree) and notes (without their
// text), note texts on demand, the document information record and the file password record.
//
// A folder's default folder kind is kept in the first information word of its record: 0 for an
// ordinary folder, kind + 1 for a default folder.
#include "Document/ItemRecordFormat.h"
#include "Shared/Base/UInt128.h"
#include "Shared/Base/UInt128Index.h"

#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class CDBFile;
class CDBFolder;
class CDBNote;
class CFolderBase;
class CItem;
class CNoteBase;
class CRichTextDocument;
struct SDBFieldChange;
struct SDBFileRecordCacheEntry;

class CItemRecords
{
public:
    // Item kinds that ask for a record.
    static constexpr int FolderItemKind = 5;
    static constexpr int NoteItemKind = 6;

    explicit CItemRecords(CDBFile& database) : m_Db(database) {}

    CDBFile& GetDatabase() { return m_Db; }

    // Creates the record of a new item: a root folder (type 1), folder (2) or note (3). The zero
    // ID, after a log line, for any other kind or when the database refuses.
    CUInt128 CreateItemRecord(int itemKind, bool root, int defaultFolderKind = -1);

    // Writes the fields named by `fieldMask` (an OR of field codes) of a note or folder. A note's
    // text (mask 16) is written only when it is in memory, so a note that was never opened keeps
    // its stored text. All changed fields of the item are written together.
    bool SaveItem(CItem& item, uint32_t fieldMask);

    // Read an item's fields back; a folder brings its whole subtree.
    bool LoadNote(CDBNote& note, const CUInt128& id);
    bool LoadFolder(CDBFolder& folder, const CUInt128& id);
    // Reads the child list of a folder that has no children in memory yet.
    bool LoadChildList(CDBFolder& folder);
    // The note's text (an empty document when it has none stored).
    bool LoadRichText(const CUInt128& id, CRichTextDocument& text);
    bool LoadPlainText(const CUInt128& id, std::u16string& text);
    // The stored plain texts of many notes, for a search: each is handed to `visit` with the
    // note's index in `noteIds` and lives only during that call. The texts are read in file
    // order with large reads, whatever the order of `noteIds`. A note without a stored text
    // gets an empty one; one whose record or text cannot be read is logged and left out.
    // `visit` returns false to stop, which makes the result false, as does a failed read.
    using PlainTextVisitor = std::function<bool(size_t index, std::u16string_view text)>;
    bool VisitPlainTexts(std::span<const CUInt128> noteIds, const PlainTextVisitor& visit);

    // The file password.
    bool IsPasswordSet();
    bool CheckPassword(std::u16string_view password);
    bool SetPassword(std::u16string_view oldPassword, std::u16string_view newPassword);

    // The document information block, in the first record of type 4.
    using DocumentInfo = std::array<uint8_t, ItemRecordFormat::DocumentInfoSize>;
    bool SaveDocumentInfo(const DocumentInfo& info);
    bool LoadDocumentInfo(DocumentInfo& info);

    // Called with true when an item save begins and false when it ends, for the status bar.
    void SetSavingIndicator(std::function<void(bool)> indicator) { m_SavingIndicator = std::move(indicator); }

private:
    struct SPendingFolder;

    bool SaveNote(CNoteBase& note, uint32_t fieldMask);
    bool SaveFolder(CFolderBase& folder, uint32_t fieldMask);
    using FieldBuffers = std::deque<std::vector<uint8_t>>;
    void AddCaptionChange(const CItem& item, std::vector<SDBFieldChange>& changes, FieldBuffers& buffers);
    bool AddAlarmsChange(const CItem& item, std::vector<SDBFieldChange>& changes, FieldBuffers& buffers);
    bool AddTextChanges(const CRichTextDocument& text, std::vector<SDBFieldChange>& changes,
                        FieldBuffers& buffers);

    bool ReadField(const CUInt128& id, uint16_t field, std::vector<uint8_t>& data);
    bool LoadCommonFields(CItem& item, const CUInt128& id);
    void LoadExtendedData(CItem& item, const std::vector<uint8_t>* attributes, size_t offset);
    bool LoadFolderFields(CDBFolder& folder, const CUInt128& id);
    // The records met while loading a subtree, so that none is loaded twice.
    using LoadedIds = CUInt128Index<const SDBFileRecordCacheEntry>;
    void LoadChild(std::vector<SPendingFolder>& pending, LoadedIds& loaded, const CUInt128& childId);
    std::vector<CUInt128> ReadChildIds(const CUInt128& id);
    CUInt128 FindPasswordRecord();

    CDBFile& m_Db;
    std::function<void(bool)> m_SavingIndicator;
};
