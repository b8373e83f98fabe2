#pragma once

#include "Inbox.h"
#include "LocalPort.h"

#include <atomic>
#include <string_view>
#include <thread>

namespace Zent::Discovery::Simulator
{
/// Moves what the network receives into the inbox, on a thread of its own.
class Listener final
{
public:
    /// Listens at once. Network and inbox must outlive the object. When the network fails it says so and closes the
    /// inbox.
    Listener(LocalPort& network, Inbox& inbox);

    /// Waits for the thread.
    ~Listener();

    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

private:
    void Listen();
    void Fail(std::string_view reason);

    LocalPort& network;
    Inbox& inbox;
    std::atomic<bool> stopRequested{false}; // set by the destructor, read by the thread
    std::thread thread;
};
} // namespace Zent::Discovery::Simulator
