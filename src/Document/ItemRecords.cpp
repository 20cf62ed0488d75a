#include "Document/ItemRecords.h"

#include "Document/DBFolder.h"
#include "Document/DBItemExtendedData.h"
#include "Document/DBNote.h"
#include "Document/DefaultFolders.h"
#include "Shared/Base/Archive.h"
#include "Shared/DataFile/DBFile.h"
#include "Shared/Log/Log.h"
#include "Shared/RichText/PlainTextWriter.h"
#include "Shared/RichText/RichTextDocument.h"

#include <algorithm>
#include <deque>

using namespace ItemRecordFormat;

namespace
{
constexpr uint16_t InfoFieldOne = 1;
constexpr size_t ArchiveGrowStep = 1024;

void SetChange(std::vector<SDBFieldChange>& changes, std::deque<std::vector<uint8_t>>& buffers,
               uint16_t field, std::vector<uint8_t> bytes, int reserve)
{
    buffers.push_back(std::move(bytes));
    const std::vector<uint8_t>& stored = buffers.back();
    changes.push_back({field, stored.data(), static_cast<uint32_t>(stored.size()), reserve, false});
}

void RemoveChange(std::vector<SDBFieldChange>& changes, uint16_t field)
{
    changes.push_back({field, nullptr, 0, 0, true});
}

uint32_t StoredFolderKind(int defaultFolderKind)
{
    return IsDefaultFolderKind(defaultFolderKind) ? static_cast<uint32_t>(defaultFolderKind) + 1 : 0;
}

int FolderKindFromInfo(uint32_t word)
{
    const int kind = static_cast<int>(word) - 1;
    return word != 0 && IsDefaultFolderKind(kind) ? kind : CFolderBase::OrdinaryFolderKind;
}
} // namespace

struct CItemRecords::SPendingFolder
{
    CFolderBase* folder = nullptr;
    std::vector<CUInt128> childIds;
    size_t next = 0;
};

// ---- Creating and saving --------------------------------------------------------------------

CUInt128 CItemRecords::CreateItemRecord(int itemKind, bool root, int defaultFolderKind)
{
    CUInt128 id;
    if (itemKind == FolderItemKind)
        id = m_Db.CreateRecord(root ? RootFolderRecord : FolderRecord,
                               {StoredFolderKind(defaultFolderKind), 0, 0, 0});
    else if (itemKind == NoteItemKind)
        id = m_Db.CreateRecord(NoteRecord);
    if (id.IsZero())
        LogMessage(u"Error: Cannot create database record of type %d", itemKind);
    return id;
}

bool CItemRecords::SaveItem(CItem& item, uint32_t fieldMask)
{
    if (m_SavingIndicator)
        m_SavingIndicator(true);
    bool saved = false;
    if (auto* note = dynamic_cast<CNoteBase*>(&item))
        saved = SaveNote(*note, fieldMask);
    else if (auto* folder = dynamic_cast<CFolderBase*>(&item))
        saved = SaveFolder(*folder, fieldMask);
    if (m_SavingIndicator)
        m_SavingIndicator(false);
    return saved;
}

bool CItemRecords::SaveNote(CNoteBase& note, uint32_t fieldMask)
{
    if (note.GetId().IsZero())
    {
        LogMessage(u"Error: cannot save document in to the database as it has no assigned ID");
        return false;
    }
    note.DropEmptyExtendedData();
    std::vector<SDBFieldChange> changes;
    FieldBuffers buffers;
    bool prepared = true;
    if (fieldMask & CaptionField)
        AddCaptionChange(note, changes, buffers);
    if (fieldMask & AttributesField)
    {
        SNoteAttributes attributes;
        attributes.open = note.IsOpen() ? 1 : 0;
        for (size_t i = 0; i < AttributeWordCount; ++i)
            attributes.words[i] = note.GetAttribute(i);
        SetChange(changes, buffers, AttributesField,
                  EncodeNoteAttributes(attributes, note.FindExtendedData()), AttributesReserve);
    }
    if (fieldMask & AlarmsField)
        prepared = AddAlarmsChange(note, changes, buffers) && prepared;
    if (fieldMask & RichTextField)
    {
        const auto* stored = dynamic_cast<const CDBNote*>(&note);
        if (!stored || stored->IsTextLoaded())
            if (const CRichTextDocument* text = note.GetRichText())
                prepared = AddTextChanges(*text, changes, buffers) && prepared;
    }
    return m_Db.UpdateFields(note.GetId(), changes) && prepared;
}

