#include "Shared/DataFile/DataFile.h"

#include "Shared/DataFile/DataFileDeletedSpace.h"
#include "Shared/DataFile/DataFileIo.h"
#include "Shared/DataFile/DataFileRecordsCache.h"
#include "Shared/Log/Log.h"

#include <string_view>

using namespace DataFileFormat;

CDataFileAccessLock::CDataFileAccessLock(const CDataFile& file) : m_Section(file.AccessLock())
{
    m_Section.Lock();
    if (!m_Section.IsHeldByCurrentThread())
        LogAssertion(u"Error: Cannot lock data file semaphore!!!", u"Shared/DataFile", 2753);
}

CDataFileAccessLock::~CDataFileAccessLock()
{
    m_Section.Unlock();
}

CDataFile::CDataFile(IFileSystem& fs, const IClock& clock)
    : m_Fs(fs), m_Clock(clock), m_Internal(std::make_unique<CRecordsCache>(m_Budget)),
      m_External(std::make_unique<CRecordsCache>(m_Budget)), m_Deleted(std::make_unique<CDeletedSpaceList>())
{
}

CDataFile::~CDataFile()
{
    if (m_File)
        Close(false, 0);
}

bool CDataFile::IsOpen() const
{
    CDataFileAccessLock lock(*this);
    return m_File != nullptr;
}

std::u16string CDataFile::GetFilePath() const
{
    CDataFileAccessLock lock(*this);
    return m_Path;
}

bool CDataFile::OpenHandle(const std::u16string& path, EFileOpen mode, std::span<const uint8_t> key)
{
    int cause = 0;
    m_File = m_Fs.Open(path, mode, EFileShare::DenyWrite, cause);
    if (!m_File)
    {
        LogMessage(
            u"Error: Cannot open data file %s. Possible reason - file does not exists or no access rights to "
            u"the file",
            path);
        return false;
    }
    m_Path = path;
    m_Cipher.SetKey(key);
    return true;
}

void CDataFile::CloseHandle()
{
    m_File.reset();
    ResetState();
}

void CDataFile::ResetState()
{
    m_Cipher.Clear();
    ClearCaches();
    m_FileLength = 0;
    m_CacheRecordLive = false;
    m_CarriedDataRead = false;
    m_CacheFromRecord = false;
}

bool CDataFile::Create(const std::u16string& path, std::u16string_view creatorSignature, uint32_t fileType,
                       uint32_t fileVersion, std::span<const uint8_t> key)
{
    CDataFileAccessLock lock(*this);
    if (m_File)
    {
        LogMessage(u"Warning: Attempt to create data file while old instance is still open.");
        Close(true, 200);
    }
    if (!OpenHandle(path, EFileOpen::CreateTruncate, key))
        return false;
    try
    {
        m_FileLength = 0;
        m_Header.Reset(creatorSignature, fileType, fileVersion, CDataFileHeader::KeyChecksum(m_Cipher.Key()));
        if (!SaveHeader())
        {
            LogMessage(u"Error: Cannot save %s data file due to invalid header.", path);
            CloseHandle();
            return false;
        }
        if (!BuildCacheByScan())
        {
            LogMessage(u"Error: Cannot build up %s data file due to an error on building cache map.", path);
            CloseHandle();
            return false;
        }
        return true;
    }
    catch (const CDataFileError& e)
    {
        LogMessage(u"Error: CFileException caught on opening data file. File name - %s, cause - %d", path,
                   e.cause);
    }
    catch (...)
    {
        LogMessage(u"Error: General exception caught on loading %s data file. Possible reason - file does "
                   u"not exists "
                   u"or no access rights to the file",
                   path);
    }
    CloseHandle();
    return false;
}

bool CDataFile::Open(const std::u16string& path, std::span<const uint8_t> key)
{
    CDataFileAccessLock lock(*this);
    if (m_File)
    {
        LogMessage(u"Warning: Attempt to open data file while old instance is still open.");
        Close(true, 200);
    }
    if (!OpenHandle(path, EFileOpen::OpenExisting, key))
        return false;
    try
    {
        m_FileLength = DataFileIo::Length(*m_File);
        if (!LoadHeader())
        {
            LogMessage(u"Error: Cannot load %s data file due to invalid header.", path);
            CloseHandle();
            return false;
        }
        if (!LoadCache())
        {
            LogMessage(u"Error: Cannot load %s data file due to an error on building cache map.", path);
            CloseHandle();
            return false;
        }
        return true;
    }
    catch (const CDataFileError& e)
    {
        LogMessage(u"Error: CFileException caught on opening data file. File name - %s, cause - %d", path,
                   e.cause);
    }
    catch (...)
    {
        LogMessage(u"Error: General exception caught on loading %s data file. Possible reason - file does "
                   u"not exists "
                   u"or no access rights to the file",
                   path);
    }
    CloseHandle();
    return false;
}

