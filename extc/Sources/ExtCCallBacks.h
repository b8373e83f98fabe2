#pragma once

#include "DiscoveryServer.ExtC.h"
#include "system/SmartPointer.h"

#include <atomic>

namespace Zent::Discovery::ExtC
{
/// The host application's three callbacks. The block exists from Initialize to Terminate: that it exists is what
/// "initialized" means. Set by any thread, read by the task processor's thread at each event.
class ExtCCallBacks final : public Nfx::System::Object
{
public:
    std::atomic<ClientSignatureReceivedEventCallBack> ClientSignatureReceived{nullptr};
    std::atomic<HelloMessageReceivedEventCallBack> HelloMessageReceived{nullptr};
    std::atomic<ByeMessageReceivedEventCallBack> ByeMessageReceived{nullptr};

    /// @throws InvalidOperationException when there is no block.
    static Nfx::System::SmartPointer<ExtCCallBacks> Instance();

    static bool Exists();

    /// Makes a block the one of the process.
    static void Install(const Nfx::System::SmartPointer<ExtCCallBacks>& callBacks);

    static void Destroy();
};
} // namespace Zent::Discovery::ExtC
