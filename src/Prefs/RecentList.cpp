#include "Prefs/RecentList.h"

#include <algorithm>

void CRecentList::Add(std::u16string_view item)
{
    if (item.empty() || m_Capacity == 0)
        return;
    Remove(item);
    m_Items.insert(m_Items.begin(), std::u16string(item));
    if (m_Items.size() > m_Capacity)
        m_Items.resize(m_Capacity);
}

bool CRecentList::Remove(std::u16string_view item)
{
    auto found = std::find(m_Items.begin(), m_Items.end(), item);
    if (found == m_Items.end())
        return false;
    m_Items.erase(found);
    return true;
}

void CRecentList::Assign(const std::vector<std::u16string>& items)
{
    m_Items.clear();
    for (const std::u16string& item : items)
    {
        if (m_Items.size() == m_Capacity)
            break;
        if (!item.empty() && std::find(m_Items.begin(), m_Items.end(), item) == m_Items.end())
            m_Items.push_back(item);
    }
}
