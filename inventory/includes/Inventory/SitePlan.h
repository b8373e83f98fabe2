#pragma once

#include "Inventory/ChangeChecks.h"
#include "Inventory/ChangeRequest.h"
#include "Inventory/SiteFile.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Zent::Discovery::Inventory
{
/// Which changes make devices what a site file wants, in an order in which no two devices have one name or one address
/// at any time: who gives up a name goes before who takes it, and of devices that exchange theirs one takes another
/// name for a while.
class SitePlan final
{
public:
    enum class Scope
    {
        All,
        Names // leaves addresses as they are
    };

    struct Options
    {
        Scope What = Scope::All;

        /// What a device may have for a while where addresses are exchanged, in the library's form; otherwise the
        /// highest address of its network that no device is known to have.
        std::optional<std::string> SpareAddress = {};

        /// Addresses of other machines that no device may have for a while.
        std::vector<std::string> Reserved = {};
    };

    struct Step
    {
        ChangeRequest Request; // in its normal form
        bool IsTemporary = false;
        std::size_t Exchange = 0; // the same for the steps of one exchange; 0 when it is part of none
    };

    /// A change that cannot be.
    struct Obstacle
    {
        ChangeRequest Request;
        ChangeRefusal Refusal;
    };

    /// Devices that are not there are left out.
    static SitePlan For(const SiteFile& site, std::span<const Device* const> devices, const Options& options);

    std::vector<Step> Steps;
    std::vector<Obstacle> Obstacles;
};
} // namespace Zent::Discovery::Inventory
