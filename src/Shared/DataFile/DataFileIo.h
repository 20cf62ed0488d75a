#pragma once
// File access for the data file. The record code reads and writes through these helpers, which
// turn a failed or short call into a CDataFileError; every public operation of CDataFile catches
// it and writes its one "CFileException caught ..." line with the cause code.
#include "Shared/Base/File.h"

#include <cstdint>
#include <vector>

struct CDataFileError
{
    // A read that came back short: the file ended before the bytes the structure promised.
    static constexpr int EndOfFileCause = -1;
    int cause;
};

namespace DataFileIo
{
void ReadExact(IFile& file, uint64_t position, void* data, size_t size);
void Write(IFile& file, uint64_t position, const void* data, size_t size);
void SetLength(IFile& file, uint64_t length);
uint64_t Length(IFile& file);
} // namespace DataFileIo

// Sequential reads over the record chain with one system call per window instead of one per
// record, for the scan that builds the cache and for defragmentation. Only bytes at or beyond
// the last position asked for may be served from the window, so writes behind it are safe.
class CDataFileReadAhead
{
public:
    static constexpr size_t DefaultWindow = 1 << 20;

    CDataFileReadAhead(IFile& file, uint64_t fileLength, size_t window = DefaultWindow)
        : m_File(file), m_FileLength(fileLength), m_Window(window)
    {
    }
    // `size` bytes at `position`, which the caller has checked to lie inside the file.
    const uint8_t* Get(uint64_t position, size_t size);

private:
    IFile& m_File;
    uint64_t m_FileLength;
    size_t m_Window;
    std::vector<uint8_t> m_Buffer;
    uint64_t m_Start = 0;
};