void CDataFile::Close(bool defragment, uint32_t timeLimitMs)
{
    CDataFileAccessLock lock(*this);
    if (m_File && !m_Header.IsReadOnly())
    {
        try
        {
            if (defragment)
            {
                if (timeLimitMs == NoTimeLimit)
                    DefragmentFull();
                else
                    DefragmentQuick(timeLimitMs);
            }
            if (!m_CacheRecordLive || m_CarriedDataRead)
                SaveCacheRecord();
        }
        catch (const CDataFileError& e)
        {
            LogMessage(u"Error: CFileException caught on closing data file. File name - %s, cause - %d",
                       m_Path, e.cause);
        }
        catch (...)
        {
            LogMessage(u"Error: General exception caught on closing data file.");
        }
    }
    CloseHandle();
}

bool CDataFile::LoadHeader()
{
    DataFileIo::ReadExact(*m_File, 0, m_Header.Bytes(), HeaderSize);
    if (!m_Header.Validate(true, CDataFileHeader::KeyChecksum(m_Cipher.Key())))
    {
        LogMessage(u"Error: Invalid header on loading %s data file header.", m_Path);
        return false;
    }
    return true;
}

bool CDataFile::SaveHeader()
{
    if (!m_Header.Validate(true, CDataFileHeader::KeyChecksum(m_Cipher.Key())))
    {
        LogMessage(u"Error: Invalid header on saving %s data file header.", m_Path);
        return false;
    }
    DataFileIo::Write(*m_File, 0, m_Header.Bytes(), HeaderSize);
    if (m_FileLength < HeaderSize)
        m_FileLength = HeaderSize;
    return true;
}

void CDataFile::WriteIdCounter()
{
    DataFileIo::Write(*m_File, OffIdCounter, m_Header.IdCounterBytes(), CUInt128::DiskSize);
}

bool CDataFile::RejectReadOnly(const char16_t* warning)
{
    if (!m_Header.IsReadOnly())
        return false;
    LogMessage(warning, m_Path);
    return true;
}

uint32_t CDataFile::GetFileVersion()
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot get data file version as data file is not open");
        return 0;
    }
    return m_Header.FileVersion();
}

uint32_t CDataFile::GetFileType()
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot get data file type as data file is not open");
        return 0;
    }
    return m_Header.FileType();
}

bool CDataFile::SetFileVersion(uint32_t version)
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot set data file version as data file is not open");
        return false;
    }
    if (RejectReadOnly(u"Warning: attempt to write file version to read-only data file. File name - %s"))
        return false;
    m_Header.SetFileVersion(version);
    try
    {
        return SaveHeader();
    }
    catch (const CDataFileError& e)
    {
        LogMessage(u"Error: CFileException caught on saving data file header. File name - %s, cause - %d",
                   m_Path, e.cause);
        return false;
    }
}

bool CDataFile::SetFileType(uint32_t type)
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot set data file type as data file is not open");
        return false;
    }
    if (RejectReadOnly(u"Warning: attempt to write file type to read-only data file. File name - %s"))
        return false;
    m_Header.SetFileType(type);
    try
    {
        return SaveHeader();
    }
    catch (const CDataFileError& e)
    {
        LogMessage(u"Error: CFileException caught on saving data file header. File name - %s, cause - %d",
                   m_Path, e.cause);
        return false;
    }
}

std::u16string CDataFile::GetCreatorSignature()
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot get data file creator application signature as data file is not open");
        return {};
    }
    return m_Header.Creator();
}

bool CDataFile::IsReadOnly()
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot set data file read only mode status");
        return true;
    }
    return m_Header.IsReadOnly();
}

bool CDataFile::SetReadOnly(bool readOnly)
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot set data file read only mode status");
        return false;
    }
    m_Header.SetReadOnly(readOnly);
    try
    {
        return SaveHeader();
    }
    catch (const CDataFileError& e)
    {
        LogMessage(u"Error: CFileException caught on saving data file header. File name - %s, cause - %d",
                   m_Path, e.cause);
        return false;
    }
}

