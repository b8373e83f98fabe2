#pragma once

#include <atomic>
#include <functional>
#include <memory>

namespace Zent::Discovery::Programs
{
/// Watches for the user's or the system's wish that the program ends: Ctrl-C, a termination signal, a closed console.
/// Made before any other thread is started, so that no other thread receives the signals. One per process.
class Interruption final
{
public:
    /// While it lives, already the first wish ends the process at once: for a wait that nothing else can end, with
    /// nothing to tidy up. One at a time.
    class AtOnce final
    {
    public:
        AtOnce() { isAtOnce = true; }

        ~AtOnce() { isAtOnce = false; }

        AtOnce(const AtOnce&) = delete;
        AtOnce& operator=(const AtOnce&) = delete;
    };

    /// onInterrupt is called once, on a thread of its own; a second wish of the
    /// user ends the process at once.
    explicit Interruption(std::function<void()> onInterrupt);

    /// Tells a closing console that the program has tidied up.
    ~Interruption();

    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

private:
    class Watcher;

    inline static std::atomic<bool> isAtOnce{false}; // read by the thread or the handler that takes the wishes

    std::unique_ptr<Watcher> watcher;
};
} // namespace Zent::Discovery::Programs
