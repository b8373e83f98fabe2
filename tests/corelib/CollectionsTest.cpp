#include "support/ExpectError.h"
#include "system/Array.h"
#include "system/Collections/Generic/Dictionary.h"
#include "system/Collections/Generic/List.h"
#include "system/Collections/Generic/Queue.h"
#include "system/Event.h"
#include "system/String.h"

#include <gtest/gtest.h>

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
    dictionary.Reserve(2);
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

class Listener final
{
public:
    void Hear(Object*, const EventArgs&)
    {
        ++Heard;
        if (Source != nullptr)
        {
            Source->Clear();
        }
    }

    int Heard = 0;
    Event<EventArgs>* Source = nullptr;
};

TEST(EventTest, CallsEachHandlerAsOftenAsItWasAdded)
{
    Event<EventArgs> event;
    Listener listener;
    event.Add(MakeDelegate(listener, &Listener::Hear));
    event.Add(MakeDelegate(listener, &Listener::Hear));
    event.Raise(nullptr, EventArgs::Empty());
    EXPECT_EQ(2, listener.Heard);
    EXPECT_TRUE(event.Remove(MakeDelegate(listener, &Listener::Hear)));
    event.Raise(nullptr, EventArgs::Empty());
    EXPECT_EQ(3, listener.Heard);
    EXPECT_TRUE(event.Remove(MakeDelegate(listener, &Listener::Hear)));
    EXPECT_FALSE(event.Remove(MakeDelegate(listener, &Listener::Hear)));
    EXPECT_ERROR(event.Add(nullptr), ErrorCodes::ArgumentNull);
}

TEST(EventTest, AHandlerMayChangeTheEventThatCallsIt)
{
    Event<EventArgs> event;
    Listener listener;
    listener.Source = &event;
    event.Add(MakeDelegate(listener, &Listener::Hear));
    event.Add(MakeDelegate(listener, &Listener::Hear));
    event.Raise(nullptr, EventArgs::Empty());
    EXPECT_EQ(2, listener.Heard);
    event.Raise(nullptr, EventArgs::Empty());
    EXPECT_EQ(2, listener.Heard);
}
} // namespace
