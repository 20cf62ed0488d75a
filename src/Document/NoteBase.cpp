#include "Document/NoteBase.h"

#include "Document/ItemTextDumpWriter.h"

void CNoteBase::SetAttribute(size_t index, uint32_t value)
{
    if (index >= AttributeCount || m_Attributes[index] == value)
        return;
    m_Attributes[index] = value;
    NotifyChange(EItemChange::Content);
}

void CNoteBase::WriteDump(CItemTextDumpWriter& writer)
{
    writer.WriteNoteHeading(GetCaption(), GetPath(), GetDepth());
    if (const CRichTextDocument* text = GetRichText())
        writer.WriteDocument(*text);
}
