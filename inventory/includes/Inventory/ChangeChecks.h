#pragma once

#include "Inventory/ChangeRequest.h"

#include <optional>
#include <span>
#include <string>

namespace Zent::Discovery::Inventory
{
/// Why a change is not sent.
struct ChangeRefusal
{
    enum class RefusalCode
    {
        BadName,        // empty or only blanks, with control characters, no UTF-8, or too long
        NameReadOnly,   // the device does not let its name be changed
        UnknownDevice,  // the device has not answered
        NameTaken,      // another device has the name, or another change gives it
        BadMask,        // no row of ones before zeros
        BadAddress,     // not the address of a host in its network
        GatewayOutside, // not the address of a host in the network of the interface
        AddressTaken,   // another interface has the address, or another change gives it
        NoRoute,        // the system knows no way to the device's address
        SendFailed,     // the library took no request
        LeftOut,        // it was stopped before, or another one of its plan has failed
        DryRun          // the user only wants to see what would be sent
    };

    RefusalCode Code;
    std::string Text; // the reason, a sentence for people without its code

    /// Such as name-taken.
    const char* CodeName() const;

    /// "press-4" is the name of 02:00:00:00:00:04 (name-taken)
    std::string ToString() const;

    /// {"Code":"name-taken","Text":".."}
    std::string ToJson() const;
};

/// Finds out before a change is sent what is wrong with it.
class ChangeChecks final
{
public:
    static constexpr std::size_t MaximumName = 255; // bytes

    ChangeChecks() = delete;

    /// What is wrong with the values of a request in its normal form; nothing when all is well.
    static std::optional<ChangeRefusal> FindInValues(const ChangeRequest& request, const ChangeOptions& options);

    /// What is wrong with it among these devices and beside other requests that are not yet carried out, which are in
    /// their normal form, too.
    static std::optional<ChangeRefusal> Find(const ChangeRequest& request,
                                             const ChangeOptions& options,
                                             const DeviceTable& devices,
                                             std::span<const ChangeRequest> others = {});
};
} // namespace Zent::Discovery::Inventory
