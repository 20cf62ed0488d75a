#pragma once
// CDataCenter: the open document. It owns the field database of the current ".ddb" file and the
// item tree loaded from it; it creates, opens, saves and closes documents and makes backups.
//
// Changes are grouped: items announce what changed (the data center is the tree's host), the
// data center remembers which fields of which items are pending, and a save writes them all and
// flushes the file once at its end. Each editing call below (add, delete, move) is such a save.
// Every user-visible failure is logged once and shown in a message box with a language text.
#include "Document/FileTimes.h"
#include "Document/Import/ImportTarget.h"
#include "Document/ItemRecords.h"
#include "Document/ItemTreeHost.h"
#include "Shared/Base/File.h"
#include "Shared/Base/OleDate.h"
#include "Shared/DataFile/DBFile.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

class CDBFolder;
class CDBNote;
class CFolderBase;
class CItem;
class IMessageBox;

// The backup preferences the data center works with; the caller keeps them in the preferences
// ("BackupPrefsLastBackupDate", "BackupPrefsDelOldBackupDays") and reads the date back after a
// backup.
struct SBackupSettings
{
    std::u16string folder;
    OleDate lastBackupDate = 0;
    int deleteOldBackupDays = 0; // 0 keeps every backup
};

class CDataCenter : public IItemTreeHost, public IImportTarget
{
public:
    static constexpr uint32_t CacheTotalLimit = 10000000;
    static constexpr uint32_t CachePerRecordLimit = 1000;
    // Database headers, captions and attribute blocks are at most this long (a caption of up to
    // 127 characters); they travel in the cache record, so opening reads the tree sequentially.
    static constexpr uint32_t CarriedRecordLimit = 256;
    static constexpr uint32_t CloseDefragmentMs = 200;

    // Without a message box the one installed in the application connector is used.
    explicit CDataCenter(IFileSystem& fs = DiskFileSystem(), const IClock& clock = SystemClock(),
                         IFileTimes& times = DiskFileTimes(), IMessageBox* messageBox = nullptr);
    ~CDataCenter() override;
    CDataCenter(const CDataCenter&) = delete;
    CDataCenter& operator=(const CDataCenter&) = delete;

    // Life cycle.
    bool CreateDocument(const std::u16string& path);
    bool OpenDocument(const std::u16string& path);
    // Saves what is pending, then closes with defragmentation limited to 200 ms.
    void CloseDocument();
    bool SaveAs(const std::u16string& path);
    // Writes every pending change and flushes the file; true when there was nothing to write.
    bool Save();

    bool IsOpen() const { return m_Root != nullptr; }
    bool IsReadOnly();
    std::u16string GetFilePath();
    CDBFolder* GetRoot() { return m_Root.get(); }
    CItemRecords& GetRecords() { return m_Records; }
    CDBFile& GetDatabase() { return m_Db; }

    // Editing. Each call is one save: the changed fields of every touched item are written and
    // the file is flushed once.
    CDBFolder* AddFolder(CFolderBase& parent, std::u16string caption);
    CDBNote* AddNote(CFolderBase& parent, std::u16string caption, std::u16string_view plainText);
    // Refuses default folders and folders holding one (with the message); the records of the
    // whole subtree are deleted.
    bool DeleteItem(CItem& item);
    bool MoveItem(CItem& item, CFolderBase& newParent);
    // IImportTarget: the imported items are added and stored in one save; when a record cannot
    // be created or the save fails, what was added is deleted again.
    bool AddItems(CFolderBase& parent, std::vector<SImportItem>& items) override;
    // Remembers fields of an item for the next save (a note's edited text: the text field).
    void MarkChanged(const CItem& item, uint32_t fieldMask);
    bool HasPendingChanges() const { return !m_Pending.empty(); }

    // Backups.
    SBackupSettings& BackupSettings() { return m_Backup; }
    // A forced backup always copies; an automatic one only when the file was written after the
    // last backup, and then deletes backups older than the days to keep.
    bool Backup(bool forced);
    void DeleteOldBackups(const std::u16string& folder, const std::u16string& baseName, int days);
    // Receives the status bar text while a copy is written, and an empty text afterwards.
    void SetStatusTextSink(std::function<void(const std::u16string&)> sink)
    {
        m_StatusText = std::move(sink);
    }

    // IItemTreeHost
    void OnItemChanged(const CUInt128& itemId, EItemChange change) override;
    std::u16string GetText(std::u16string_view key) override;
    IMessageBox* GetMessageBox() override;

private:
    void SetStorageCacheLimits();
    bool FailOpen(const char16_t* key, const std::u16string& path, std::u16string_view appName = {});
    bool CheckIdentity(const std::u16string& path);
    bool LoadRoot(const std::u16string& path);
    void AttachRoot(std::unique_ptr<CDBFolder> root);
    void DiscardDocument();
    void ShowError(const char16_t* key, const std::u16string& path, std::u16string_view appName = {},
                   bool warning = false);
    bool WritePending();
    bool Flush();
    bool SaveNow(CItem& item, uint32_t fieldMask);
    bool AddImported(CFolderBase& parent, SImportItem& item);
    static void UnloadNoteTexts(CItem& item);
    void DeleteRecords(CItem& item);
    void ForgetPending(const CItem& item);
    bool DeleteExistingTarget(const std::u16string& path);
    bool CopyToBackup(const std::u16string& target);
    bool WrittenSinceLastBackup();

    IFileSystem& m_Fs;
    const IClock& m_Clock;
    IFileTimes& m_Times;
    IMessageBox* m_MessageBox;
    CDBFile m_Db;
    CItemRecords m_Records;
    std::unique_ptr<CDBFolder> m_Root;
    std::unordered_map<CUInt128, uint32_t, CUInt128Hash> m_Pending;
    SBackupSettings m_Backup;
    std::function<void(const std::u16string&)> m_StatusText;
};
