#include "support/ExpectError.h"
#include "support/LambdaDelegate.h"
#include "system/Array.h"
#include "system/Collections/Generic/Dictionary.h"
#include "system/Collections/Generic/List.h"
#include "system/Collections/Generic/Queue.h"
#include "system/Event.h"
#include "system/String.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>

namespace
{
using namespace Nfx::System;
using namespace Nfx::System::Collections::Generic;

TEST(CollectionsTest, CheckTheirIndexes)
{
    Array<int> array(2);
    List<int> list{1, 2};
    for (const std::int32_t index : {-1, 2})
    {
        EXPECT_ERROR(array[index], ErrorCodes::IndexOutOfRange);
        EXPECT_ERROR(list[index], ErrorCodes::ArgumentOutOfRange);
        EXPECT_ERROR(list.RemoveAt(index), ErrorCodes::ArgumentOutOfRange);
    }
    EXPECT_ERROR(Array<int>(-1), ErrorCodes::ArgumentOutOfRange);
    EXPECT_ERROR(Queue<int>().Dequeue(), ErrorCodes::InvalidOperation);
}

TEST(CollectionsTest, AQueueKeepsTheOrder)
{
    Queue<int> queue;
    queue.Enqueue(1);
    queue.Enqueue(2);
    queue.Enqueue(3);
    EXPECT_EQ(1, queue.Dequeue());
    std::string order;
    queue.ForEach([&](int value) { order += std::to_string(value); });
    EXPECT_EQ("23", order);
}

TEST(CollectionsTest, ADictionaryKeepsTheOrderAndTheFirstValue)
{
    Dictionary<String, int> dictionary;
    dictionary.Add("z", 1);
    dictionary.Add("a", 2);
    dictionary.Add("m", 3);
    EXPECT_ERROR(dictionary.Add("a", 9), ErrorCodes::Argument);
    EXPECT_FALSE(dictionary.TryAdd("z", 9));
    EXPECT_TRUE(dictionary.Remove("z"));
    EXPECT_FALSE(dictionary.Remove("z"));
    dictionary.Add("z", 4);
    std::string order;
    dictionary.ForEach([&](const auto& entry) { order += entry.Key().CString() + std::to_string(entry.Value()); });
    EXPECT_EQ("a2m3z4", order);
    EXPECT_EQ(3, *dictionary.Find("m"));
    EXPECT_EQ(nullptr, dictionary.Find("y"));
}

using Handler = Event<EventArgs>::Handler;

Handler Noting(
    std::string& heard, char name, const std::function<void()>& action = [] {})
{
    return MakeLambda<Object*, const EventArgs&>([&heard, name, action](Object*, const EventArgs&) {
        heard += name;
        action();
    });
}

TEST(EventTest, CallsEachHandlerAsOftenAsItWasAdded)
{
    Event<EventArgs> event;
    std::string heard;
    const Handler a = Noting(heard, 'a');
    for (const Handler& handler : {a, Noting(heard, 'b'), a})
    {
        event.Add(handler);
    }
    const auto heardNow = [&] {
        heard.clear();
        event.Raise(nullptr, EventArgs::Empty());
        return heard;
    };
    EXPECT_EQ("aba", heardNow());
    EXPECT_TRUE(event.Remove(*a));
    EXPECT_EQ("ba", heardNow());
    EXPECT_TRUE(event.Remove(*a));
    EXPECT_EQ("b", heardNow());
    EXPECT_FALSE(event.Remove(*a));
    EXPECT_ERROR(event.Add(nullptr), ErrorCodes::ArgumentNull);
}

TEST(EventTest, AHandlerMayChangeTheEventThatCallsIt)
{
    Event<EventArgs> event;
    std::string heard;
    const Handler a = Noting(heard, 'a');
    const Handler changing = Noting(heard, 'c', [&] {
        event.Remove(*a);
        event.Remove(*a);
        event.Add(a);
    });
    event.Add(a);
    event.Add(changing);
    event.Add(a);
    event.Raise(nullptr, EventArgs::Empty());
    EXPECT_EQ("ac", heard); // the second one was gone before its turn, the new one came too late
    EXPECT_EQ(2, event.Handlers().Count());
    event.Add(Noting(heard, 'd', [&] { event.Clear(); }));
    event.Add(a);
    event.Raise(nullptr, EventArgs::Empty());
    event.Raise(nullptr, EventArgs::Empty());
    EXPECT_EQ("accd", heard);
}

TEST(EventTest, ManyHandlersAreAddedAndRemovedInNoTime)
{
    const auto start = std::chrono::steady_clock::now();
    Event<EventArgs> event;
    std::string heard;
    const Handler a = Noting(heard, 'a');
    for (int number = 0; number < 30'000; ++number)
    {
        event.Add(a);
    }
    event.Clear();
    EXPECT_EQ(0, event.Handlers().Count());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2)); // many, when each call copies all
}
} // namespace