bool CItemRecords::SaveFolder(CFolderBase& folder, uint32_t fieldMask)
{
    if (folder.GetId().IsZero())
    {
        LogMessage(u"Error: cannot save folder in to the database as it has no assigned ID");
        return false;
    }
    folder.DropEmptyExtendedData();
    std::vector<SDBFieldChange> changes;
    FieldBuffers buffers;
    bool prepared = true;
    if (fieldMask & CaptionField)
        AddCaptionChange(folder, changes, buffers);
    if (fieldMask & AttributesField)
    {
        const SFolderAttributes flags{static_cast<uint8_t>(folder.AreNotesLoaded() ? 1 : 0),
                                      static_cast<uint8_t>(folder.AreFoldersLoaded() ? 1 : 0),
                                      static_cast<uint8_t>(folder.IsOpen() ? 1 : 0)};
        SetChange(changes, buffers, AttributesField, EncodeFolderAttributes(flags, folder.FindExtendedData()),
                  AttributesReserve);
    }
    // A folder whose children are not all in memory would lose the others from its list.
    if ((fieldMask & ChildListField) && folder.IsLoaded(EChildKind::Any))
    {
        std::vector<CUInt128> ids;
        ids.reserve(folder.GetChildCount());
        for (size_t i = 0; i < folder.GetChildCount(); ++i)
            if (const CUInt128& id = folder.GetChild(i)->GetId(); !id.IsZero())
                ids.push_back(id);
        if (ids.empty())
            RemoveChange(changes, ChildListField);
        else
            SetChange(changes, buffers, ChildListField, EncodeChildList(ids), ChildListReserve);
    }
    if (fieldMask & AlarmsField)
        prepared = AddAlarmsChange(folder, changes, buffers) && prepared;
    if (fieldMask & SyncSettingsField)
        if (const auto* stored = dynamic_cast<const CDBFolder*>(&folder))
        {
            if (stored->GetSyncSettings().empty())
                RemoveChange(changes, SyncSettingsField);
            else
                SetChange(changes, buffers, SyncSettingsField, stored->GetSyncSettings(),
                          SyncSettingsReserve);
        }
    return m_Db.UpdateFields(folder.GetId(), changes) && prepared;
}

void CItemRecords::AddCaptionChange(const CItem& item, std::vector<SDBFieldChange>& changes,
                                    FieldBuffers& buffers)
{
    if (item.GetCaption().empty())
        RemoveChange(changes, CaptionField);
    else
        SetChange(changes, buffers, CaptionField, EncodeText(item.GetCaption()), CaptionReserve);
}

bool CItemRecords::AddAlarmsChange(const CItem& item, std::vector<SDBFieldChange>& changes,
                                   FieldBuffers& buffers)
{
    const CAlarmsArray* alarms = item.FindAlarms();
    if (!alarms)
    {
        RemoveChange(changes, AlarmsField);
        return true;
    }
    CArchiveWriter archive;
    if (!alarms->Save(archive))
        return false;
    SetChange(changes, buffers, AlarmsField, archive.Take(), AlarmsReserve);
    return true;
}

bool CItemRecords::AddTextChanges(const CRichTextDocument& text, std::vector<SDBFieldChange>& changes,
                                  FieldBuffers& buffers)
{
    if (text.IsEmpty())
    {
        RemoveChange(changes, RichTextField);
        RemoveChange(changes, PlainTextField);
        RemoveChange(changes, PreviewTextField);
        return true;
    }
    CArchiveWriter archive(ArchiveGrowStep);
    if (text.Serialize(archive) != 0)
        return false;
    if (archive.Size() > 0)
        SetChange(changes, buffers, RichTextField, archive.Take(), RichTextReserve);
    const std::u16string plain = ToPlainText(text);
    SetChange(changes, buffers, PlainTextField, EncodeText(plain), PlainTextReserve);
    if (plain.size() >= PreviewThreshold)
        SetChange(changes, buffers, PreviewTextField, EncodeText(BuildPreview(plain)), PreviewTextReserve);
    else
        RemoveChange(changes, PreviewTextField);
    return true;
}

