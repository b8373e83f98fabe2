#include "Commands/CommandContext.h"

#include "DiscoverySession.h"
#include "Doctor/Examination.h"
#include "Programs/SystemNetwork.h"
#include "Show/Output.h"

#include <stdexcept>
#include <utility>

using Zent::Discovery::Programs::HostSession;
using Zent::Discovery::Programs::MessageQueue;
using Zent::Discovery::Programs::SystemNetwork;

namespace Zent::Discovery::Console
{
namespace
{
/// A change whose program was killed or lost its power, and what the user can do.
std::string Describe(const Inventory::JournalEntry& entry)
{
    std::string remedy = "what was before is unknown; ";
    if (entry.CanBeUndone() || !entry.Undoes.empty())
    {
        remedy = "discovery-console undo" + (entry.MACAddress.empty() ? "" : " --mac " + entry.MACAddress) +
                 (entry.Undoes.empty() ? " gives back " + entry.BeforeText() : " tries again") + ", ";
    }
    return "the change of " + entry.Subject() + " at " + entry.Time + " to " + entry.AfterText() +
           " was broken off: " + remedy + "discovery-console undo --keep leaves it";
}
} // namespace

CommandContext::CommandContext(const ProgramOptions& options, MessageQueue& messages, Output& output)
    : options(options)
    , messages(messages)
    , output(output)
    , journal(options.Journal)
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
        TellOpenChanges();
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

Inventory::Journal CommandContext::ReadJournal()
{
    isJournalKnown = true;
    return journal.Read([this](const std::string& text) { output.Complain(text); });
}

bool CommandContext::WriteJournal(const std::string& line)
{
    std::string reason = "there is no folder for the journal; --journal names a file";
    if (!journal.Path().empty())
    {
        try
        {
            journal.Append(line);
            return true;
        }
        catch (const std::runtime_error& error)
        {
            if (options.IsJournalChosen)
            {
                throw;
            }
            reason = error.what();
        }
    }
    if (!std::exchange(isJournalMissing, true))
    {
        output.Complain(reason + "; going on without: undo will not know of this change");
    }
    return false;
}

/// That nobody can read the journal is no reason not to search.
void CommandContext::TellOpenChanges()
{
    if (std::exchange(isJournalKnown, true))
    {
        return;
    }
    try
    {
        const Inventory::Journal changes = journal.Read([this](const std::string& text) { output.Complain(text); });
        for (const Inventory::JournalEntry* entry : changes.OpenEntries())
        {
            output.Complain(Describe(*entry));
        }
    }
    catch (const std::runtime_error& error)
    {
        output.Complain(error.what());
    }
}

std::string CommandContext::WhyNoInterface()
{
    const Programs::InterfaceChoice interfaces = Session().Interfaces();
    return interfaces.Addresses().empty()
               ? "no-interface: no network interface takes part; left out: " + interfaces.LeftOut()
               : "";
}

bool CommandContext::CanBroadcast()
{
    const std::string reason = WhyNoInterface();
    if (!reason.empty())
    {
        output.Complain(reason);
    }
    return reason.empty();
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
