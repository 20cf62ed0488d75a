#include "Document/DBNote.h"

#include "Document/DBItemExtendedData.h"
#include "Document/ItemRecords.h"

CDBNote::CDBNote(CItemRecords* records, bool notify) : CNoteBase(notify), m_Records(records) {}

CRichTextDocument* CDBNote::GetRichText()
{
    if (m_Text)
        return m_Text.get();
    auto text = std::make_unique<CRichTextDocument>();
    if (m_Records && !GetId().IsZero() && !m_Records->LoadRichText(GetId(), *text))
        return nullptr;
    m_Text = std::move(text);
    return m_Text.get();
}

bool CDBNote::GetPlainText(std::u16string& text)
{
    if (m_Text || !m_Records || GetId().IsZero())
        return CNoteBase::GetPlainText(text);
    return m_Records->LoadPlainText(GetId(), text);
}

void CDBNote::WriteDump(CItemTextDumpWriter& writer)
{
    const bool wasLoaded = IsTextLoaded();
    CNoteBase::WriteDump(writer);
    if (!wasLoaded)
        UnloadText();
}

void CDBNote::RestoreOpenFlag(bool open)
{
    SetOpenFlagOnly(open);
}

std::unique_ptr<CItemExtendedData> CDBNote::CreateExtendedData() const
{
    return std::make_unique<CDBItemExtendedData>();
}
