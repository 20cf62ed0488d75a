#pragma once
// A recursive lock (the design's critical section) with a scope guard and a "held by this
// thread" query.
#include <atomic>
#include <mutex>
#include <thread>

class CCriticalSection
{
public:
    void Lock();
    bool TryLock();
    void Unlock();
    // True when the calling thread holds the lock (its recursion count is above zero).
    bool IsHeldByCurrentThread() const;
    int RecursionCount() const; // meaningful only for the holding thread

private:
    std::recursive_mutex m_Mutex;
    std::atomic<std::thread::id> m_Owner{};
    int m_Count = 0;
};

class CCriticalSectionLock
{
public:
    explicit CCriticalSectionLock(CCriticalSection& section) : m_Section(section) { m_Section.Lock(); }
    ~CCriticalSectionLock() { m_Section.Unlock(); }
    CCriticalSectionLock(const CCriticalSectionLock&) = delete;
    CCriticalSectionLock& operator=(const CCriticalSectionLock&) = delete;

private:
    CCriticalSection& m_Section;
};
