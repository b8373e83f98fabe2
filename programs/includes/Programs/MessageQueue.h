#pragma once

#include "Inventory/DeviceMessage.h"
#include "Programs/Mutex.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <optional>

namespace Zent::Discovery::Programs
{
/// Hands messages from the library's thread to the main thread, so that the library never waits for it.
/// Any thread.
class MessageQueue final
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    /// Never waits. When the reader is so far behind that MaximumBytes wait, the message is counted as lost.
    void Push(Inventory::DeviceMessage message);

    /// All messages, the oldest first, once there is one or the deadline has passed; without a deadline waits without
    /// limit. Lets more come for GatherTime after the first one, so that many at once cost one wake-up, and the
    /// processor is left to the library's receiver. Nothing after Interrupt.
    std::deque<Inventory::DeviceMessage> Take(const std::optional<TimePoint>& deadline);

    /// Ends a waiting Take, or else the next one, before its deadline.
    void Wake();

    /// Ends a waiting Take and makes every further one return nothing.
    void Interrupt();

    bool IsInterrupted() const;

    /// Goes on as if nobody had interrupted, so that what must be tidied up can be. True when somebody had.
    bool ClearInterruption();

    /// How many messages were lost so far.
    std::size_t Lost() const;

    static constexpr std::size_t MaximumBytes = std::size_t{16} * 1024 * 1024;
    static constexpr std::chrono::milliseconds GatherTime{20};

private:
    bool HasNews() const NFX_REQUIRES(lock);

    /// False once the time has passed; without one waits without limit. May return true for nothing.
    bool WaitUntil(const std::optional<TimePoint>& time) NFX_REQUIRES(lock);

    mutable Mutex lock;
    std::condition_variable_any changed;
    std::deque<Inventory::DeviceMessage> messages NFX_GUARDED_BY(lock);
    std::size_t bytes NFX_GUARDED_BY(lock) = 0;
    std::size_t lost NFX_GUARDED_BY(lock) = 0;
    bool isWoken NFX_GUARDED_BY(lock) = false;
    bool interrupted NFX_GUARDED_BY(lock) = false;
};
} // namespace Zent::Discovery::Programs
