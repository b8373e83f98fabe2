#pragma once

#include "Server/HostEvents.h"

namespace Zent::Discovery::ExtC
{
/// Passes the server's host events to the host application's callbacks, on the task processor's thread.
class HostEventRelay final
{
public:
    HostEventRelay() = delete;

    /// One relay for each event.
    static Server::HostRegistrations Relays();
};
} // namespace Zent::Discovery::ExtC
