#pragma once

#include "Discovery/Message/DiscoveryMessage.h"
#include "Json/IJSONSerializer.h"
#include "system/SmartPointer.h"
#include "system/String.h"

namespace Zent::Discovery
{
/// Turns the text of a datagram into the message that it holds. Has no state; any thread.
class DiscoveryMessageDeserializer final : public Utils::Json::IJSONSerializer<DiscoveryMessage>
{
public:
    /// The message's own text.
    Nfx::System::String Serialize(const DiscoveryMessage& message) const override;

    /// Never gives an empty pointer.
    /// @throws Exception with ErrorCodes::InvalidFormat for malformed JSON and whatever the envelope or the kind of
    /// message asks for in vain; a missing member is logged, a malformed text is not.
    Nfx::System::SmartPointer<DiscoveryMessage> Deserialize(const Nfx::System::String& json) const override;

    /// An empty message of a kind.
    /// @throws Exception with ErrorCodes::VariableTypeWrong for a value that is no kind, after a log line.
    static Nfx::System::SmartPointer<DiscoveryMessage> CreateMessage(const DiscoveryMessageType& type);
};
} // namespace Zent::Discovery
