#include "Document/DataCenter.h"

#include "Document/DBFolder.h"
#include "Document/DBNote.h"
#include "Document/DefaultTree.h"
#include "Document/DocumentIdentity.h"
#include "Shared/Base/AppConnector.h"
#include "Shared/Base/MessageBox.h"
#include "Shared/LanguagesMgr/StringTemplate.h"
#include "Shared/Log/Log.h"

#include <cstring>

using namespace ItemRecordFormat;

namespace
{

uint32_t FieldsOfChange(EItemChange change)
{
    switch (change)
    {
    case EItemChange::Content:
        return CaptionField | AttributesField;
    case EItemChange::Children:
        return ChildListField;
    case EItemChange::Alarms:
        return AlarmsField;
    }
    return 0;
}

template <class TVisit> void VisitSubtree(CItem& item, const TVisit& visit)
{
    if (auto* folder = dynamic_cast<CFolderBase*>(&item))
        for (size_t i = 0; i < folder->GetChildCount(); ++i)
            VisitSubtree(*folder->GetChild(i), visit);
    visit(item);
}

// The document information block: the creation date as a little-endian double, the rest zero.
CItemRecords::DocumentInfo MakeDocumentInfo(OleDate created)
{
    CItemRecords::DocumentInfo info{};
    uint64_t bits = 0;
    std::memcpy(&bits, &created, sizeof bits);
    for (size_t i = 0; i < 8; ++i)
        info[i] = static_cast<uint8_t>(bits >> (8 * i));
    return info;
}
} // namespace

CDataCenter::CDataCenter(IFileSystem& fs, const IClock& clock, IFileTimes& times, IMessageBox* messageBox)
    : m_Fs(fs), m_Clock(clock), m_Times(times), m_MessageBox(messageBox), m_Db(fs, clock), m_Records(m_Db)
{
}

CDataCenter::~CDataCenter()
{
    CloseDocument();
}

bool CDataCenter::CreateDocument(const std::u16string& path)
{
    CloseDocument();
    LogMessage(u"Generating new tree data...");
    const DocumentIdentity::StorageKey key = DocumentIdentity::DeriveStorageKey();
    if (!m_Db.Create(path, DocumentIdentity::CreatorSignature, DocumentIdentity::FileType,
                     DocumentIdentity::FileVersion, key))
    {
        LogMessage(u"Error: Cannot create tree storage file %s.", path);
        ShowError(u"ERR_CANNOT_CREATE_FILE", path);
        return false;
    }
    SetStorageCacheLimits();
    auto root = std::make_unique<CDBFolder>(&m_Records);
    root->SetId(m_Records.CreateItemRecord(CItemRecords::FolderItemKind, true));
    if (root->GetId().IsZero() || !BuildDefaultTree(*root, m_Records) ||
        !m_Records.SaveDocumentInfo(MakeDocumentInfo(m_Clock.NowLocal())) || !Flush())
    {
        m_Db.Close(false, 0);
        ShowError(u"ERR_CANNOT_CREATE_FILE", path);
        return false;
    }
    LogMessage(u"End of deafult tree data generation");
    AttachRoot(std::move(root));
    return true;
}

bool CDataCenter::OpenDocument(const std::u16string& path)
{
    CloseDocument();
    SetStorageCacheLimits();
    const DocumentIdentity::StorageKey key = DocumentIdentity::DeriveStorageKey();
    if (!m_Fs.Exists(path))
    {
        LogMessage(u"Error: Cannot load file %s - file does not exists.", path);
        return FailOpen(u"ERR_FILE_DOES_NOT_EXISTS", path);
    }
    if (!m_Db.Open(path, key))
    {
        LogMessage(u"Error: Cannot load file %s, it is corrupted or has newer version.", path);
        return FailOpen(u"ERR_CORRUPTED_FILE", path);
    }
    if (!CheckIdentity(path))
        return false;
    if (m_Db.GetDataFile().IsReadOnly())
    {
        LogMessage(u"Info: loaded file is write-protected. Please note that this feature is not completely "
                   u"implemented in this version of application, and modified data will not be saved to the "
                   u"file.");
        ShowError(u"ERR_WRITE_PROTECTED_FILE", path, {}, true);
    }
    return LoadRoot(path);
}

void CDataCenter::SetStorageCacheLimits()
{
    CDataFile& file = m_Db.GetDataFile();
    file.SetCacheLimits(CacheTotalLimit, CachePerRecordLimit);
    file.SetCarriedRecordLimit(CarriedRecordLimit);
}