// ---- Loading --------------------------------------------------------------------------------

bool CItemRecords::ReadField(const CUInt128& id, uint16_t field, std::vector<uint8_t>& data)
{
    const SDBFileRecordCacheEntry* entry = m_Db.FindRecord(id);
    if (!entry || !entry->FindField(field))
        return false;
    return m_Db.GetFieldData(id, field, data);
}

bool CItemRecords::LoadCommonFields(CItem& item, const CUInt128& id)
{
    const SDBFileRecordCacheEntry* entry = m_Db.FindRecord(id);
    if (!entry)
    {
        LogMessage(u"Error: Cannot get database record cache references, as record ID is invalid");
        return false;
    }
    item.SetId(id);
    std::vector<uint8_t> data;
    if (entry->FindField(CaptionField) && !m_Db.GetFieldData(id, CaptionField, data))
        return false;
    item.SetCaption(entry->FindField(CaptionField) ? DecodeText(data) : std::u16string());
    if (entry->FindField(AlarmsField))
    {
        if (!m_Db.GetFieldData(id, AlarmsField, data))
            return false;
        if (!data.empty())
        {
            CArchiveReader archive(data);
            item.GetAlarms(true)->Load(archive);
        }
    }
    return true;
}

void CItemRecords::LoadExtendedData(CItem& item, const std::vector<uint8_t>* attributes, size_t offset)
{
    const uint8_t* block = attributes ? FindExtendedBlock(*attributes, offset) : nullptr;
    if (block)
        static_cast<CDBItemExtendedData*>(item.GetExtendedData(true))->ReadFrom(block);
    else if (CItemExtendedData* existing = item.GetExtendedData(false))
        existing->Clear();
    item.DropEmptyExtendedData();
}

bool CItemRecords::LoadNote(CDBNote& note, const CUInt128& id)
{
    if (!LoadCommonFields(note, id))
        return false;
    std::vector<uint8_t> attributes;
    if (m_Db.FindRecord(id)->FindField(AttributesField))
    {
        if (!m_Db.GetFieldData(id, AttributesField, attributes))
            return false;
        const SNoteAttributes decoded = DecodeNoteAttributes(attributes);
        note.RestoreOpenFlag(decoded.open != 0);
        for (size_t i = 0; i < AttributeWordCount; ++i)
            note.SetAttribute(i, decoded.words[i]);
        LoadExtendedData(note, &attributes, NoteExtendedOffset);
    }
    else
    {
        LogMessage(u"Warning: Note DB record has no attribute field");
        note.RestoreOpenFlag(true);
        LoadExtendedData(note, nullptr, 0);
    }
    return true;
}

bool CItemRecords::LoadFolderFields(CDBFolder& folder, const CUInt128& id)
{
    if (!LoadCommonFields(folder, id))
        return false;
    const SDBFileRecordCacheEntry* entry = m_Db.FindRecord(id);
    folder.SetDefaultFolderKind(FolderKindFromInfo(entry->info[0]));
    std::vector<uint8_t> settings;
    if (entry->FindField(SyncSettingsField) && !m_Db.GetFieldData(id, SyncSettingsField, settings))
        return false;
    folder.SetSyncSettings(std::move(settings));
    std::vector<uint8_t> attributes;
    if (entry->FindField(AttributesField))
    {
        if (!m_Db.GetFieldData(id, AttributesField, attributes))
            return false;
        const SFolderAttributes flags = DecodeFolderAttributes(attributes);
        folder.SetNotesLoaded(flags.notesLoaded != 0);
        folder.SetFoldersLoaded(flags.foldersLoaded != 0);
        folder.RestoreOpenFlag(flags.open != 0);
        LoadExtendedData(folder, &attributes, FolderExtendedOffset);
    }
    else
    {
        LogMessage(u"Warning: folder DB record has no attribute field");
        folder.SetNotesLoaded(false);
        folder.SetFoldersLoaded(false);
        folder.RestoreOpenFlag(true);
        LoadExtendedData(folder, nullptr, 0);
    }
    return true;
}

