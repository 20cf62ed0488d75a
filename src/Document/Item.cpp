#include "Document/Item.h"

#include "Document/FolderBase.h"
#include "Document/ItemTextDumpWriter.h"
#include "Shared/Base/MessageBox.h"
#include "Shared/Log/Log.h"

#include <exception>

namespace
{
constexpr size_t ItemBaseMemory = 40;
constexpr size_t AlarmMemory = 192;
constexpr size_t CaptionOverhead = 20;
} // namespace

CItem::CItem(bool notify) : m_Notify(notify ? 1 : 0) {}

CItem::~CItem() = default;

size_t CItem::CountChildren(EChildKind, bool) const
{
    return 0;
}

size_t CItem::CountItems(size_t&, size_t&, uint32_t) const
{
    return 0;
}

void CItem::SetOpen(bool open)
{
    SetOpenFlagOnly(open);
}

void CItem::SetOpenFlagOnly(bool open)
{
    const uint8_t value = open ? 1 : 0;
    if (m_Open == value)
        return;
    m_Open = value;
    NotifyChange(EItemChange::Content);
}

void CItem::SetNotify(bool notify)
{
    m_Notify = notify ? 1 : 0;
}

EChildState CItem::GetChildState(EChildKind, bool) const
{
    return EChildState::NoChildren;
}

void CItem::SetCaption(std::u16string caption)
{
    if (m_Caption == caption)
        return;
    m_Caption = std::move(caption);
    NotifyChange(EItemChange::Content);
}

std::u16string CItem::GetPath() const
{
    std::u16string path = m_Parent ? m_Parent->GetPath() : std::u16string();
    path += u'\\';
    path += GetCaption();
    return path;
}

int CItem::GetDepth() const
{
    return m_Parent ? m_Parent->GetDepth() + 1 : 1;
}

bool CItem::IsDescendantOf(const CItem& ancestor) const
{
    for (const CItem* item = m_Parent; item != nullptr; item = item->m_Parent)
        if (item == &ancestor)
            return true;
    return false;
}

size_t CItem::EstimateMemory() const
{
    const size_t extended = m_ExtendedData ? CItemExtendedData::Size : 0;
    const size_t alarms = m_Alarms ? m_Alarms->GetSize() : 0;
    return ItemBaseMemory + extended + AlarmMemory * alarms + CaptionOverhead + GetCaption().size() + 1;
}

CItemExtendedData* CItem::GetExtendedData(bool create)
{
    if (!m_ExtendedData && create)
        m_ExtendedData = CreateExtendedData();
    return m_ExtendedData.get();
}

std::unique_ptr<CItemExtendedData> CItem::CreateExtendedData() const
{
    return std::make_unique<CItemExtendedData>();
}

void CItem::DropEmptyExtendedData()
{
    if (m_ExtendedData && m_ExtendedData->IsAllZero())
        m_ExtendedData.reset();
}

CAlarmsArray* CItem::GetAlarms(bool create)
{
    if (!m_Alarms && create)
        m_Alarms = std::make_unique<CAlarmsArray>();
    return m_Alarms.get();
}

void CItem::NotifyChange(EItemChange change)
{
    if (!m_Notify)
        return;
    if (IItemTreeHost* host = FindTreeHost())
        host->OnItemChanged(m_Id, change);
}

bool CItem::CanDelete(bool, bool)
{
    return true;
}

uint32_t CItem::GetTextColour() const
{
    const auto colour = m_ExtendedData ? m_ExtendedData->TextColour() : std::nullopt;
    return colour.value_or(DefaultTextColour);
}

uint32_t CItem::GetBackColour() const
{
    const auto colour = m_ExtendedData ? m_ExtendedData->BackColour() : std::nullopt;
    return colour.value_or(0);
}

IItemTreeHost* CItem::FindTreeHost() const
{
    const CItem* top = this;
    while (top->m_Parent != nullptr)
        top = top->m_Parent;
    const auto* folder = dynamic_cast<const CFolderBase*>(top);
    return folder ? folder->GetTreeHost() : nullptr;
}

bool CItem::MoveTo(CFolderBase& target, size_t index)
{
    CFolderBase* source = m_Parent;
    if (source == nullptr || &target == this || target.IsDescendantOf(*this))
    {
        LogMessage(u"Error: Cannot move item %s into folder %s", GetPath(), target.GetPath());
        return false;
    }
    std::unique_ptr<CItem> self = source->DetachChild(*this);
    target.AddChild(std::move(self), index);
    return true;
}

void CItem::ShowRefusal(const char16_t* key) const
{
    IItemTreeHost* host = FindTreeHost();
    const std::u16string text = host ? host->GetText(key) : std::u16string(key);
    LogMessage(u"Error: %s", text);
    if (IMessageBox* box = host ? host->GetMessageBox() : nullptr)
        box->Show(text, EMsgIcon::Error);
}

bool CItem::DumpText(CRichTextDocument& target, const SFontDescription& defaultFont)
{
    try
    {
        CItemTextDumpWriter writer(target, defaultFont);
        WriteDump(writer);
        return true;
    }
    catch (const std::exception&)
    {
        LogMessage(u"Error: General exception caught on exporting data - possibly Windows is out of memory.");
        return false;
    }
}
