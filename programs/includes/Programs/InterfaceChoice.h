#pragma once

#include "Programs/NetworkInterface.h"

#include <span>
#include <string>
#include <vector>

namespace Zent::Discovery::Programs
{
/// Which of the machine's interfaces take part in discovery.
class InterfaceChoice final
{
public:
    /// What the user has said; nothing as a rule.
    struct Wishes
    {
        std::vector<std::string> Addresses = {}; // counts alone when there is one
        std::vector<std::string> Names = {};     // these interfaces alone, whatever they are
        bool All = false;                        // those too that are usually left out

        // What the user has said the first two by.
        const char* AddressSetting = "--from"; // a literal
        const char* NameSetting = "--interface";
    };

    /// Without wishes every interface that is up, has an address and can broadcast takes part, unless it is a loopback
    /// or point-to-point interface or bears a name that container engines, hypervisors and tunnels give.
    InterfaceChoice(std::span<const NetworkInterface> interfaces, const Wishes& wishes);

    /// Refuses wishes that this machine cannot fulfil.
    /// @throws WrongArgument that lists what there is.
    static void Check(std::span<const NetworkInterface> interfaces, const Wishes& wishes);

    /// To send from; empty when no interface takes part.
    const std::vector<Inventory::Network>& Addresses() const { return addresses; }

    /// The same as texts: 10.0.0.1.
    std::vector<std::string> AddressTexts() const;

    /// The other interfaces with the reasons, for the user: "lo (loopback), docker0 (left out by its name)".
    std::string LeftOut() const;

private:
    void TakeWished(std::span<const NetworkInterface> interfaces, const std::vector<std::string>& wished);

    std::vector<Inventory::Network> addresses;
    std::vector<std::string> leftOut;
};
} // namespace Zent::Discovery::Programs
