#include "Discovery/Message/DiscoveryMessageDeserializer.h"

#include "Discovery/ComponentLog.h"
#include "Discovery/Message/AllSendYourSignatureMessage.h"
#include "Discovery/Message/ByeMessage.h"
#include "Discovery/Message/ChangeYourHostNameMessage.h"
#include "Discovery/Message/ChangeYourIPConfigMessage.h"
#include "Discovery/Message/HelloMessage.h"
#include "Discovery/Message/SendYourSignatureMessage.h"
#include "Discovery/Message/SignatureBroadcastMessage.h"
#include "Json/JSONObject.h"
#include "system/Exceptions.h"

#include <iterator>

using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::LogStreams::LogStreamLevel;
using Zent::Utils::Json::JSONObject;

namespace Zent::Discovery
{
namespace
{
const char SourceName[] = "Sources/Message/DiscoveryMessageDeserializer";

constexpr auto& Log = ComponentLog::Of<"DiscoveryMessageDeserializer">;

template <class T>
SmartPointer<DiscoveryMessage> Create()
{
    return SmartPointer<T>::Create();
}

struct Creator
{
    std::int32_t Type;
    SmartPointer<DiscoveryMessage> (*Create)();
};

constexpr Creator Creators[] = {
    {DiscoveryMessageType::SignatureBroadcast, &Create<SignatureBroadcastMessage>},
    {DiscoveryMessageType::Hello, &Create<HelloMessage>},
    {DiscoveryMessageType::Bye, &Create<ByeMessage>},
    {DiscoveryMessageType::ChangeYourIPConfig, &Create<ChangeYourIPConfigMessage>},
    {DiscoveryMessageType::SendYourSignature, &Create<SendYourSignatureMessage>},
    {DiscoveryMessageType::AllSendYourSignature, &Create<AllSendYourSignatureMessage>},
    {DiscoveryMessageType::ChangeYourHostName, &Create<ChangeYourHostNameMessage>},
};

static_assert(std::size(Creators) == std::size(DiscoveryMessageType::Names));
} // namespace

String DiscoveryMessageDeserializer::Serialize(const DiscoveryMessage& message) const
{
    return message.ToJson();
}

SmartPointer<DiscoveryMessage> DiscoveryMessageDeserializer::Deserialize(const String& json) const
{
    const JSONObject parsed(json);
    SmartPointer<DiscoveryMessage> message = CreateMessage(DiscoveryMessage::GetMessageType(parsed));
    message->ReadFrom(parsed);
    return message;
}

SmartPointer<DiscoveryMessage> DiscoveryMessageDeserializer::CreateMessage(const DiscoveryMessageType& type)
{
    for (const Creator& creator : Creators)
    {
        if (creator.Type == type)
        {
            return creator.Create();
        }
    }
    Log().Write("Message type not supported !!!", LogStreamLevel::Critical);
    throw Nfx::System::Exception(Nfx::System::ErrorCodes::VariableTypeWrong, SourceName, __LINE__);
}
} // namespace Zent::Discovery
