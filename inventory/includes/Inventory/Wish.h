#pragma once

#include <cstdint>
#include <string>

namespace Zent::Discovery::Inventory
{
/// What a session wants its host program to do or to find out. Wishes are to be carried out in their order.
struct Wish
{
    enum class WishKind
    {
        AskAll,      // the library's Discover
        AskMAC,      // RefreshClient with the address
        AskIP,       // ReachClient with the address, to which there was a route a moment ago
        IsReachable, // whether the system has a route to the address; the answer is 1 or 0. Nothing may be sent for it
        CountLost,   // how many answers this machine has lost since any moment; the answer is that number or Unknown

        // The requests of changes; the answer is 1 once the library has taken it, 0 when it did not.
        Rename,   // ChangeClientsHostName with the text and the MAC address
        RenameAt, // ChangeClientsHostNameWithIP with the text and the IP address, to which there was a route
        Configure // ChangeClientsIPConfigurations with the text
    };

    static constexpr std::int64_t Unknown = -1;

    WishKind Kind;
    std::int64_t Id; // to answer with; AskAll, AskMAC and AskIP expect no answer
    std::string Address = {};
    std::string Text = {};   // the name, or the JSON array of interfaces, of a change
    std::int64_t Change = 0; // which one it is that makes the request

    bool IsRequestOfChange() const
    {
        return Kind == WishKind::Rename || Kind == WishKind::RenameAt || Kind == WishKind::Configure;
    }

    bool ExpectsAnswer() const
    {
        return IsRequestOfChange() || Kind == WishKind::IsReachable || Kind == WishKind::CountLost;
    }
};
} // namespace Zent::Discovery::Inventory
