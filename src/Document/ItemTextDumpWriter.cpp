#include "Document/ItemTextDumpWriter.h"

#include "Shared/Base/Format.h"
#include "Shared/RichText/RichTextDocument.h"

#include <string>

namespace
{
const std::u16string Separator = u"\r\n\r\n" + std::u16string(76, u'-') + u"\r\n\r\n";
} // namespace

CItemTextDumpWriter::CItemTextDumpWriter(CRichTextDocument& target, const SFontDescription& defaultFont)
    : m_Target(target), m_HeadingFont(defaultFont)
{
    m_HeadingFont.weight = SFontDescription::BoldWeight;
    if (m_Target.LineCount() == 0)
        m_Target.AppendLine(CRtfTextLine());
}

void CItemTextDumpWriter::WriteFolderHeading(std::u16string_view caption, std::u16string_view path, int depth)
{
    BeginItem();
    MakeCurrentLineBold();
    Write(FormatText(u"--- [Folder] %s --- Path: %s (Depth: %d)---", caption, path, depth));
}

void CItemTextDumpWriter::WriteNoteHeading(std::u16string_view caption, std::u16string_view path, int depth)
{
    BeginItem();
    Write(FormatText(u"--- [Note] %s --- Path: %s (Depth: %d)---", caption, path, depth));
    Write(u"\r\n\r\n");
}

// The first line of the note joins the current line, which the heading left empty; the others
// follow as lines of their own.
void CItemTextDumpWriter::WriteDocument(const CRichTextDocument& text)
{
    for (size_t i = 0; i < text.LineCount(); ++i)
    {
        if (i == 0 && m_Target.Line(m_Target.LineCount() - 1) == CRtfTextLine())
            m_Target.Line(m_Target.LineCount() - 1) = text.Line(0);
        else
            m_Target.AppendLine(text.Line(i));
    }
}

void CItemTextDumpWriter::BeginItem()
{
    if (!m_FirstItem)
        Write(Separator);
    m_FirstItem = false;
}

void CItemTextDumpWriter::Write(std::u16string_view text)
{
    size_t start = 0;
    for (size_t end = text.find(u"\r\n"); end != std::u16string_view::npos; end = text.find(u"\r\n", start))
    {
        CRtfTextLine& line = m_Target.Line(m_Target.LineCount() - 1);
        line.SetText(line.Text() + std::u16string(text.substr(start, end - start)));
        m_Target.AppendLine(CRtfTextLine());
        start = end + 2;
    }
    CRtfTextLine& line = m_Target.Line(m_Target.LineCount() - 1);
    line.SetText(line.Text() + std::u16string(text.substr(start)));
}

void CItemTextDumpWriter::MakeCurrentLineBold()
{
    CRtfTextLine& line = m_Target.Line(m_Target.LineCount() - 1);
    CRtfTextBlockInfo block(static_cast<int32_t>(line.Text().size()));
    block.SetFont(m_HeadingFont);
    line.AddBlock(block);
}
