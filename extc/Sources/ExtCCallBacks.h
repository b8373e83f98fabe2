#pragma once

#include "DiscoveryServer.ExtC.h"
#include "Server/HostEvents.h"
#include "system/SmartPointer.h"

#include <atomic>
#include <type_traits>

namespace Zent::Discovery::ExtC
{
/// The host application's callbacks, one for each kind of event. The block exists from Initialize to Terminate: that it
/// exists is what "initialized" means. Set by any thread, read by the task processor's thread at each event.
class ExtCCallBacks final : public Nfx::System::Object
{
public:
    using CallBack = ClientSignatureReceivedEventCallBack;

    static_assert(std::is_same_v<CallBack, HelloMessageReceivedEventCallBack>);
    static_assert(std::is_same_v<CallBack, ByeMessageReceivedEventCallBack>);

    std::atomic<CallBack>& Of(const Server::HostEventKind& kind) { return slots[kind.Place()]; }

    /// @throws InvalidOperationException when there is no block.
    static Nfx::System::SmartPointer<ExtCCallBacks> Instance();

    static bool Exists();

    /// Makes a block the one of the process.
    static void Install(const Nfx::System::SmartPointer<ExtCCallBacks>& callBacks);

    static void Destroy();

private:
    Server::ForEachKind<std::atomic<CallBack>> slots{};
};
} // namespace Zent::Discovery::ExtC
