#pragma once
// Writes the text dump of a subtree into a rich text document. Text is written as a stream in
// which "\r\n" ends the current line; items are separated by a blank line, a rule of 76 dashes
// and another blank line.
#include "Shared/RichText/FontDescription.h"

#include <string_view>

class CRichTextDocument;

class CItemTextDumpWriter
{
public:
    CItemTextDumpWriter(CRichTextDocument& target, const SFontDescription& defaultFont);

    // "--- [Folder] %s --- Path: %s (Depth: %d)---" in the heading font.
    void WriteFolderHeading(std::u16string_view caption, std::u16string_view path, int depth);
    // "--- [Note] %s --- Path: %s (Depth: %d)---" in the default format, then a blank line.
    void WriteNoteHeading(std::u16string_view caption, std::u16string_view path, int depth);
    // The note's lines with their own formats, starting on the current line.
    void WriteDocument(const CRichTextDocument& text);

private:
    void BeginItem();
    void Write(std::u16string_view text);
    void MakeCurrentLineBold();

    CRichTextDocument& m_Target;
    SFontDescription m_HeadingFont;
    bool m_FirstItem = true;
};
