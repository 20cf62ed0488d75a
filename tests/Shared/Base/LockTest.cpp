#include "Shared/Base/Lock.h"
#include "Shared/Base/AppConnector.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

TEST(CriticalSection, RecursionAndOwnership)
{
    CCriticalSection section;
    EXPECT_FALSE(section.IsHeldByCurrentThread());
    {
        CCriticalSectionLock outer(section);
        CCriticalSectionLock inner(section);
        EXPECT_TRUE(section.IsHeldByCurrentThread());
        EXPECT_EQ(2, section.RecursionCount());
        bool otherSeesHeld = true;
        bool otherGotIt = true;
        std::thread other(
            [&]
            {
                otherSeesHeld = section.IsHeldByCurrentThread();
                otherGotIt = section.TryLock();
            });
        other.join();
        EXPECT_FALSE(otherSeesHeld);
        EXPECT_FALSE(otherGotIt);
    }
    EXPECT_FALSE(section.IsHeldByCurrentThread());
    EXPECT_EQ(0, section.RecursionCount());
    ASSERT_TRUE(section.TryLock());
    EXPECT_EQ(1, section.RecursionCount());
    section.Unlock();
}

TEST(CriticalSection, SerialisesThreads)
{
    CCriticalSection section;
    long long counter = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back(
            [&]
            {
                for (int i = 0; i < 20000; ++i)
                {
                    CCriticalSectionLock guard(section);
                    CCriticalSectionLock nested(section);
                    ++counter;
                }
            });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(80000, counter);
}

TEST(AppConnector, InstallAndRemove)
{
    CAppConnector connector;
    CAppConnector::Install(&connector);
    EXPECT_EQ(&connector, CAppConnector::Get());
    CAppConnector::Install(nullptr);
    EXPECT_EQ(nullptr, CAppConnector::Get());
}
