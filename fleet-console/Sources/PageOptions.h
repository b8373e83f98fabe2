#pragma once

#include "Page/PageSettings.h"

#include <cstdint>
#include <string>

namespace CLI
{
class App;
}

namespace Zent::Discovery::FleetConsole
{
/// The options that say where the page is served, and for whom. Reading the command line fills them; they must outlive
/// it.
class PageOptions final
{
public:
    /// An agent's page may be on the same machine.
    static constexpr std::uint16_t UsualPort = 12081;

    void AddTo(CLI::App& command);

    const Page::PageSettings& Settings() const { return settings; }

private:
    Page::PageSettings settings{.Port = UsualPort};
};
} // namespace Zent::Discovery::FleetConsole
