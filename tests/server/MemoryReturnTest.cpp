#include "Server/MemoryReturn.h"

#include <gtest/gtest.h>

namespace
{
using Zent::Discovery::Server::MemoryReturn;

TEST(MemoryReturnTest, ComesAfterMuchHasWaitedAtATimeAndAtMostOnceAMinute)
{
    MemoryReturn memoryReturn;
    const MemoryReturn::Time start{};
    for (int rush = 0; rush < 100; ++rush)
    {
        memoryReturn.Note(MemoryReturn::Threshold - 1);
    }
    EXPECT_EQ(-1, memoryReturn.DueIn(start));
    memoryReturn.Note(MemoryReturn::Threshold);
    memoryReturn.Note(0);
    EXPECT_EQ(500, memoryReturn.DueIn(start));
    memoryReturn.Done(start);
    EXPECT_EQ(-1, memoryReturn.DueIn(start));
    memoryReturn.Note(MemoryReturn::Threshold);
    EXPECT_EQ(59'000, memoryReturn.DueIn(start + std::chrono::seconds(1)));
    EXPECT_EQ(500, memoryReturn.DueIn(start + std::chrono::hours(1)));
}
} // namespace
