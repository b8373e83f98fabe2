#pragma once

#include "Discovery/IBroadcastProvider.h"
#include "Server/ByeMessageReceivedEventArgs.h"
#include "Server/ClientSignatureReceivedEventArgs.h"
#include "Server/HelloMessageReceivedEventArgs.h"
#include "system/Collections/Generic/List.h"
#include "system/Event.h"
#include "system/SmartPointer.h"

namespace Zent::Discovery::Server
{
/// What the host application has installed on a task processor; an automatic restart carries it to the next one.
struct HostRegistrations final
{
    template <class TEventArgs>
    using Handlers = Nfx::System::Collections::Generic::List<typename Nfx::System::Event<TEventArgs>::Handler>;

    Nfx::System::SmartPointer<IBroadcastProvider> Provider;
    Handlers<ClientSignatureReceivedEventArgs> ClientSignatureReceived;
    Handlers<HelloMessageReceivedEventArgs> HelloMessageReceived;
    Handlers<ByeMessageReceivedEventArgs> ByeMessageReceived;
};
} // namespace Zent::Discovery::Server