bool CItemRecords::LoadFolder(CDBFolder& folder, const CUInt128& id)
{
    if (!LoadFolderFields(folder, id))
        return false;
    return LoadChildList(folder);
}

bool CItemRecords::LoadChildList(CDBFolder& folder)
{
    std::vector<SPendingFolder> pending;
    pending.push_back({&folder, ReadChildIds(folder.GetId()), 0});
    LoadedIds loaded;
    if (const SDBFileRecordCacheEntry* own = m_Db.FindRecord(folder.GetId()))
        loaded.Insert(folder.GetId(), own);
    // Walks the subtree with an explicit stack: a damaged file may nest folders very deeply.
    while (!pending.empty())
    {
        SPendingFolder& top = pending.back();
        if (top.next == top.childIds.size())
        {
            top.folder->SetNotesLoaded(true);
            top.folder->SetFoldersLoaded(true);
            pending.pop_back();
            continue;
        }
        const CUInt128 childId = top.childIds[top.next++];
        LoadChild(pending, loaded, childId);
    }
    return true;
}

void CItemRecords::LoadChild(std::vector<SPendingFolder>& pending, LoadedIds& loaded, const CUInt128& childId)
{
    CFolderBase& parent = *pending.back().folder;
    const SDBFileRecordCacheEntry* entry = m_Db.FindRecord(childId);
    if (!entry)
    {
        LogMessage(u"Error: Folder sub-item DB record not found.");
        return;
    }
    // An ID met twice would loop forever (a folder listing an ancestor) or duplicate an item.
    const bool repeated = loaded.Find(childId) != nullptr;
    if (!repeated)
        loaded.Insert(childId, entry);
    if (entry->recordType == FolderRecord)
    {
        auto child = std::make_unique<CDBFolder>(this, parent.IsNotifying());
        if (repeated || !LoadFolderFields(*child, childId))
        {
            LogMessage(u"Error: Cannot load sub-folder item");
            return;
        }
        CItem* added = parent.AddChild(std::move(child));
        pending.push_back({static_cast<CFolderBase*>(added), ReadChildIds(childId), 0});
    }
    else if (entry->recordType == NoteRecord)
    {
        auto child = std::make_unique<CDBNote>(this, parent.IsNotifying());
        if (repeated || !LoadNote(*child, childId))
        {
            LogMessage(u"Error: Cannot load sub-note item");
            return;
        }
        parent.AddChild(std::move(child));
    }
    else
        LogMessage(u"Error: Unknown folder sub-item type found. Type = %d", entry->recordType);
}

std::vector<CUInt128> CItemRecords::ReadChildIds(const CUInt128& id)
{
    std::vector<uint8_t> data;
    if (!ReadField(id, ChildListField, data))
        return {};
    return DecodeChildList(data);
}

bool CItemRecords::LoadRichText(const CUInt128& id, CRichTextDocument& text)
{
    if (!m_Db.FindRecord(id))
    {
        LogMessage(u"Error: Cannot get database record cache references, as record ID is invalid");
        return false;
    }
    text.Clear();
    if (!m_Db.FindRecord(id)->FindField(RichTextField))
        return true;
    std::vector<uint8_t> data;
    if (!m_Db.GetFieldData(id, RichTextField, data))
        return false;
    CArchiveReader archive(data);
    return text.Serialize(archive) == 0;
}

bool CItemRecords::LoadPlainText(const CUInt128& id, std::u16string& text)
{
    const SDBFileRecordCacheEntry* entry = m_Db.FindRecord(id);
    if (!entry)
    {
        LogMessage(u"Error: Cannot get database record cache references, as record ID is invalid");
        return false;
    }
    text.clear();
    if (!entry->FindField(PlainTextField))
        return true;
    std::vector<uint8_t> data;
    if (!m_Db.GetFieldData(id, PlainTextField, data))
        return false;
    text = DecodeText(data);
    return true;
}

