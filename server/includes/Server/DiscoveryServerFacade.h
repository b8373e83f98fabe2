#pragma once

#include "Server/DiscoveryServer.h"

namespace Zent::Discovery::Server
{
/// Holds the one server of the process.
class DiscoveryServerFacade final : public Nfx::System::Object
{
public:
    /// The singleton, created when there is none. Any thread.
    static Nfx::System::SmartPointer<DiscoveryServerFacade> Instance();

    /// Instance, after letting go of a singleton whose server has failed to start or to stop. Waits while it does
    /// either.
    static Nfx::System::SmartPointer<DiscoveryServerFacade> InstanceThatCanStart();

    /// Lets go of the singleton; the next Instance creates a new one. The server is destroyed with the last reference.
    static void Destroy();

    DiscoveryServer& Server() noexcept { return server; }

private:
    DiscoveryServerFacade() = default;

    DiscoveryServer server;
};
} // namespace Zent::Discovery::Server
