// CDataCenter: backup copies and the deletion of old ones.
#include "Document/BackupNames.h"
#include "Document/DataCenter.h"
#include "Shared/Log/Log.h"

#include <vector>

bool CDataCenter::Backup(bool forced)
{
    if (!IsOpen())
    {
        LogMessage(u"Error: Cannot make a backup copy as no data file is open.");
        return false;
    }
    // Pending changes go first, so that the copy holds them and the file's time tells whether
    // anything was written since the last backup.
    Save();
    if (!forced && !WrittenSinceLastBackup())
        return true;
    const std::u16string path = GetFilePath();
    const std::u16string folder = m_Backup.folder.empty() ? FolderOf(path) : m_Backup.folder;
    int cause = 0;
    if (!folder.empty() && !m_Fs.IsFolder(folder) && !m_Fs.CreateFolder(folder, cause))
    {
        LogMessage(u"Error: Cannot create backup folder %s, cause - %d", folder, cause);
        return false;
    }
    const std::u16string target =
        BackupNames::MakeBackupPath(folder, path, m_Clock.NowLocal(),
                                    [&](const std::u16string& candidate) { return m_Fs.Exists(candidate); });
    if (!CopyToBackup(target))
        return false;
    m_Backup.lastBackupDate = m_Clock.NowLocal();
    if (!forced && m_Backup.deleteOldBackupDays != 0)
        DeleteOldBackups(folder, BackupNames::BaseNameOf(path), m_Backup.deleteOldBackupDays);
    return true;
}

bool CDataCenter::WrittenSinceLastBackup()
{
    OleDate written = 0;
    int cause = 0;
    // A file whose time cannot be read is backed up: a needless copy costs less than a lost one.
    return !m_Times.GetLastWriteTime(GetFilePath(), written, cause) || written > m_Backup.lastBackupDate;
}

bool CDataCenter::CopyToBackup(const std::u16string& target)
{
    if (m_StatusText)
        m_StatusText(GetText(u"MAIN_WND_STATUS_SAVING") + u" " + GetText(u"MAIN_WND_STATUS_WAIT"));
    const bool copied = m_Db.GetDataFile().SaveAs(target, true);
    if (m_StatusText)
        m_StatusText(std::u16string());
    return copied;
}

void CDataCenter::DeleteOldBackups(const std::u16string& folder, const std::u16string& baseName, int days)
{
    if (days <= 0)
        return;
    try
    {
        const OleDate threshold = m_Clock.NowLocal() - days;
        const std::u16string prefix = BackupNames::WithTrailingSeparator(folder);
        // Collected first, deleted afterwards, so the deletions do not disturb the folder walk.
        std::vector<std::u16string> old;
        for (const SFolderEntry& entry : m_Fs.ListFolder(folder, u"*"))
        {
            if (entry.isFolder || !BackupNames::IsBackupName(entry.name, baseName))
                continue;
            OleDate time = 0;
            int cause = 0;
            if (m_Times.GetLastWriteTime(prefix + entry.name, time, cause) && time < threshold)
                old.push_back(prefix + entry.name);
        }
        for (const std::u16string& path : old)
        {
            int cause = 0;
            if (m_Fs.Delete(path, cause))
                LogMessage(u"Info: Old backup file %s successfully deleted", path);
            else
                LogMessage(u"Error: Cannot delete old backup file %s (error code %d)", path, cause);
        }
    }
    catch (...)
    {
        LogMessage(u"Error: Generic exception caught on old backups deletion!");
    }
}
