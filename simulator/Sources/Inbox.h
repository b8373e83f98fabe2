#pragma once

#include "Programs/Mutex.h"
#include "Request.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <optional>
#include <string>
#include <variant>

namespace Zent::Discovery::Simulator
{
/// Hands what comes in, requests of the network and lines of standard input, to the thread that runs the devices. Any
/// thread.
class Inbox final
{
public:
    using Entry = std::variant<Request, std::string>;
    using Time = std::chrono::steady_clock::time_point;

    /// Never waits. False when MaximumCount wait already: the entry is dropped, as a device's own buffer would.
    bool Push(Entry entry);

    /// Waits for the oldest entry, at most until the time, if there is one; nothing when it has passed, or after Close.
    std::optional<Entry> Take(const std::optional<Time>& until);

    /// Ends a waiting Take, and all further ones.
    void Close();

    bool IsClosed() const;

    static constexpr std::size_t MaximumCount = 10000;

private:
    mutable Programs::Mutex lock;
    std::condition_variable_any changed;
    std::deque<Entry> entries NFX_GUARDED_BY(lock);
    bool isClosed NFX_GUARDED_BY(lock) = false;
};
} // namespace Zent::Discovery::Simulator
