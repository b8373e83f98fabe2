#include "Listener.h"

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
        std::cerr << std::string("device-simulator: ") + error.what() + "\n";
        requests.Close();
    }
}
} // namespace Zent::Discovery::Simulator
