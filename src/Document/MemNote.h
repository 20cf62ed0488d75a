#pragma once
// A note held in memory only, with its text.
#include "Document/NoteBase.h"
#include "Shared/RichText/RichTextDocument.h"

class CMemNote : public CNoteBase
{
public:
    explicit CMemNote(bool notify = false) : CNoteBase(notify) {}

    CRichTextDocument* GetRichText() override { return &m_Text; }

private:
    CRichTextDocument m_Text;
};
