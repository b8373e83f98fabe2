#include "HostEventRelay.h"

#include "DiscoveryHostSerializer.h"
#include "ExceptionGuard.h"
#include "ExtCCallBacks.h"

namespace Zent::Discovery::ExtC
{
using Nfx::System::MakeDelegate;
using Nfx::System::Object;
using Nfx::System::String;
using Server::DiscoveryHostSerializer;
using Server::HostEventArgs;
using Server::HostRegistrations;

namespace
{
void OnReceived(Object*, const HostEventArgs& args)
{
    // A failing relay costs its event, never the task processor.
    ExceptionGuard::Run([&] {
        const auto callBack = ExtCCallBacks::Instance()->Of(args.Kind()).load();
        if (callBack != nullptr)
        {
            const String document = DiscoveryHostSerializer().Serialize(*args.Host(), args.SourceNIC());
            callBack(document.CString());
        }
    });
}
} // namespace

HostRegistrations HostEventRelay::Relays()
{
    HostRegistrations relays;
    for (HostRegistrations::HandlerList& handlers : relays.Handlers)
    {
        handlers.Add(MakeDelegate(&OnReceived));
    }
    return relays;
}
} // namespace Zent::Discovery::ExtC
