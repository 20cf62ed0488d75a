#include "Prefs/RecentList.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>

// Random adds and removes checked against a plain model of a most-recent-first list.
TEST(RecentList, RandomOperationsMatchModel)
{
    std::mt19937 random(11);
    for (size_t capacity : {size_t(1), size_t(7), size_t(16)})
    {
        CRecentList list(capacity);
        std::deque<std::u16string> model;
        for (int step = 0; step < 3000; ++step)
        {
            const int pick = static_cast<int>(random() % 24);
            const std::u16string item =
                pick == 0 ? std::u16string() : u"/file" + std::u16string(1, u'a' + pick);
            if (random() % 4 == 0)
            {
                auto found = std::find(model.begin(), model.end(), item);
                EXPECT_EQ(list.Remove(item), found != model.end());
                if (found != model.end())
                    model.erase(found);
            }
            else
            {
                list.Add(item);
                if (!item.empty())
                {
                    model.erase(std::remove(model.begin(), model.end(), item), model.end());
                    model.push_front(item);
                    if (model.size() > capacity)
                        model.pop_back();
                }
            }
            ASSERT_EQ(list.Items(), std::vector<std::u16string>(model.begin(), model.end()));
        }
    }
}

TEST(RecentList, AssignSkipsEmptyAndRepeatedTextsAndKeepsCapacity)
{
    CRecentList list(3);
    list.Assign({u"", u"a", u"b", u"", u"a", u"c", u"d"});
    EXPECT_EQ(list.Items(), (std::vector<std::u16string>{u"a", u"b", u"c"}));
}
