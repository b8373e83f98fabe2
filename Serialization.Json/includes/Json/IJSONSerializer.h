#pragma once

#include "system/Interface.h"
#include "system/SmartPointer.h"
#include "system/String.h"

namespace Zent::Utils::Json
{
/// Converts objects of another class to JSON text and back.
template <class T>
class IJSONSerializer : public Nfx::System::Interface
{
public:
    virtual Nfx::System::String Serialize(const T& object) const = 0;

    /// Never gives an empty pointer.
    /// @throws Exception with ErrorCodes::InvalidFormat when the text is malformed, and whatever T throws for missing
    /// or bad members.
    virtual Nfx::System::SmartPointer<T> Deserialize(const Nfx::System::String& json) const = 0;
};
} // namespace Zent::Utils::Json
