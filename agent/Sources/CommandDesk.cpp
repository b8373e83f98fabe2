#include "CommandDesk.h"

#include "Inventory/DeviceTable.h"
#include "Programs/SessionDriver.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <string>
#include <utility>

using Zent::Discovery::Fleet::Command;
using Zent::Discovery::Fleet::CommandMessage;
using Zent::Discovery::Fleet::DeviceId;
using Zent::Discovery::Fleet::Refusal;
using Zent::Discovery::Fleet::Verdict;
using Zent::Discovery::Fleet::WallTime;
using Zent::Discovery::Inventory::ChangeReport;
using Zent::Discovery::Inventory::ChangeRequest;
using Zent::Discovery::Inventory::DeviceRow;
using Zent::Discovery::Inventory::Time;
using Json = nlohmann::json;

namespace Zent::Discovery::Agent
{
namespace
{
/// Bytes that a device has sent need not be UTF-8.
std::string ValidJson(const std::string& json)
{
    const std::string text = Json::parse(Json(json).dump(-1, ' ', false, Json::error_handler_t::replace));
    return Json::parse(text).dump();
}

Verdict VerdictOf(const ChangeReport& report)
{
    if (report.Refusal)
    {
        return Verdict::Of(Refusal(report.Refusal->CodeName(), report.Refusal->Text));
    }
    return {report.VerdictName(), "", report.ToString(), ValidJson(report.ToJson())};
}
} // namespace

CommandDesk::CommandDesk(Fleet::SiteTopics topics,
                         const SiteInventory& inventory,
                         Programs::SessionDriver& driver,
                         ISitePublisher& publisher,
                         AuditLog& audit)
    : topics(std::move(topics))
    , inventory(inventory)
    , driver(driver)
    , publisher(publisher)
    , audit(audit)
{
}

void CommandDesk::Take(const CommandMessage& message, WallTime now)
{
    std::optional<Command> command;
    try
    {
        command = Command::Read(message, topics);
        if (const std::optional<Verdict> verdict = CarryOut(message, *command))
        {
            Conclude(message, &*command, *verdict, now);
            return;
        }
        audit.Write(Verdict{"started"}.AuditLine(message, &*command, topics, now));
    }
    catch (const Refusal& refusal)
    {
        Conclude(message, command ? &*command : nullptr, Verdict::Of(refusal), now);
    }
}

void CommandDesk::TakeOutcome(const ChangeReport& report, WallTime now)
{
    const auto found = changes.extract(report.Id);
    if (!found)
    {
        return;
    }
    const Open& change = found.mapped();
    const std::string& device = change.Command.Device;
    std::erase_if(turns, [this](const auto& each) { return inventory.Find(each.first) == nullptr; });
    const auto turn = turns.find(device);
    const auto isOfDevice = [&device](const auto& each) { return each.second.Command.Device == device; };
    if (turn != turns.end() && std::ranges::none_of(changes, isOfDevice))
    {
        turn->second.After = inventory.Find(device)->Revision();
    }
    Conclude(change.Message, &change.Command, VerdictOf(report), now);
}

/// What the sender must have seen: the revision of the record, or for a further interface the one before his own
/// changes as long as nothing else has changed it.
std::string CommandDesk::RevisionFor(const Open& change) const
{
    std::string current = RecordOf(change.Command.Device).Revision();
    const auto found = turns.find(change.Command.Device);
    if (found == turns.end() || change.Request.Kind != ChangeRequest::ChangeKind::Configure)
    {
        return current;
    }
    const Turn& turn = found->second;
    const bool isOwn = turn.ResponseTopic == change.Message.ResponseTopic && turn.Before == change.Command.Revision &&
                       !turn.Interfaces.contains(change.Request.Interface.MACAddress) &&
                       (turn.After.empty() || turn.After == current);
    return isOwn ? turn.Before : current;
}

const Fleet::DeviceRecord& CommandDesk::RecordOf(const std::string& device) const
{
    const Fleet::DeviceRecord* const record = inventory.Find(device);
    if (record == nullptr)
    {
        throw Refusal("unknown-device", "no device " + device + " is known here");
    }
    return *record;
}

/// A revision says nothing of what is under way: of two senders who saw the same one, the second must look again.
void CommandDesk::CheckFree(const Open& change) const
{
    if (changes.size() >= MaximumChanges)
    {
        throw Refusal("busy", std::to_string(MaximumChanges) + " changes are under way");
    }
    for (const auto& [id, other] : changes)
    {
        const bool isSame = other.Request.Kind == change.Request.Kind &&
                            other.Request.Interface.MACAddress == change.Request.Interface.MACAddress;
        if (other.Command.Device == change.Command.Device &&
            (isSame || other.Message.ResponseTopic != change.Message.ResponseTopic))
        {
            throw Refusal("busy", "another change of the device is under way");
        }
    }
}

void CommandDesk::NoteTurn(const Open& change)
{
    Turn& turn = turns[change.Command.Device];
    if (turn.ResponseTopic != change.Message.ResponseTopic || turn.Before != change.Command.Revision)
    {
        turn = {change.Message.ResponseTopic, change.Command.Revision};
    }
    turn.Interfaces.insert(change.Request.Interface.MACAddress);
    turn.After.clear();
}

/// Nothing while a change is under way.
std::optional<Verdict> CommandDesk::CarryOut(const CommandMessage& message, const Command& command)
{
    if (command.Kind != Command::CommandKind::Discover)
    {
        RecordOf(command.Device); // else the reason would be another one
    }
    if (command.Kind == Command::CommandKind::Discover || command.Kind == Command::CommandKind::Refresh)
    {
        Ask(command);
        return Verdict{"done"};
    }
    const Open change{message, command, RequestOf(command)};
    command.CheckRevision(RevisionFor(change));
    CheckFree(change);
    // The table is whole as long as the agent runs: what other devices have is known.
    const std::int64_t id = driver.Session().StartChange(change.Request, {.Look = {}}, driver.Now());
    changes.emplace(id, change);
    NoteTurn(change);
    return std::nullopt;
}

void CommandDesk::Ask(const Command& command)
{
    const Time now = driver.Now();
    std::erase_if(questions, [now](const auto& each) { return now - each.second >= QuestionInterval; });
    const std::string limit = std::to_string(QuestionInterval / std::chrono::seconds(1)) + " s";
    if (questions.contains(command.Device))
    {
        throw Refusal("too-soon", "the same was asked within the last " + limit);
    }
    if (questions.size() >= MaximumQuestions)
    {
        throw Refusal("too-soon", std::to_string(MaximumQuestions) + " questions were asked within the last " + limit);
    }
    const bool isTaken = command.Kind == Command::CommandKind::Discover
                             ? driver.AskAll()
                             : driver.Ask(DeviceId::ToMAC(command.Device).value_or(""));
    if (!isTaken)
    {
        throw Refusal("busy", "the library takes no requests at the moment");
    }
    questions.emplace(command.Device, now);
}

/// The settings of an interface name it by themselves; it must be one of the device that the sender has seen.
ChangeRequest CommandDesk::RequestOf(const Command& command) const
{
    try
    {
        ChangeRequest request =
            (command.Kind == Command::CommandKind::Rename
                 ? ChangeRequest::Rename(DeviceId::ToMAC(command.Device).value_or(""), command.HostName)
                 : ChangeRequest::Parse(command.Settings))
                .Normal();
        const DeviceRow* const row = request.TargetIn(driver.Session().Devices());
        if (row == nullptr || inventory.IdOf(*row) != command.Device)
        {
            command.CheckRevision(RecordOf(command.Device).Revision()); // the sender may have seen the interface
            throw Refusal("unknown-device", "the settings are for no interface of " + command.Device);
        }
        if (command.Kind == Command::CommandKind::Configure && request.Kind != ChangeRequest::ChangeKind::Configure)
        {
            throw Refusal("bad-command", "\"Settings\" has no settings of an interface");
        }
        return request;
    }
    catch (const std::invalid_argument& error)
    {
        throw Refusal("bad-command", error.what());
    }
}

void CommandDesk::Conclude(const CommandMessage& message, const Command* command, const Verdict& verdict, WallTime now)
{
    audit.Write(verdict.AuditLine(message, command, topics, now));
    publisher.Reply(message, verdict);
}
} // namespace Zent::Discovery::Agent
