#include "Document/NoteBase.h"

#include "Document/ItemTextDumpWriter.h"
#include "Shared/RichText/PlainTextWriter.h"

void CNoteBase::SetAttribute(size_t index, uint32_t value)
{
    if (index >= AttributeCount || m_Attributes[index] == value)
        return;
    m_Attributes[index] = value;
    NotifyChange(EItemChange::Content);
}

bool CNoteBase::GetPlainText(std::u16string& text)
{
    const CRichTextDocument* richText = GetRichText();
    if (!richText)
        return false;
    text = ToPlainText(*richText);
    return true;
}

void CNoteBase::WriteDump(CItemTextDumpWriter& writer)
{
    writer.WriteNoteHeading(GetCaption(), GetPath(), GetDepth());
    if (const CRichTextDocument* text = GetRichText())
        writer.WriteDocument(*text);
}
