#include "Listener.h"

#include "system/Exception.h"

#include <exception>
#include <iostream>
#include <string>
#include <utility>

namespace Zent::Discovery::Simulator
{
Listener::Listener(DeviceNetwork& network, RequestQueue& requests)
    : network(network)
    , requests(requests)
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
                requests.Push(std::move(*request));
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
    requests.Close();
}
} // namespace Zent::Discovery::Simulator
