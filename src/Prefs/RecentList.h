#pragma once
// A most-recent-first list of texts with a fixed capacity (recently opened files, recently used
// fonts). Empty texts never enter the list, and a text appears at most once.
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

class CRecentList
{
public:
    explicit CRecentList(size_t capacity) : m_Capacity(capacity) {}

    // Puts `item` first, dropping an equal older entry and, when full, the oldest entry.
    void Add(std::u16string_view item);
    bool Remove(std::u16string_view item);
    void Clear() { m_Items.clear(); }
    // Replaces the contents with `items` in their order, skipping empty and repeated texts and
    // keeping at most the capacity.
    void Assign(const std::vector<std::u16string>& items);

    const std::vector<std::u16string>& Items() const { return m_Items; }
    size_t Capacity() const { return m_Capacity; }

private:
    size_t m_Capacity;
    std::vector<std::u16string> m_Items;
};
