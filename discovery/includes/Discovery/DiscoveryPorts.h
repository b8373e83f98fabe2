#pragma once

#include "system/Int32.h"
#include "system/SmartPointer.h"

namespace Zent::Discovery
{
/// The pair of UDP ports that all discovery traffic uses.
class DiscoveryPorts final : public Nfx::System::Object
{
public:
    static const Nfx::System::SmartPointer<DiscoveryPorts>& GetInstance();

    /// Where devices listen; every datagram that the server sends goes there.
    const Nfx::System::Int32& ClientPort() const;

    /// Where the server listens; devices answer there.
    const Nfx::System::Int32& ServerPort() const;
};
} // namespace Zent::Discovery