CUInt128 CDataFile::GenerateRecordID()
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot generate unique record ID, as data file is not open");
        return {};
    }
    if (m_Header.IsReadOnly())
        LogAssertion(u"Error: Request for data file record ID generation for read-only data file",
                     u"Shared/DataFile", 540);
    const CUInt128 id = m_Header.IdCounter();
    CUInt128 next = id;
    ++next;
    m_Header.SetIdCounter(next);
    try
    {
        WriteIdCounter();
    }
    catch (const CDataFileError&)
    {
        // The ID is not handed out, so the counter on disk and in memory agree again.
        m_Header.SetIdCounter(id);
        LogMessage(u"Error: General exception caught on saving %s data file ID counter field.", m_Path);
        return {};
    }
    return id;
}

void CDataFile::CopyTo(IFile& copy)
{
    DataFileIo::SetLength(copy, m_FileLength);
    std::vector<uint8_t> block(SaveAsBlockSize);
    for (uint64_t position = 0;; position += SaveAsBlockSize)
    {
        size_t done = 0;
        if (!m_File->ReadAt(position, block.data(), block.size(), done))
            throw CDataFileError{m_File->LastCause()};
        DataFileIo::Write(copy, position, block.data(), done);
        if (done < block.size())
            break;
    }
    if (!copy.Flush())
        throw CDataFileError{copy.LastCause()};
}

bool CDataFile::SaveAs(const std::u16string& newPath, bool keepCurrent)
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot save data file under different name as data file is not open.");
        return false;
    }
    const std::u16string oldPath = m_Path;
    const std::u16string* failing = &newPath;
    try
    {
        {
            int cause = 0;
            std::unique_ptr<IFile> copy =
                m_Fs.Open(newPath, EFileOpen::CreateTruncate, EFileShare::DenyWrite, cause);
            if (!copy)
                throw CDataFileError{cause};
            failing = &oldPath;
            CopyTo(*copy);
        }
        if (keepCurrent)
            return true;
        return ReopenAfterSaveAs(newPath, oldPath);
    }
    catch (const CDataFileError& e)
    {
        LogMessage(
            u"Error: CFileException caught on saving data file under new name. New file name - %s, old file "
            u"name - %s, error happened with file - %s, cause - %d",
            newPath, oldPath, *failing, e.cause);
    }
    catch (...)
    {
        LogMessage(
            u"Error: General exception caught on closing data file. New file name - %s, old file name - %s",
            newPath, oldPath);
    }
    return false;
}

bool CDataFile::Flush()
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot flush data file as data file is not open.");
        return false;
    }
    if (m_File->Flush())
        return true;
    LogMessage(u"Error: Cannot flush data file %s, cause - %d", m_Path, m_File->LastCause());
    return false;
}

bool CDataFile::ReopenAfterSaveAs(const std::u16string& newPath, const std::u16string& oldPath)
{
    // The copy is byte-identical, so the caches stay valid for it.
    m_File.reset();
    int cause = 0;
    m_File = m_Fs.Open(newPath, EFileOpen::OpenExisting, EFileShare::DenyWrite, cause);
    if (m_File)
    {
        m_Path = newPath;
        return true;
    }
    LogMessage(
        u"Error: Cannot open data file %s. Possible reason - file does not exists or no access rights to the "
        u"file",
        newPath);
    // The old path is reopened with the creation flags, which empties it; the data lives on in
    // the copy. The empty file gets the current header so that the object stays consistent.
    m_File = m_Fs.Open(oldPath, EFileOpen::CreateTruncate, EFileShare::DenyWrite, cause);
    if (!m_File)
    {
        CloseHandle();
        return false;
    }
    m_FileLength = 0;
    m_Header.SetCacheRecord(0, CUInt128());
    m_Header.SetDefragMarker(CUInt128());
    m_CacheRecordLive = false;
    if (!SaveHeader() || !BuildCacheByScan())
        CloseHandle();
    return false;
}

bool CDataFile::DumpDecipheredTo(const std::u16string& path)
{
    CDataFileAccessLock lock(*this);
    if (!m_File)
    {
        LogMessage(u"Error: Cannot dump data file as data file is not open");
        return false;
    }
    try
    {
        std::string bytes(m_FileLength, '\0');
        DataFileIo::ReadExact(*m_File, 0, bytes.data(), bytes.size());
        m_Cipher.Apply(reinterpret_cast<uint8_t*>(bytes.data()), bytes.size(), 0);
        int cause = 0;
        if (WriteWholeFile(m_Fs, path, bytes, cause))
            return true;
        LogMessage(u"Error: Cannot write data file dump. File name - %s, cause - %d", path, cause);
    }
    catch (const CDataFileError& e)
    {
        LogMessage(u"Error: CFileException caught on dumping data file. File name - %s, cause - %d", m_Path,
                   e.cause);
    }
    catch (...)
    {
        LogMessage(u"Error: General exception caught on dumping %s data file.", m_Path);
    }
    return false;
}
