#pragma once

#include "system/Net/Sockets/SocketException.h"

#include <functional>
#include <future>
#include <thread>

namespace Nfx::System::Net::Sockets
{
/// A thread that repeats an action on a socket until it fails, and keeps the way in which it failed.
class Repeater final
{
public:
    explicit Repeater(std::function<void()> action)
        : action(std::move(action))
        , thread([this] { Run(); })
    {
    }

    ~Repeater() { thread.join(); }

    Repeater(const Repeater&) = delete;
    Repeater& operator=(const Repeater&) = delete;

    /// Waits for the first success.
    void AwaitStart() { started.get_future().get(); }

    /// "closed", or the name of the socket error; waits for the failure.
    String Ending() { return ending.get_future().get(); }

private:
    void Run()
    {
        try
        {
            action();
            started.set_value();
            for (;;)
            {
                action();
            }
        }
        catch (const ObjectClosedException&)
        {
            ending.set_value("closed");
        }
        catch (const SocketException& exception)
        {
            ending.set_value(exception.GetSocketError().ToString());
        }
    }

    std::function<void()> action;
    std::promise<void> started;
    std::promise<String> ending;
    std::thread thread;
};
} // namespace Nfx::System::Net::Sockets
