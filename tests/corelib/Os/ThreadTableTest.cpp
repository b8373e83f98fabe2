#include "Os/IOs.h"
#include "Os/IThread.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace Nfx::Os
{
namespace
{
std::uint32_t DoNothing(void*)
{
    return 0;
}

ThreadRecord* Start()
{
    constexpr std::uint32_t SmallStack = 64 * 1024;
    std::uint64_t id = 0;
    return Platform().Thread().Create(&DoNothing, nullptr, id, SmallStack);
}

// Takes the records without their threads: not every platform has room for as many.
TEST(ThreadTableTest, AtMost2047ThreadsExistAtATime)
{
    std::vector<ThreadRecord*> records;
    for (ThreadRecord* record = ThreadTable::Take(&DoNothing, nullptr); record != nullptr;
         record = ThreadTable::Take(&DoNothing, nullptr))
    {
        records.push_back(record);
    }
    EXPECT_EQ(records.size(), 2047u);
    EXPECT_EQ(std::set<ThreadRecord*>(records.begin(), records.end()).size(), records.size());
    EXPECT_EQ(Start(), nullptr);

    ThreadRecord* const freed = records[1000];
    for (ThreadRecord* const record : records)
    {
        EXPECT_FALSE(ThreadTable::DropUseOfThread(*record));
        EXPECT_TRUE(ThreadTable::Drop(*record));
        EXPECT_FALSE(ThreadTable::Drop(*record)); // there is no use left to give up
    }
    ThreadTable::PutBack(*freed);
    ThreadRecord* const thread = Start();
    EXPECT_EQ(thread, freed);
    EXPECT_TRUE(Platform().Thread().Wait(thread, -1));
    EXPECT_EQ(Start(), nullptr); // a record is free once it is closed
    Platform().Thread().Close(thread);
    for (ThreadRecord* const record : records)
    {
        if (record != freed)
        {
            ThreadTable::PutBack(*record);
        }
    }
}
} // namespace
} // namespace Nfx::Os
