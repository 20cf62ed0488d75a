#include "Document/BackupNames.h"

#include "Shared/Base/Format.h"

namespace
{
size_t NameStart(std::u16string_view path)
{
    const size_t separator = path.find_last_of(u"/\\");
    return separator == std::u16string_view::npos ? 0 : separator + 1;
}

// The position of the extension's dot within the file name part, or npos.
size_t ExtensionDot(std::u16string_view path)
{
    const size_t dot = path.find_last_of(u'.');
    return dot == std::u16string_view::npos || dot < NameStart(path) ? std::u16string_view::npos : dot;
}

std::u16string DateText(OleDate date)
{
    SDateTimeFields fields;
    if (!OleDateToFields(date, fields))
        return u"00-00-00";
    return FormatDateTime(u"%y-%m-%d", fields);
}
} // namespace

std::u16string BackupNames::WithTrailingSeparator(std::u16string_view folder)
{
    std::u16string result(folder);
    if (result.empty() || (result.back() != u'/' && result.back() != u'\\'))
        result += u'/';
    return result;
}

std::u16string BackupNames::BaseNameOf(std::u16string_view path)
{
    const size_t start = NameStart(path);
    const size_t dot = ExtensionDot(path);
    return std::u16string(
        path.substr(start, dot == std::u16string_view::npos ? std::u16string_view::npos : dot - start));
}

std::u16string BackupNames::ExtensionOf(std::u16string_view path)
{
    const size_t dot = ExtensionDot(path);
    return dot == std::u16string_view::npos ? std::u16string() : std::u16string(path.substr(dot + 1));
}

std::u16string BackupNames::BackupPattern(std::u16string_view baseName)
{
    return std::u16string(baseName) + u" - backup ";
}

std::u16string BackupNames::MakeBackupPath(std::u16string_view folder, std::u16string_view dataFilePath,
                                           OleDate date,
                                           const std::function<bool(const std::u16string&)>& exists)
{
    const std::u16string stem =
        WithTrailingSeparator(folder) + BackupPattern(BaseNameOf(dataFilePath)) + DateText(date);
    const std::u16string extension = ExtensionOf(dataFilePath);
    const std::u16string suffix = extension.empty() ? std::u16string() : u"." + extension;
    std::u16string candidate = stem + suffix;
    for (int n = 1; exists(candidate); ++n)
        candidate = stem + u" [" + FormatText(u"%d", n) + u"]" + suffix;
    return candidate;
}

bool BackupNames::IsBackupName(std::u16string_view fileName, std::u16string_view baseName)
{
    const std::u16string pattern = BackupPattern(baseName);
    return fileName.size() > pattern.size() && fileName.find(pattern) != std::u16string_view::npos;
}
