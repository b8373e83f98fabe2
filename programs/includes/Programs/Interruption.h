#pragma once

#include <functional>
#include <memory>

namespace Zent::Discovery::Programs
{
/// Watches for the user's or the system's wish that the program ends: Ctrl-C, a termination signal, a closed console.
/// Made before any other thread is started, so that no other thread receives the signals. One per process.
class Interruption final
{
public:
    /// onInterrupt is called once, on a thread of its own; a second wish of the
    /// user ends the process at once.
    explicit Interruption(std::function<void()> onInterrupt);

    /// Tells a closing console that the program has tidied up.
    ~Interruption();

    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

private:
    class Watcher;

    std::unique_ptr<Watcher> watcher;
};
} // namespace Zent::Discovery::Programs
