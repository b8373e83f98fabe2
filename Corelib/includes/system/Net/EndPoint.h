#pragma once

#include "system/Net/AddressFamily.h"
#include "system/Net/SocketAddress.h"
#include "system/SmartPointer.h"

namespace Nfx::System::Net
{
/// One end of a communication: what a socket can be bound to or send to.
class EndPoint : public Object
{
public:
    virtual AddressFamily Family() const = 0;

    /// The form that socket calls use.
    virtual SocketAddress Serialize() const = 0;

    /// A new end point of this class from the form that socket calls use.
    /// @throws ArgumentException when the address is of another family.
    virtual SmartPointer<EndPoint> Create(const SocketAddress& address) const = 0;
};
} // namespace Nfx::System::Net
