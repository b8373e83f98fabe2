#pragma once

#include "system/Exceptions.h"
#include "system/Threading/Monitor.h"

#include <cstddef>
#include <deque>
#include <utility>

namespace Nfx::System::Collections::Generic
{
/// First in, first out. Not locked by itself: users that share one lock its SyncRoot around every access.
template <class T>
class Queue final : public Object
{
public:
    /// The lock that belongs to this queue.
    Threading::Monitor& SyncRoot() const noexcept { return syncRoot; }

    std::size_t Count() const noexcept { return elements.size(); }

    void Enqueue(T value) { elements.push_back(std::move(value)); }

    /// Removes and returns the oldest value.
    /// @throws InvalidOperationException when the queue is empty.
    T Dequeue()
    {
        if (elements.empty())
        {
            throw InvalidOperationException("Corelib/includes/system/Collections/Generic/Queue", __LINE__);
        }
        T value = std::move(elements.front());
        elements.pop_front();
        return value;
    }

    void Clear() noexcept { elements.clear(); }

    /// Calls action(value) for each value, the oldest first.
    template <class TAction>
    void ForEach(TAction&& action) const
    {
        for (const T& element : elements)
        {
            action(element);
        }
    }

    /// Exchanges the values of two queues; each keeps its lock.
    void Swap(Queue& other) noexcept { elements.swap(other.elements); }

private:
    mutable Threading::Monitor syncRoot;
    std::deque<T> elements;
};
} // namespace Nfx::System::Collections::Generic
