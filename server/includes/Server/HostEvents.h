#pragma once

#include "Discovery/DiscoveryHost.h"
#include "Discovery/IBroadcastProvider.h"
#include "Discovery/NICConfig.h"
#include "system/Collections/Generic/List.h"
#include "system/Enum.h"
#include "system/Event.h"
#include "system/EventArgs.h"
#include "system/SmartPointer.h"

#include <array>
#include <iterator>

namespace Zent::Discovery::Server
{
/// What the host application is told of. A value is the place of what belongs to the kind: its event, its handlers, its
/// callback. The name is what the log calls it.
class HostEventKind final : public Nfx::System::Enum<HostEventKind>
{
public:
    enum : std::int32_t
    {
        ClientSignature = 0,
        Hello = 1,
        Bye = 2
    };

    static constexpr Nfx::System::EnumName Names[] = {
        {ClientSignature, "Client Signature"}, {Hello, "Hello message"}, {Bye, "Bye message"}};

    static constexpr std::size_t Count = std::size(Names);

    using Enum::Enum;

    std::size_t Place() const noexcept { return static_cast<std::size_t>(std::int32_t{*this}); }
};

static_assert(
    [] {
        for (std::size_t place = 0; place < HostEventKind::Count; ++place)
        {
            if (HostEventKind::Names[place].Value != static_cast<std::int32_t>(place))
            {
                return false;
            }
        }
        return true;
    }(),
    "the values count from 0 on");

/// One T for each kind.
template <class T>
using ForEachKind = std::array<T, HostEventKind::Count>;

/// What every event for the host application carries: the device, and the interface it sent from when it said so.
class HostEventArgs final : public Nfx::System::EventArgs
{
public:
    HostEventArgs(const HostEventKind& kind,
                  const Nfx::System::SmartPointer<DiscoveryHost>& host,
                  const Nfx::System::SmartPointer<NICConfig>& sourceNIC)
        : kind(kind)
        , host(host)
        , sourceNIC(sourceNIC)
    {
    }

    const HostEventKind& Kind() const noexcept { return kind; }

    const Nfx::System::SmartPointer<DiscoveryHost>& Host() const noexcept { return host; }

    /// Null when the message carried none.
    const Nfx::System::SmartPointer<NICConfig>& SourceNIC() const noexcept { return sourceNIC; }

private:
    const HostEventKind kind;
    const Nfx::System::SmartPointer<DiscoveryHost> host;
    const Nfx::System::SmartPointer<NICConfig> sourceNIC;
};

/// The name that they have where a signature is meant.
using ClientSignatureReceivedEventArgs = HostEventArgs;

/// What the host application has installed on a task processor; an automatic restart carries it to the next one.
struct HostRegistrations final
{
    using HandlerList = Nfx::System::Collections::Generic::List<Nfx::System::Event<HostEventArgs>::Handler>;

    Nfx::System::SmartPointer<IBroadcastProvider> Provider;
    ForEachKind<HandlerList> Handlers;
};
} // namespace Zent::Discovery::Server
