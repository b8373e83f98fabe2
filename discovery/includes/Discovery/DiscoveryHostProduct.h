#pragma once

#include "Json/IJSONSerializable.h"
#include "system/Object.h"
#include "system/String.h"

namespace Zent::Utils::Json
{
class JSONObject;
}

namespace Zent::Discovery
{
/// One product that runs on a device. Not locked.
class DiscoveryHostProduct final : public Nfx::System::Object, public Utils::Json::IJSONSerializable
{
public:
    void Serialize(Utils::Json::JSONStringer& stringer) const override;
    Nfx::System::String ToJson() const override;

    /// @throws Exception with ErrorCodes::InvalidFormat for malformed JSON; ErrorCodes::ResourceNotFound for a missing
    /// member.
    void Deserialize(const Nfx::System::String& json) override;

    /// Deserialize for text that is parsed already.
    void ReadFrom(const Utils::Json::JSONObject& json);

    Nfx::System::String ProductType;
    Nfx::System::String ProductSerialNumber;
    Nfx::System::String ProductVersion;
    Nfx::System::String ProductName;
};
} // namespace Zent::Discovery
