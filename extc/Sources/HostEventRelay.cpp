#include "HostEventRelay.h"

#include "DiscoveryHostSerializer.h"
#include "ExceptionGuard.h"
#include "ExtCCallBacks.h"

namespace Zent::Discovery::ExtC
{
using Nfx::System::MakeDelegate;
using Nfx::System::Object;
using Nfx::System::String;
using Server::ByeMessageReceivedEventArgs;
using Server::ClientSignatureReceivedEventArgs;
using Server::DiscoveryHostSerializer;
using Server::HelloMessageReceivedEventArgs;
using Server::HostEventArgs;
using Server::HostRegistrations;

namespace
{
template <class TCallBack>
void Relay(std::atomic<TCallBack> ExtCCallBacks::*slot, const HostEventArgs& args)
{
    // A failing relay costs its event, never the task processor.
    ExceptionGuard::Run([&] {
        const TCallBack callBack = (*ExtCCallBacks::Instance()).*slot;
        if (callBack != nullptr)
        {
            const String document = DiscoveryHostSerializer().Serialize(*args.Host(), args.SourceNIC());
            callBack(document.CString());
        }
    });
}

void OnClientSignatureReceived(Object*, const ClientSignatureReceivedEventArgs& args)
{
    Relay(&ExtCCallBacks::ClientSignatureReceived, args);
}

void OnHelloMessageReceived(Object*, const HelloMessageReceivedEventArgs& args)
{
    Relay(&ExtCCallBacks::HelloMessageReceived, args);
}

void OnByeMessageReceived(Object*, const ByeMessageReceivedEventArgs& args)
{
    Relay(&ExtCCallBacks::ByeMessageReceived, args);
}
} // namespace

HostRegistrations HostEventRelay::Relays()
{
    HostRegistrations relays;
    relays.ClientSignatureReceived.Add(MakeDelegate(&OnClientSignatureReceived));
    relays.HelloMessageReceived.Add(MakeDelegate(&OnHelloMessageReceived));
    relays.ByeMessageReceived.Add(MakeDelegate(&OnByeMessageReceived));
    return relays;
}
} // namespace Zent::Discovery::ExtC
