#pragma once

#include "Inventory/Network.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Zent::Discovery::Console
{
/// Replaces names, IPv4 addresses and MAC addresses in texts by pseudonyms, the same ones in all texts. A MAC address
/// keeps the half that names its maker, an IPv4 address the network it is in. What stands for no single device stays:
/// masks, loopback's 127.0.0.1, multicast, broadcast and network addresses; so do versions of JSON documents, and names
/// of one or two characters.
///
/// First learn all texts and names, then replace: a pseudonym is none of the originals as long as its network has
/// addresses left. Pure; main thread only.
class Pseudonyms final
{
public:
    /// One that may stand in texts outside of JSON documents, in any spelling of its ASCII letters. An address is no
    /// name.
    void LearnName(std::string_view name);

    /// Addresses inside of it stay inside of it. Those that no network is known for are taken to be in one of 24 bits.
    void LearnNetwork(const Inventory::Network& network);

    /// Learns the host names and networks of the JSON documents in a text, also of those that are texts of others, and
    /// all addresses.
    void Learn(std::string_view text);

    /// Finds names escaped as in JSON documents, too, those within others and as a terminal shows them.
    std::string Replaced(std::string_view text);

    /// Which pseudonym stands for what, as a JSON document.
    std::string Map() const;

private:
    using Mac = std::array<std::uint8_t, 6>;

    struct Name
    {
        std::string Original;
        std::string Pseudonym;
    };

    struct Match
    {
        std::size_t Length = 0; // 0 for none
        std::string Text = {};  // instead of it
    };

    /// The number of characters that an address at that place has; 0 when there is none.
    static std::size_t FindMac(std::string_view text, Mac& address);
    static std::size_t FindAddress(std::string_view text, Inventory::IPv4& address);

    void LearnHostNames(std::string_view text);
    void LearnNetworks(std::string_view text);
    Match MatchName(std::string_view text, std::size_t place);
    Match MatchOneOf(std::vector<Name>& alike, std::string_view text, std::size_t place);
    std::string NextName();
    Match MatchMac(std::string_view text);
    Match MatchAddress(std::string_view text, std::size_t place);
    Inventory::Network NetworkOf(Inventory::IPv4 address) const;
    Inventory::IPv4 UnusedAddress(const Inventory::Network& network, Inventory::IPv4 original) const;
    Inventory::IPv4 PseudonymOf(Inventory::IPv4 address);
    Mac PseudonymOf(const Mac& address);

    std::map<char, std::vector<Name>> names; // by the first character in lower case, longer ones first
    std::set<std::string> knownNames;        // in lower case
    unsigned usedNames = 0;
    std::set<std::pair<int, Inventory::IPv4>> networks; // the lengths of their prefixes, and their lowest addresses
    std::set<Inventory::IPv4> knownAddresses;
    std::set<Mac> knownMacs;
    std::map<Inventory::IPv4, Inventory::IPv4> addresses; // to pseudonyms
    std::set<Inventory::IPv4> usedAddresses;
    std::map<Mac, Mac> macs; // to pseudonyms
    std::uint32_t usedMacs = 0;
};
} // namespace Zent::Discovery::Console
