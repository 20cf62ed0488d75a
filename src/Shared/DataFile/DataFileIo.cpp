#include "Shared/DataFile/DataFileIo.h"

namespace DataFileIo
{
void ReadExact(IFile& file, uint64_t position, void* data, size_t size)
{
    if (size == 0) // an empty buffer may have no address at all
        return;
    size_t done = 0;
    if (!file.ReadAt(position, data, size, done))
        throw CDataFileError{file.LastCause()};
    if (done != size)
        throw CDataFileError{CDataFileError::EndOfFileCause};
}

void Write(IFile& file, uint64_t position, const void* data, size_t size)
{
    if (!file.WriteAt(position, data, size))
        throw CDataFileError{file.LastCause()};
}

void SetLength(IFile& file, uint64_t length)
{
    if (!file.SetLength(length))
        throw CDataFileError{file.LastCause()};
}

uint64_t Length(IFile& file)
{
    uint64_t length = 0;
    if (!file.GetLength(length))
        throw CDataFileError{file.LastCause()};
    return length;
}
} // namespace DataFileIo

const uint8_t* CDataFileReadAhead::Get(uint64_t position, size_t size)
{
    if (position >= m_Start && position + size <= m_Start + m_Buffer.size())
        return m_Buffer.data() + (position - m_Start);
    size_t length = size > m_Window ? size : m_Window;
    if (position + length > m_FileLength)
        length = m_FileLength > position ? static_cast<size_t>(m_FileLength - position) : 0;
    if (length < size)
        throw CDataFileError{CDataFileError::EndOfFileCause};
    m_Buffer.resize(length);
    m_Start = position;
    try
    {
        DataFileIo::ReadExact(m_File, position, m_Buffer.data(), length);
    }
    catch (const CDataFileError&)
    {
        m_Buffer.clear();
        throw;
    }
    return m_Buffer.data();
}
