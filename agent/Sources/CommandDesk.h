#pragma once

#include "AuditLog.h"
#include "Fleet/Command.h"
#include "Fleet/Topics.h"
#include "Inventory/ChangeReport.h"
#include "Inventory/ChangeRequest.h"
#include "SiteInventory.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace Zent::Discovery::Programs
{
class SessionDriver;
} // namespace Zent::Discovery::Programs

namespace Zent::Discovery::Agent
{
/// Takes commands from the broker: checks each, has it carried out, replies and keeps a trace. One thread.
class CommandDesk final
{
public:
    /// So many changes of devices may be under way.
    static constexpr std::size_t MaximumChanges = 100;

    /// How long the same question is not asked again, and nothing more once MaximumQuestions were: each one goes to all
    /// devices of the network.
    static constexpr Inventory::Time QuestionInterval{5000};
    static constexpr std::size_t MaximumQuestions = 100;

    /// All but the topics must outlive the object.
    CommandDesk(Fleet::SiteTopics topics,
                const SiteInventory& inventory,
                Programs::SessionDriver& driver,
                ISitePublisher& publisher,
                AuditLog& audit);

    void Take(const Fleet::CommandMessage& message, Fleet::WallTime now);

    /// A change of the session has ended.
    void TakeOutcome(const Inventory::ChangeReport& report, Fleet::WallTime now);

private:
    struct Open
    {
        Fleet::CommandMessage Message;
        Fleet::Command Command;
        Inventory::ChangeRequest Request;
    };

    /// The interfaces of a device that one sender has changed. He saw it before the first change.
    struct Turn
    {
        std::string ResponseTopic;
        std::string Before; // the revision that he saw
        std::set<std::string> Interfaces = {};
        std::string After = {}; // the revision that his changes have led to; empty while some are under way
    };

    const Fleet::DeviceRecord& RecordOf(const std::string& device) const;
    std::string RevisionFor(const Open& change) const;
    void CheckFree(const Open& change) const;
    void NoteTurn(const Open& change);
    std::optional<Fleet::Verdict> CarryOut(const Fleet::CommandMessage& message, const Fleet::Command& command);
    void Ask(const Fleet::Command& command);
    Inventory::ChangeRequest RequestOf(const Fleet::Command& command) const;
    void Conclude(const Fleet::CommandMessage& message,
                  const Fleet::Command* command,
                  const Fleet::Verdict& verdict,
                  Fleet::WallTime now);

    const Fleet::SiteTopics topics;
    const SiteInventory& inventory;
    Programs::SessionDriver& driver;
    ISitePublisher& publisher;
    AuditLog& audit;
    std::map<std::int64_t, Open> changes;             // by their ids in the session
    std::map<std::string, Turn> turns;                // by device: the latest
    std::map<std::string, Inventory::Time> questions; // of late: when by device, which is empty for all of them
};
} // namespace Zent::Discovery::Agent
