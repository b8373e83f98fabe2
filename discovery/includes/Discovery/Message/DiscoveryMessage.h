#pragma once

#include "Discovery/Message/DiscoveryMessageType.h"
#include "system/Boolean.h"
#include "system/Object.h"
#include "system/String.h"
#include "system/Version.h"

namespace Zent::Utils::Json
{
class JSONObject;
class JSONStringer;
} // namespace Zent::Utils::Json

namespace Zent::Discovery
{
/// Base of the messages: reads and writes the envelope that they share. Not locked; built on one thread, then only
/// read.
class DiscoveryMessage : public Nfx::System::Object
{
public:
    /// The protocol version as the log's starting line shows it; messages carry it as 1.0.18.
    static constexpr char ProtocolVersionText[] = "01.00.18";

    /// The version that messages of this program carry.
    static const Nfx::System::Version& ProtocolVersion();

    /// Writes the members into an object that the caller has opened; the base writes the envelope.
    virtual void Serialize(Utils::Json::JSONStringer& stringer) const;

    /// The text of the datagram.
    virtual Nfx::System::String ToJson() const;

    /// Fills the message from the text of a datagram. The type is not compared with this class's own.
    /// @throws Exception with ErrorCodes::InvalidFormat for malformed JSON and for missing or malformed members; the
    /// message is unusable then. Only a missing member and a malformed Broadcast get a log line here.
    virtual void Deserialize(const Nfx::System::String& json);

    virtual DiscoveryMessageType GetMessageType() const = 0;

    /// Deserialize for text that is parsed already. The base reads the envelope.
    virtual void ReadFrom(const Utils::Json::JSONObject& json);

    /// The type that a text names.
    /// @throws Exception with ErrorCodes::InvalidFormat for malformed JSON, a missing type (logged) or an unknown one.
    static DiscoveryMessageType GetMessageType(const Nfx::System::String& json);
    static DiscoveryMessageType GetMessageType(const Utils::Json::JSONObject& json);

    Nfx::System::Version Version;          // of the program that wrote the message
    Nfx::System::Boolean Broadcast = true; // false when one device is meant

protected:
    DiscoveryMessage();
    explicit DiscoveryMessage(const Nfx::System::Version& version);
    DiscoveryMessage(const Nfx::System::Version& version, const Nfx::System::Boolean& broadcast);
};
} // namespace Zent::Discovery
