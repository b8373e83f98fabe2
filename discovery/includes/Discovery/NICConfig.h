#pragma once

#include "Discovery/MACAddress.h"
#include "Json/IJSONSerializable.h"
#include "system/Boolean.h"
#include "system/Net/IPAddress.h"
#include "system/Object.h"
#include "system/String.h"

namespace Zent::Utils::Json
{
class JSONObject;
}

namespace Zent::Discovery
{
/// One network interface of a device. Not locked.
class NICConfig final : public Nfx::System::Object, public Utils::Json::IJSONSerializable
{
public:
    /// Whether an object has every required member as a string, so that reading it can fail only for what the texts
    /// say. Costs less than the exception of an attempt.
    static bool IsComplete(const Utils::Json::JSONObject& json);

    void Serialize(Utils::Json::JSONStringer& stringer) const override;
    Nfx::System::String ToJson() const override;

    /// @throws Exception with ErrorCodes::InvalidFormat for malformed JSON or a malformed address;
    /// ErrorCodes::ResourceNotFound for a missing member.
    void Deserialize(const Nfx::System::String& json) override;

    /// Deserialize for text that is parsed already.
    void ReadFrom(const Utils::Json::JSONObject& json);

    Nfx::System::String FriendlyName;
    Zent::Discovery::MACAddress MACAddress;
    Nfx::System::Net::IPAddress IPAddress;
    Nfx::System::Net::IPAddress SubNetMask;
    Nfx::System::Net::IPAddress DefaultGateway; // without meaning unless HasDefaultGateway
    Nfx::System::Boolean HasDefaultGateway;
    Nfx::System::String MTU = "Unknown"; // kept as text, never as a number
};
} // namespace Zent::Discovery
