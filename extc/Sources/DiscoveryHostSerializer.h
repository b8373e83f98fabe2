#pragma once

#include "Discovery/DiscoveryHost.h"
#include "Discovery/NICConfig.h"
#include "Json/IJSONSerializer.h"
#include "system/SmartPointer.h"
#include "system/String.h"

namespace Zent::Discovery::Server
{
/// Writes and reads the document that the host application receives with each event: an object with "Host" and, when
/// the device said from which interface it sent, "SourceNIC". Stateless.
class DiscoveryHostSerializer final : public Nfx::System::Object,
                                      public Zent::Utils::Json::IJSONSerializer<DiscoveryHost>
{
public:
    /// A document without source interface.
    Nfx::System::String Serialize(const DiscoveryHost& host) const override;

    /// The source interface may be null.
    Nfx::System::String Serialize(const DiscoveryHost& host,
                                  const Nfx::System::SmartPointer<NICConfig>& sourceNIC) const;

    /// Reads the host of a document.
    Nfx::System::SmartPointer<DiscoveryHost> Deserialize(const Nfx::System::String& json) const override;
};
} // namespace Zent::Discovery::Server
