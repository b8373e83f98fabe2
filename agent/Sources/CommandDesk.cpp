#include "CommandDesk.h"

#include <optional>
#include <utility>

using Zent::Discovery::Fleet::Command;
using Zent::Discovery::Fleet::CommandMessage;
using Zent::Discovery::Fleet::Refusal;
using Zent::Discovery::Fleet::Verdict;

namespace Zent::Discovery::Agent
{
CommandDesk::CommandDesk(Fleet::SiteTopics topics,
                         const SiteInventory& inventory,
                         ISitePublisher& publisher,
                         AuditLog& audit,
                         Requests requests)
    : topics(std::move(topics))
    , inventory(inventory)
    , publisher(publisher)
    , audit(audit)
    , requests(std::move(requests))
{
}

void CommandDesk::Take(const CommandMessage& message, Fleet::WallTime now)
{
    std::optional<Command> command;
    Verdict verdict;
    try
    {
        command = Command::Read(message, topics);
        verdict = CarryOut(*command);
    }
    catch (const Refusal& refusal)
    {
        verdict = Verdict::Of(refusal);
    }
    audit.Write(verdict.AuditLine(message, command ? &*command : nullptr, topics, now));
    publisher.Reply(message, verdict);
}

Verdict CommandDesk::CarryOut(const Command& command)
{
    if (command.Kind != Command::CommandKind::Discover)
    {
        const Fleet::DeviceRecord* const record = inventory.Find(command.Device);
        command.CheckRevision(record == nullptr ? std::nullopt : std::optional(record->Revision()));
    }
    switch (command.Kind)
    {
    case Command::CommandKind::Discover:
        return requests.AskAll() ? Verdict{"done"} : throw Refusal("busy", "the library takes no requests now");
    case Command::CommandKind::Refresh:
        return requests.Ask(Fleet::DeviceId::ToMAC(command.Device).value_or(""))
                   ? Verdict{"done"}
                   : throw Refusal("busy", "the library takes no requests now");
    case Command::CommandKind::Rename:
    case Command::CommandKind::Configure:
        break;
    }
    throw Refusal("not-supported", "this agent changes no devices");
}
} // namespace Zent::Discovery::Agent
