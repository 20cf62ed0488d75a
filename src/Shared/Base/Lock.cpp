#include "Shared/Base/Lock.h"

void CCriticalSection::Lock()
{
    m_Mutex.lock();
    if (m_Count++ == 0)
        m_Owner.store(std::this_thread::get_id());
}

bool CCriticalSection::TryLock()
{
    if (!m_Mutex.try_lock())
        return false;
    if (m_Count++ == 0)
        m_Owner.store(std::this_thread::get_id());
    return true;
}

void CCriticalSection::Unlock()
{
    if (--m_Count == 0)
        m_Owner.store(std::thread::id());
    m_Mutex.unlock();
}

bool CCriticalSection::IsHeldByCurrentThread() const
{
    return m_Owner.load() == std::this_thread::get_id();
}

int CCriticalSection::RecursionCount() const
{
    return IsHeldByCurrentThread() ? m_Count : 0;
}
