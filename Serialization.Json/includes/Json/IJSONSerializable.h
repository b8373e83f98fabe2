#pragma once

#include "system/Interface.h"
#include "system/String.h"

namespace Zent::Utils::Json
{
class JSONStringer;

/// Implemented by records that have a JSON form of their own.
class IJSONSerializable : public Nfx::System::Interface
{
public:
    /// Writes the record at the place that the stringer has reached.
    virtual void Serialize(JSONStringer& stringer) const = 0;

    /// The record's complete JSON text. Implementations just call this shared body.
    virtual Nfx::System::String ToJson() const = 0;

    /// Fills the record from its JSON text.
    /// @throws Exception with ErrorCodes::InvalidFormat when the text is malformed, and whatever the record throws for
    /// missing or bad members; the record is unusable then.
    virtual void Deserialize(const Nfx::System::String& json) = 0;
};
} // namespace Zent::Utils::Json
