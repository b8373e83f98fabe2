#pragma once

#include "Commands/ICommand.h"
#include "DiscoverySession.h"

#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
/// Gives network interfaces of devices new settings and waits until the devices show them.
class ConfigureCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& parent) override;
    ExitStatus Run(CommandContext& context) override;

private:
    std::vector<NICSettings> Read() const;

    std::string file; // its UTF-8 path
};
} // namespace Zent::Discovery::Console
