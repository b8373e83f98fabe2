#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace Zent::Discovery::Programs
{
class SessionDriver;
}

namespace Zent::Discovery::Console
{
class CommandContext;

/// What a search tells the user.
class SearchProgress final
{
public:
    SearchProgress() = delete;

    /// While it runs, in a line.
    static std::string Text(const Programs::SessionDriver& driver, std::chrono::milliseconds wait);

    /// That it has found nobody, and what may be the reason.
    static void ComplainAboutSilence(const Programs::SessionDriver& driver, CommandContext& context);

    /// 1 device, 2 devices.
    static std::string Counted(std::size_t count);
};
} // namespace Zent::Discovery::Console
