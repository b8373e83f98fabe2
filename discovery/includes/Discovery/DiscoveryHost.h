#pragma once

#include "Discovery/DiscoveryHostProduct.h"
#include "Discovery/FileTransferInfos.h"
#include "Discovery/NICConfig.h"
#include "Json/IJSONSerializable.h"
#include "system/Boolean.h"
#include "system/Collections/Generic/List.h"
#include "system/Object.h"
#include "system/SmartPointer.h"
#include "system/String.h"

namespace Zent::Discovery
{
/// What a device says about itself. Not locked.
class DiscoveryHost final : public Nfx::System::Object, public Utils::Json::IJSONSerializable
{
public:
    /// Settings that cannot be written are logged and written as an empty object.
    void Serialize(Utils::Json::JSONStringer& stringer) const override;
    Nfx::System::String ToJson() const override;

    /// Missing or bad file-transfer settings are logged; what was read of them is kept.
    /// @throws Exception with ErrorCodes::InvalidFormat for malformed JSON or a malformed address;
    /// ErrorCodes::ResourceNotFound for a missing member.
    void Deserialize(const Nfx::System::String& json) override;

    /// Deserialize for text that is parsed already.
    void ReadFrom(const Utils::Json::JSONObject& json);

    Nfx::System::String HostName;
    Nfx::System::Boolean IsHostNameReadOnly = true; // a device that says nothing may not be renamed
    Nfx::System::Boolean RebootRequiredForIPConfigChange;
    Nfx::System::Boolean RebootRequiredForHostNameChange;
    Nfx::System::String DeviceType;
    Nfx::System::String DeviceFamily;
    Nfx::System::String SerialNumber;
    Nfx::System::Collections::Generic::List<Nfx::System::SmartPointer<NICConfig>> NICs;
    Nfx::System::Collections::Generic::List<Nfx::System::SmartPointer<DiscoveryHostProduct>> Products;
    Nfx::System::SmartPointer<Zent::Discovery::FileTransferInfos> FileTransferInfos; // empty counts as no settings

private:
    void ReadFileTransferInfos(const Utils::Json::JSONObject& json);

    /// Written apart, so that settings that cannot be written leave nothing half done in the document.
    Nfx::System::String FileTransferInfosText() const;
};
} // namespace Zent::Discovery
