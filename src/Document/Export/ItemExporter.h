#pragma once
// Export of items to files, for the program's export commands and quillarium-cli:
// - one file: a note's text, or a folder's subtree dump (for the root folder, the whole tree), as
//   RTF, HTML (UTF-8, titled with the caption) or plain text (UTF-8, lines ended by CR LF);
// - a folder as HTML files: one file per note in folders named after the item's folders, and an
//   "index.html" in the target folder linking them all.
// Texts are written with the application's default note font. A failure writes one log line and
// is described by Failure(), so the caller can name the file in its message. Notes whose text
// was still in storage are read one at a time and left there again.
#include "Shared/RichText/FontDescription.h"

#include <functional>
#include <string>
#include <string_view>

class CFolderBase;
class CItem;
class CRichTextDocument;
class IFileSystem;

enum class EExportFormat
{
    Rtf,
    Html,
    PlainText
};

// "rtf", "html" or "txt".
std::u16string_view ExportExtension(EExportFormat format);

// The rich text an export writes for `item`: a note's own text, a folder's subtree dump. False
// after a log line when a note's text cannot be read or the dump runs out of memory.
bool ExportedText(CItem& item, const SFontDescription& defaultFont, CRichTextDocument& text);

// The file's bytes for `text`: RTF as 8-bit text, HTML and plain text in UTF-8.
std::string ExportFileBytes(const CRichTextDocument& text, EExportFormat format, std::u16string_view title,
                            const SFontDescription& defaultFont);

struct SExportFailure
{
    std::u16string path; // the file or folder that could not be written; empty when none
    int cause = 0;       // the platform's error code
    bool cancelled = false;
};

class CItemExporter
{
public:
    // Told the notes written so far and the number to write; answering false cancels.
    using ProgressFn = std::function<bool(size_t done, size_t total)>;

    CItemExporter(IFileSystem& fs, const SFontDescription& defaultFont) : m_Fs(fs), m_DefaultFont(defaultFont)
    {
    }

    void SetProgress(ProgressFn progress) { m_Progress = std::move(progress); }

    bool ExportToFile(CItem& item, EExportFormat format, const std::u16string& path);
    // Creates `targetFolder` when missing; files of the same names in it are replaced.
    bool ExportAsHtmlFiles(CFolderBase& folder, const std::u16string& targetFolder);

    const SExportFailure& Failure() const { return m_Failure; }

private:
    class CHtmlFilesWriter;

    bool Write(const std::u16string& path, std::string_view bytes);
    bool MakeFolder(const std::u16string& path);

    IFileSystem& m_Fs;
    SFontDescription m_DefaultFont;
    ProgressFn m_Progress;
    SExportFailure m_Failure;
};
