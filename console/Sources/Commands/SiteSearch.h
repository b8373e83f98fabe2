#pragma once

#include "Commands/ExitStatus.h"
#include "Programs/SessionDriver.h"

#include <vector>

namespace Zent::Discovery::Console
{
class CommandContext;

/// Finds out which devices a site has.
class SiteSearch final
{
public:
    /// Starts the library. The context must outlive the object.
    /// @throws std::runtime_error when it cannot be loaded or refuses.
    explicit SiteSearch(CommandContext& context);

    /// Success when all devices have been found; Incomplete, NoAnswer or Interrupted after the user was told why.
    ExitStatus Run();

    /// The devices that are there. Valid as long as the object.
    std::vector<const Inventory::Device*> Devices() const;

private:
    CommandContext& context;
    Programs::SessionDriver driver;
};
} // namespace Zent::Discovery::Console