bool CDataCenter::CheckIdentity(const std::u16string& path)
{
    CDataFile& file = m_Db.GetDataFile();
    const std::u16string signature = file.GetCreatorSignature();
    if (signature != DocumentIdentity::CreatorSignature)
    {
        LogMessage(u"Error: Cannot load file %s as it was written for another application (%s).", path,
                   signature);
        return FailOpen(u"ERR_WRONG_DATA_FILE_APP", path, signature);
    }
    const uint32_t type = file.GetFileType();
    if (type != DocumentIdentity::FileType)
    {
        LogMessage(u"Error: Cannot load file %s as it has incorrect file type (%d).", path, type);
        return FailOpen(u"ERR_INCORRECT_FILE_TYPE", path);
    }
    if (file.GetFileVersion() != DocumentIdentity::FileVersion)
    {
        LogMessage(u"Error: Cannot load file %s as it has incompatible file version. Probably you need to "
                   u"upgrade this software to be able to open this file.",
                   path);
        return FailOpen(u"ERR_WRONG_FILE_VERSION", path);
    }
    return true;
}

bool CDataCenter::LoadRoot(const std::u16string& path)
{
    auto root = std::make_unique<CDBFolder>(&m_Records);
    const bool loaded = m_Db.GetRecordsCountByType(RootFolderRecord) > 0 &&
                        m_Records.LoadFolder(*root, m_Db.GetRecordIDByTypedIndex(RootFolderRecord, 0));
    if (!loaded)
    {
        LogMessage(u"Error: Cannot load file %s. Error occured on loading root folder.", path);
        return FailOpen(u"ERR_CANNOT_LOAD_ROOT_FOLDER", path);
    }
    AttachRoot(std::move(root));
    return true;
}

bool CDataCenter::FailOpen(const char16_t* key, const std::u16string& path, std::u16string_view appName)
{
    DiscardDocument();
    ShowError(key, path, appName);
    return false;
}

void CDataCenter::AttachRoot(std::unique_ptr<CDBFolder> root)
{
    // Loading and generating run with notifications off; from here on every change of an item
    // reaches OnItemChanged and waits for the next save.
    root->SetTreeHost(this);
    root->SetNotify(true);
    m_Root = std::move(root);
}

void CDataCenter::DiscardDocument()
{
    m_Pending.clear();
    m_Root.reset();
    if (m_Db.IsOpen())
        m_Db.Close(false, 0);
}

void CDataCenter::CloseDocument()
{
    if (!m_Db.IsOpen())
    {
        m_Root.reset();
        return;
    }
    if (m_Root)
        Save();
    m_Pending.clear();
    m_Root.reset();
    m_Db.Close(true, CloseDefragmentMs);
}

bool CDataCenter::IsReadOnly()
{
    return m_Db.IsOpen() && m_Db.GetDataFile().IsReadOnly();
}

std::u16string CDataCenter::GetFilePath()
{
    return m_Db.IsOpen() ? m_Db.GetDataFile().GetFilePath() : std::u16string();
}

void CDataCenter::ShowError(const char16_t* key, const std::u16string& path, std::u16string_view appName,
                            bool warning)
{
    std::u16string text = GetText(key);
    ReplaceTag(text, u"^filename", path, key);
    if (!appName.empty())
        ReplaceTag(text, u"^appname", appName, key);
    if (IMessageBox* box = GetMessageBox())
        box->Show(text, warning ? EMsgIcon::Warning : EMsgIcon::Error);
}

std::u16string CDataCenter::GetText(std::u16string_view key)
{
    return LoadLanguageString(key);
}

IMessageBox* CDataCenter::GetMessageBox()
{
    if (m_MessageBox)
        return m_MessageBox;
    const CAppConnector* connector = CAppConnector::Get();
    return connector ? connector->GetMessageBox() : nullptr;
}

// Saving

void CDataCenter::OnItemChanged(const CUInt128& itemId, EItemChange change)
{
    if (!itemId.IsZero())
        m_Pending[itemId] |= FieldsOfChange(change);
}

void CDataCenter::MarkChanged(const CItem& item, uint32_t fieldMask)
{
    if (!item.GetId().IsZero())
        m_Pending[item.GetId()] |= fieldMask;
}

bool CDataCenter::Save()
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot save the document as no data file is open.");
        return false;
    }
    if (m_Pending.empty())
        return true;
    if (IsReadOnly())
    {
        LogMessage(u"Warning: changes are not saved to the write-protected file %s", GetFilePath());
        m_Pending.clear();
        return false;
    }
    const bool written = WritePending();
    return Flush() && written;
}

