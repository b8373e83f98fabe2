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
        CountLost    // how many answers this machine has lost since any moment; the answer is that number or Unknown
    };

    static constexpr std::int64_t Unknown = -1;

    WishKind Kind;
    std::int64_t Id; // to answer with; only IsReachable and CountLost expect an answer
    std::string Address = {};
};
} // namespace Zent::Discovery::Inventory