bool CItemRecords::VisitPlainTexts(std::span<const CUInt128> noteIds, const PlainTextVisitor& visit)
{
    std::vector<CUInt128> textIds;
    std::vector<size_t> noteOfText;
    textIds.reserve(noteIds.size());
    noteOfText.reserve(noteIds.size());
    for (size_t i = 0; i < noteIds.size(); ++i)
    {
        const SDBFileRecordCacheEntry* entry = m_Db.FindRecord(noteIds[i]);
        if (!entry)
        {
            LogMessage(u"Error: Cannot get database record cache references, as record ID is invalid");
            continue;
        }
        const SFieldCacheEntry* field = entry->FindField(PlainTextField);
        if (!field)
        {
            if (!visit(i, std::u16string_view()))
                return false;
            continue;
        }
        textIds.push_back(field->dataId);
        noteOfText.push_back(i);
    }
    // One buffer for every text, grown to the longest.
    std::vector<char16_t> units;
    return m_Db.GetDataFile().VisitRecordsData(textIds,
                                               [&](size_t index, std::span<const uint8_t> data)
                                               {
                                                   if (units.size() < data.size() / 2)
                                                       units.resize(data.size() / 2);
                                                   const size_t length = DecodeTextInto(data, units.data());
                                                   return visit(noteOfText[index],
                                                                std::u16string_view(units.data(), length));
                                               });
}

// ---- Password and document information ------------------------------------------------------

CUInt128 CItemRecords::FindPasswordRecord()
{
    if (m_Db.GetRecordsCountByType(PasswordRecord) == 0)
        return {};
    return m_Db.GetRecordIDByTypedIndex(PasswordRecord, 0);
}

bool CItemRecords::IsPasswordSet()
{
    return m_Db.GetRecordsCountByType(PasswordRecord) > 0;
}

bool CItemRecords::CheckPassword(std::u16string_view password)
{
    if (password.empty())
        return true;
    const CUInt128 id = FindPasswordRecord();
    if (id.IsZero())
        return false;
    std::vector<uint8_t> data;
    if (!ReadField(id, InfoFieldOne, data) || data.size() != PasswordFieldSize)
    {
        LogMessage(u"Error: Unable to retrieve DB security attributes.");
        return true;
    }
    return DecodePasswordHash(std::span<const uint8_t, PasswordFieldSize>(data.data(), PasswordFieldSize)) ==
           PasswordHash(password);
}

bool CItemRecords::SetPassword(std::u16string_view oldPassword, std::u16string_view newPassword)
{
    if (!CheckPassword(oldPassword))
    {
        LogMessage(u"Error: Cannot change DB password, as the old password does not match");
        return false;
    }
    CUInt128 id = FindPasswordRecord();
    if (newPassword.empty())
    {
        if (id.IsZero() || m_Db.DeleteRecord(id))
            return true;
        LogMessage(u"Error: Cannot remove old DB password");
        return false;
    }
    if (id.IsZero())
        id = m_Db.CreateRecord(PasswordRecord);
    const auto hash = EncodePasswordHash(PasswordHash(newPassword));
    if (id.IsZero() || !m_Db.SetFieldData(id, InfoFieldOne, hash.data(), PasswordFieldSize, PasswordReserve))
    {
        LogMessage(u"Error: Cannot set up DB password");
        return false;
    }
    return true;
}

bool CItemRecords::SaveDocumentInfo(const DocumentInfo& info)
{
    CUInt128 id;
    if (m_Db.GetRecordsCountByType(DocumentInfoRecord) > 0)
        id = m_Db.GetRecordIDByTypedIndex(DocumentInfoRecord, 0);
    else
        id = m_Db.CreateRecord(DocumentInfoRecord);
    if (id.IsZero())
        return false;
    return m_Db.SetFieldData(id, InfoFieldOne, info.data(), static_cast<uint32_t>(info.size()),
                             DocumentInfoReserve);
}

bool CItemRecords::LoadDocumentInfo(DocumentInfo& info)
{
    std::vector<uint8_t> data;
    const CUInt128 id = m_Db.GetRecordsCountByType(DocumentInfoRecord) > 0
                            ? m_Db.GetRecordIDByTypedIndex(DocumentInfoRecord, 0)
                            : CUInt128();
    if (id.IsZero() || !ReadField(id, InfoFieldOne, data) || data.size() != info.size())
    {
        LogMessage(u"Warning: document information record is missing or damaged");
        return false;
    }
    std::copy(data.begin(), data.end(), info.begin());
    return true;
}
