#pragma once
// The state of one global search run, shared between the thread that walks the item tree and
// the one that shows progress and may cancel. The walk checks IsCancelled() before every item.
#include <atomic>
#include <cstdint>

class CSearchStatus
{
public:
    void Cancel() { m_Cancelled.store(true, std::memory_order_relaxed); }
    bool IsCancelled() const { return m_Cancelled.load(std::memory_order_relaxed); }

    // Progress for a progress bar: items searched so far out of the items to search.
    void SetTotal(uint64_t total) { m_Total.store(total, std::memory_order_relaxed); }
    void AddDone(uint64_t count = 1) { m_Done.fetch_add(count, std::memory_order_relaxed); }
    uint64_t Total() const { return m_Total.load(std::memory_order_relaxed); }
    uint64_t Done() const { return m_Done.load(std::memory_order_relaxed); }

private:
    std::atomic<bool> m_Cancelled{false};
    std::atomic<uint64_t> m_Total{0};
    std::atomic<uint64_t> m_Done{0};
};
