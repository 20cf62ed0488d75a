#pragma once
// Names of backup copies: "<base> - backup <yy-MM-dd>.<ext>" in the backup folder, and
// "<base> - backup <yy-MM-dd> [n].<ext>" with n counting from 1 while the plainer names are taken.
#include "Shared/Base/OleDate.h"

#include <functional>
#include <string>
#include <string_view>

namespace BackupNames
{
// The folder with a trailing separator ('/' unless it already ends in '/' or '\').
std::u16string WithTrailingSeparator(std::u16string_view folder);
// File name without folder and without its last extension; the extension without its dot.
std::u16string BaseNameOf(std::u16string_view path);
std::u16string ExtensionOf(std::u16string_view path);
// "<base> - backup ": the part every backup of the file has in its name.
std::u16string BackupPattern(std::u16string_view baseName);
// The first free backup path for `dataFilePath` in `folder` on `date`.
std::u16string MakeBackupPath(std::u16string_view folder, std::u16string_view dataFilePath, OleDate date,
                              const std::function<bool(const std::u16string&)>& exists);
// True for a file name that is longer than the backup pattern of `baseName` and contains it.
bool IsBackupName(std::u16string_view fileName, std::u16string_view baseName);
} // namespace BackupNames
