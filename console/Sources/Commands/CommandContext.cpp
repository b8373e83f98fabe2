#include "Commands/CommandContext.h"

#include "DiscoverySession.h"
#include "Doctor/Examination.h"
#include "Programs/SystemNetwork.h"
#include "Show/Output.h"

#include <stdexcept>

using Zent::Discovery::Programs::HostSession;
using Zent::Discovery::Programs::MessageQueue;
using Zent::Discovery::Programs::SystemNetwork;

namespace Zent::Discovery::Console
{
CommandContext::CommandContext(const ProgramOptions& options, MessageQueue& messages, Output& output)
    : options(options)
    , messages(messages)
    , output(output)
{
}

std::chrono::milliseconds CommandContext::Wait() const
{
    return options.Wait.value_or(std::chrono::seconds(2));
}

HostSession& CommandContext::Session()
{
    using Kind = Inventory::DeviceMessage::MessageKind;
    const auto queue = [this](Kind kind) {
        return [this, kind](const std::string& document) {
            messages.Push({kind, document, std::chrono::system_clock::now()});
        };
    };
    if (!session)
    {
        try
        {
            session.emplace(options.Session,
                            HostSession::Handlers{[this](const std::string& text) { output.Complain(text); },
                                                  queue(Kind::Signature), queue(Kind::Hello), queue(Kind::Bye)});
        }
        catch (const DiscoveryError& error)
        {
            if (error.Code() != DiscoveryError::Socket)
            {
                throw;
            }
            const std::string reason = Doctor::Examination::ReasonForTakenPort(options);
            throw std::runtime_error(error.what() +
                                     (reason.empty() ? "; discovery-console doctor says why" : ". " + reason));
        }
    }
    return *session;
}

bool CommandContext::CanBroadcast()
{
    const Programs::InterfaceChoice interfaces = Session().Interfaces();
    if (interfaces.Addresses().empty())
    {
        output.Complain("no-interface: no network interface takes part; left out: " + interfaces.LeftOut());
        return false;
    }
    return true;
}

bool CommandContext::CanReach(const std::string& ipAddress)
{
    const std::optional<Inventory::IPv4> address = Inventory::Network::ParseAddress(ipAddress);
    if (address && !SystemNetwork::HasRoute(*address))
    {
        output.Complain("there is no route to " + ipAddress);
        return false;
    }
    return true;
}

void CommandContext::Close()
{
    if (session)
    {
        session->Close();
    }
}
} // namespace Zent::Discovery::Console
