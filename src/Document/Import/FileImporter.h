#pragma once
// Import of files and folders: plain text and RTF files become notes named after the file (without
// its extension), ".knt" files add their folder tree, and folders become folders holding what they
// contain, so that the folder structure is kept.
#include "Document/Import/ImportTarget.h"

#include <string>
#include <vector>

class IFileSystem;
struct SFontDescription;

class CFileImporter
{
public:
    // Folders nested deeper than this are refused (a link loop would otherwise never end).
    static constexpr int MaxFolderDepth = 32;

    CFileImporter(IFileSystem& fs, const SFontDescription& defaultFont) : m_Fs(fs), m_DefaultFont(defaultFont)
    {
    }

    // Reads every path first; when one cannot be read or parsed nothing is added and the result
    // is false after that failure's log line. A file named directly is imported whatever its
    // extension (unknown ones as plain text); inside folders only ".rtf", ".knt" and the usual
    // text extensions are taken, other files are skipped with an information line.
    bool Import(const std::vector<std::u16string>& paths, IImportTarget& target, CFolderBase& parent);

    // The first stage alone: the tree that Import would add.
    bool Read(const std::vector<std::u16string>& paths, std::vector<SImportItem>& items);

private:
    bool ReadPath(const std::u16string& path, bool named, int depth, std::vector<SImportItem>& items);
    bool ReadFolder(const std::u16string& path, int depth, std::vector<SImportItem>& items);
    bool ReadFile(const std::u16string& path, bool named, std::vector<SImportItem>& items);

    IFileSystem& m_Fs;
    const SFontDescription& m_DefaultFont;
};
