#include "CommandDesk.h"

#include "Inventory/DeviceTable.h"
#include "Programs/SessionDriver.h"

#include <nlohmann/json.hpp>

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
    if (const auto found = changes.extract(report.Id); found)
    {
        Conclude(found.mapped().Message, &found.mapped().Command, VerdictOf(report), now);
    }
}

/// Nothing while a change is under way.
std::optional<Verdict> CommandDesk::CarryOut(const CommandMessage& message, const Command& command)
{
    if (command.Kind != Command::CommandKind::Discover)
    {
        const Fleet::DeviceRecord* const record = inventory.Find(command.Device);
        command.CheckRevision(record == nullptr ? std::nullopt : std::optional(record->Revision()));
    }
    if (command.Kind == Command::CommandKind::Discover || command.Kind == Command::CommandKind::Refresh)
    {
        Ask(command);
        return Verdict{"done"};
    }
    if (changes.size() >= MaximumChanges)
    {
        throw Refusal("busy", std::to_string(MaximumChanges) + " changes are under way");
    }
    // The table is whole as long as the agent runs: what other devices have is known.
    const std::int64_t id = driver.Session().StartChange(RequestOf(command), {.Look = {}}, driver.Now());
    changes.emplace(id, Open{message, command});
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
