#pragma once

#include "Broker/BrokerConnection.h"
#include "Fleet/Conversation.h"
#include "ICommand.h"

#include <optional>

namespace Zent::Discovery::FleetConsole
{
/// Holds conversations with a broker, each on a connection of its own.
class BrokerDialogue final
{
public:
    BrokerDialogue() = delete;

    /// Lets the conversation come to its end, unless the user interrupts.
    /// @throws std::runtime_error when the broker cannot be reached, or the connection breaks.
    static void Hold(CommandContext& context, Fleet::Conversation& conversation);

    /// Does a step on a connection. A number by which the broker's answer comes; nothing when none will.
    static std::optional<int> Do(Broker::BrokerConnection& connection, Fleet::Conversation::Step step);
};
} // namespace Zent::Discovery::FleetConsole