bool CDataCenter::WritePending()
{
    std::unordered_map<CUInt128, CItem*, CUInt128Hash> items;
    VisitSubtree(*m_Root,
                 [&](CItem& item)
                 {
                     if (m_Pending.count(item.GetId()))
                         items.emplace(item.GetId(), &item);
                 });
    bool written = true;
    for (const auto& [id, mask] : m_Pending)
    {
        const auto found = items.find(id);
        if (found != items.end() && !m_Records.SaveItem(*found->second, mask))
            written = false;
    }
    m_Pending.clear();
    return written;
}

bool CDataCenter::Flush()
{
    return m_Db.GetDataFile().Flush();
}

bool CDataCenter::SaveNow(CItem& item, uint32_t fieldMask)
{
    MarkChanged(item, fieldMask);
    return Save();
}

// Editing

CDBFolder* CDataCenter::AddFolder(CFolderBase& parent, std::u16string caption)
{
    const CUInt128 id = m_Records.CreateItemRecord(CItemRecords::FolderItemKind, false);
    if (id.IsZero())
        return nullptr;
    auto folder = std::make_unique<CDBFolder>(&m_Records, true);
    folder->SetId(id);
    folder->SetCaption(std::move(caption));
    auto* added = static_cast<CDBFolder*>(parent.AddChild(std::move(folder)));
    return SaveNow(*added, NewFolderFields) ? added : nullptr;
}

CDBNote* CDataCenter::AddNote(CFolderBase& parent, std::u16string caption, std::u16string_view plainText)
{
    const CUInt128 id = m_Records.CreateItemRecord(CItemRecords::NoteItemKind, false);
    if (id.IsZero())
        return nullptr;
    auto note = std::make_unique<CDBNote>(&m_Records, true);
    note->SetId(id);
    note->SetCaption(std::move(caption));
    CRichTextDocument* text = note->GetRichText();
    if (!text)
        return nullptr;
    text->BuildFromPlainText(plainText);
    auto* added = static_cast<CDBNote*>(parent.AddChild(std::move(note)));
    return SaveNow(*added, NewNoteFields) ? added : nullptr;
}

bool CDataCenter::DeleteItem(CItem& item)
{
    CFolderBase* parent = item.GetParent();
    if (!parent)
    {
        LogMessage(u"Error: The root folder cannot be deleted.");
        return false;
    }
    if (!item.CanDelete(false, true))
        return false;
    ForgetPending(item);
    // The parent stops naming the item before its records go, so an interrupted delete leaves
    // unreferenced records behind rather than a child list that names missing records.
    std::unique_ptr<CItem> detached = parent->DetachChild(item);
    const bool listSaved = Save();
    DeleteRecords(*detached);
    return Flush() && listSaved;
}

void CDataCenter::DeleteRecords(CItem& item)
{
    VisitSubtree(item,
                 [&](CItem& each)
                 {
                     if (!each.GetId().IsZero())
                         m_Db.DeleteRecord(each.GetId());
                 });
}

void CDataCenter::ForgetPending(const CItem& item)
{
    VisitSubtree(const_cast<CItem&>(item), [&](CItem& each) { m_Pending.erase(each.GetId()); });
}

bool CDataCenter::MoveItem(CItem& item, CFolderBase& newParent)
{
    return item.MoveTo(newParent) && Save();
}

// Save as

bool CDataCenter::SaveAs(const std::u16string& path)
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot save tree storage file as %s.", path);
        ShowError(u"ERR_CANNOT_SAVE_FILE", path);
        return false;
    }
    if (path == GetFilePath())
        return Save();
    if (m_Fs.Exists(path) && !DeleteExistingTarget(path))
        return false;
    Save();
    if (!m_Db.GetDataFile().SaveAs(path, false))
    {
        LogMessage(u"Error: Cannot save tree storage file as %s.", path);
        ShowError(u"ERR_CANNOT_SAVE_FILE", path);
        if (!m_Db.IsOpen())
            DiscardDocument();
        return false;
    }
    return true;
}

bool CDataCenter::DeleteExistingTarget(const std::u16string& path)
{
    int cause = 0;
    if (m_Fs.Delete(path, cause))
        return true;
    LogMessage(u"Error: Cannot delete already excisting file with same name - %s.", path);
    ShowError(u"ERR_CANNOT_DELETE_FILE", path);
    return false;
}
