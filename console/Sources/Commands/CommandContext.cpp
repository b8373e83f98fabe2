#include "Commands/CommandContext.h"

#include <string>

using Zent::Discovery::Programs::HostSession;

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
        session.emplace(options.Session,
                        HostSession::Handlers{queue(Kind::Signature), queue(Kind::Hello), queue(Kind::Bye)});
    }
    return *session;
}

void CommandContext::Close()
{
    if (session)
    {
        session->Close();
    }
}
} // namespace Zent::Discovery::Console
