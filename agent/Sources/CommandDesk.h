#pragma once

#include "AuditLog.h"
#include "Fleet/Command.h"
#include "Fleet/Topics.h"
#include "SiteInventory.h"

#include <functional>

namespace Zent::Discovery::Agent
{
/// Takes commands from the broker: checks each, has it carried out, replies and keeps a trace. One thread.
class CommandDesk final
{
public:
    /// How the agent asks devices. False while the library takes no requests.
    struct Requests
    {
        std::function<bool()> AskAll;
        std::function<bool(const std::string& macAddress)> Ask;
    };

    /// All but the topics and requests must outlive the object.
    CommandDesk(Fleet::SiteTopics topics,
                const SiteInventory& inventory,
                ISitePublisher& publisher,
                AuditLog& audit,
                Requests requests);

    void Take(const Fleet::CommandMessage& message, Fleet::WallTime now);

private:
    Fleet::Verdict CarryOut(const Fleet::Command& command);

    const Fleet::SiteTopics topics;
    const SiteInventory& inventory;
    ISitePublisher& publisher;
    AuditLog& audit;
    const Requests requests;
};
} // namespace Zent::Discovery::Agent
