#include "Listener.h"

#include "system/Exception.h"

#include <exception>
#include <iostream>
#include <string>
#include <utility>

namespace Zent::Discovery::Simulator
{
Listener::Listener(LocalPort& network, Inbox& inbox)
    : network(network)
    , inbox(inbox)
    , thread([this] { Listen(); })
{
}

Listener::~Listener()
{
    stopRequested = true;
    thread.join();
}

void Listener::Listen()
{
    try
    {
        while (!stopRequested)
        {
            if (std::optional<Request> request = network.Receive())
            {
                inbox.Push(std::move(*request));
            }
        }
    }
    catch (const std::exception& error)
    {
        Fail(error.what());
    }
    catch (const Nfx::System::Exception& error) // which is no std::exception
    {
        Fail(error.GetMessage().View());
    }
}

void Listener::Fail(std::string_view reason)
{
    std::cerr << "device-simulator: " + std::string(reason) + "\n";
    inbox.Close();
}
} // namespace Zent::Discovery::Simulator
