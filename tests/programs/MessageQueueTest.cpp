#include "Programs/MessageQueue.h"

#include <gtest/gtest.h>

#include <thread>

using namespace Zent::Discovery::Programs;
using Zent::Discovery::Inventory::DeviceMessage;
using namespace std::chrono_literals;

namespace
{
DeviceMessage Message(std::size_t size)
{
    return {DeviceMessage::MessageKind::Hello, std::string(size, 'x')};
}

TEST(MessageQueueTest, MessagesBeyondTheLimitAreCountedAndLaterOnesFitAgain)
{
    MessageQueue queue;
    constexpr std::size_t Size = MessageQueue::MaximumBytes / 4;
    for (int i = 0; i < 6; ++i)
    {
        queue.Push(Message(Size));
    }
    EXPECT_EQ(queue.Lost(), 2u);
    EXPECT_EQ(queue.Take(std::nullopt).size(), 4u);
    queue.Push(Message(Size));
    EXPECT_EQ(queue.Lost(), 2u);
}

TEST(MessageQueueTest, TakeEndsAtItsDeadlineOrWhenItIsWoken)
{
    MessageQueue queue;
    EXPECT_TRUE(queue.Take(std::chrono::steady_clock::now() + 5ms).empty());
    queue.Wake();
    EXPECT_TRUE(queue.Take(std::nullopt).empty());
    EXPECT_FALSE(queue.IsInterrupted());
}

TEST(MessageQueueTest, InterruptEndsAWaitingTakeAndAllLaterOnes)
{
    MessageQueue queue;
    std::thread interrupter([&queue] { queue.Interrupt(); });
    EXPECT_TRUE(queue.Take(std::nullopt).empty());
    interrupter.join();
    queue.Push(Message(1));
    EXPECT_TRUE(queue.Take(std::nullopt).empty());
    EXPECT_TRUE(queue.IsInterrupted());
}
} // namespace
