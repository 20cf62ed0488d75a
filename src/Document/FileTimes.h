#pragma once
// When files were last written, as local OLE dates. Backups compare the data file's time with the
// date of the last backup and find old backups by their times; tests give fixed times instead.
#include "Shared/Base/OleDate.h"

#include <string>

class IFileTimes
{
public:
    virtual ~IFileTimes() = default;
    // False (with the platform cause in `cause`) when the file cannot be examined.
    virtual bool GetLastWriteTime(const std::u16string& path, OleDate& time, int& cause) = 0;
};

// The disk's modification times in the local time zone.
IFileTimes& DiskFileTimes();
