#include "CheckBrokerCommand.h"

#include "BrokerDialogue.h"
#include "Commands/Arguments.h"
#include "Fleet/RetainedRemoval.h"
#include "Fleet/Topics.h"
#include "Show/Output.h"
#include "Text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <stdexcept>

using Zent::Discovery::Console::TerminalText;
using Zent::Discovery::Fleet::BrokerFinding;
using Zent::Discovery::Fleet::BrokerObservations;
using Zent::Discovery::Fleet::Conversation;
using Zent::Discovery::Fleet::ProbeReading;
using Zent::Discovery::Fleet::Probes;
using Zent::Discovery::Fleet::ProbeWriting;
using Zent::Discovery::Fleet::RetainedRemoval;
using Zent::Discovery::Fleet::SiteTopics;
using Json = nlohmann::ordered_json;

namespace Zent::Discovery::FleetConsole
{
namespace
{
/// Whose probes they are: a killed run's are found by the next one.
std::string ClientOf(const CommandContext& context)
{
    return SiteTopics::IsName(context.Broker.User) ? context.Broker.User : "anonymous";
}

void Hold(CommandContext& context, Conversation& conversation, const std::string& status)
{
    if (!context.Waiter.IsInterrupted())
    {
        context.Out.ShowStatus(status);
        BrokerDialogue::Hold(context, conversation);
    }
}

Json JsonOf(const std::optional<std::size_t>& count)
{
    return count ? Json(*count) : Json();
}
} // namespace

CLI::App& CheckBrokerCommand::AddTo(CLI::App& program)
{
    return Console::Arguments(program, "check-broker",
                              "try whether the broker keeps and gives what the inventory needs, and name the setting "
                              "that is wrong")
        .Command();
}

ExitStatus CheckBrokerCommand::Run(CommandContext& context)
{
    const std::string client = ClientOf(context);
    RetainedRemoval leftovers(Probes::Root(client));
    Hold(context, leftovers, "Looking for probes of earlier runs");
    BrokerObservations observations;
    bool isWritten = true;
    try
    {
        isWritten = Observe(context, client, observations);
    }
    catch (const std::runtime_error&)
    {
        CleanUp(context, client);
        throw;
    }
    const bool isInterrupted = context.Waiter.ClearInterruption();
    const bool isClean = !isWritten || CleanUp(context, client);
    if (isInterrupted)
    {
        context.Out.Complain("interrupted");
        return ExitStatus::Interrupted;
    }
    const std::vector<BrokerFinding> findings = BrokerFinding::Of(observations, client);
    Tell(context, observations, findings);
    return std::ranges::any_of(findings, &BrokerFinding::IsFatal) ? ExitStatus::Errors
           : !findings.empty()                                    ? ExitStatus::Incomplete
           : isClean                                              ? ExitStatus::Success
                                                                  : ExitStatus::Failure;
}

/// Each on a connection of its own, as agents and readers are.
bool CheckBrokerCommand::Observe(CommandContext& context, const std::string& client, BrokerObservations& observations)
{
    const std::string all = std::to_string(Probes::Count) + " probes";
    const std::vector<std::string> topics = Probes::Topics(client);
    ProbeWriting writing(topics, Probes::SmallBytes);
    Hold(context, writing, "Publishing " + all);
    observations.Limits = writing.BrokersLimits();
    observations.Refusal = writing.Refusal();
    if (observations.Refusal || !observations.Limits.KeepsRetained)
    {
        return false;
    }
    ProbeReading small(client);
    Hold(context, small, "Reading " + all);
    observations.ReceivedSmall = small.Received();
    ProbeWriting largest({Probes::LargestTopic(client)}, Probes::LargestBytes);
    Hold(context, largest, "Publishing a large probe");
    observations.LargestRefusal = largest.Refusal();
    ProbeWriting again(topics, Probes::RecordBytes);
    Hold(context, again, "Publishing " + all + " of the size of records");
    observations.Refusal = again.Refusal();
    if (!observations.Refusal && small.Received() > 0)
    {
        ProbeReading records(client);
        Hold(context, records, "Reading " + all + " of the size of records");
        observations.ReceivedRecords = records.Received();
    }
    return true;
}

/// False, after a complaint, when probes are left.
bool CheckBrokerCommand::CleanUp(CommandContext& context, const std::string& client)
{
    const std::string place = Probes::Root(client) + "#";
    context.Out.ShowStatus("Removing the probes");
    try
    {
        std::vector<std::string> topics = Probes::Topics(client);
        topics.push_back(Probes::LargestTopic(client));
        RetainedRemoval removal(Probes::Root(client), topics);
        BrokerDialogue::Hold(context, removal);
        if (removal.IsOver() && removal.Trouble().empty())
        {
            return true;
        }
        context.Out.Complain("probes may be left below " + place +
                             "; the next check removes them: " + removal.Trouble());
    }
    catch (const std::runtime_error& error)
    {
        context.Out.Complain("probes may be left below " + place + "; the next check removes them: " + error.what());
    }
    return false;
}

void CheckBrokerCommand::Tell(CommandContext& context,
                              const BrokerObservations& observations,
                              const std::vector<BrokerFinding>& findings)
{
    if (context.Out.IsJson())
    {
        Json list = Json::array();
        for (const BrokerFinding& each : findings)
        {
            list.push_back({{"Setting", each.Setting}, {"Text", each.Text}, {"Fatal", each.IsFatal}});
        }
        const Json check = {{"Probes", Probes::Count},
                            {"Small", JsonOf(observations.ReceivedSmall)},
                            {"Records", JsonOf(observations.ReceivedRecords)},
                            {"Findings", std::move(list)}};
        context.Out.PrintLine(
            TerminalText::Json(Json({{"Check", check}}).dump(-1, ' ', false, Json::error_handler_t::replace)));
        return;
    }
    for (const BrokerFinding& each : findings)
    {
        context.Out.PrintLine(TerminalText::Plain(each.Setting + (each.Setting.empty() ? "" : ": ") + each.Text));
    }
    if (findings.empty())
    {
        context.Out.Conclude("the broker keeps and gives all of " + std::to_string(Probes::Count) + " probes");
    }
}
} // namespace Zent::Discovery::FleetConsole
