#pragma once

#include "Server/ServerActions.h"
#include "system/SmartPointer.h"
#include "system/String.h"

namespace Zent::Discovery::Server
{
/// Reads the list of network settings that the host application hands over. Stateless.
class NICsConfigsListJsonSerializer final : public Nfx::System::Object
{
public:
    /// Reads an array of network interface objects, in array order; an empty array gives an empty list.
    /// @throws Exception with ErrorCodes::InvalidFormat when the text is no JSON array or a value is malformed, and
    /// with ErrorCodes::ResourceNotFound when an element is no object or lacks a required member.
    Nfx::System::SmartPointer<SendChangeYourIPConfigAction::NICConfigList> Deserialize(
        const Nfx::System::String& text) const;
};
} // namespace Zent::Discovery::Server
