#include "Programs/Interruption.h"

#include <atomic>
#include <pthread.h>
#include <signal.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace Zent::Discovery::Programs
{
/// Takes the signals on a thread of its own, where any function may be called, unlike in a signal handler.
class Interruption::Watcher final
{
public:
    explicit Watcher(std::function<void()> onInterrupt)
        : onInterrupt(std::move(onInterrupt))
    {
        sigemptyset(&signals);
        for (const int number : {SIGINT, SIGTERM, SIGHUP})
        {
            sigaddset(&signals, number);
        }
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
        thread = std::thread([this] { Watch(); });
    }

    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

    ~Watcher()
    {
        ending = true;
        pthread_kill(thread.native_handle(), SIGINT);
        thread.join();
    }

private:
    void Watch()
    {
        for (bool interrupted = false;; interrupted = true)
        {
            int number = 0;
            sigwait(&signals, &number);
            if (ending)
            {
                return;
            }
            if (isAtOnce || (interrupted && number != SIGHUP)) // a closing terminal and its shell both send one
            {
                _exit(128 + number);
            }
            if (!interrupted)
            {
                onInterrupt();
            }
        }
    }

    const std::function<void()> onInterrupt;
    sigset_t signals{};              // constant once the thread runs
    std::atomic<bool> ending{false}; // set by the destructor, read by the thread
    std::thread thread;
};

Interruption::Interruption(std::function<void()> onInterrupt)
    : watcher(std::make_unique<Watcher>(std::move(onInterrupt)))
{
}

Interruption::~Interruption() = default;
} // namespace Zent::Discovery::Programs
