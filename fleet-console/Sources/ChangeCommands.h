#pragma once

#include "ICommand.h"
#include "RemoteChange.h"

#include <string>

namespace Zent::Discovery::FleetConsole
{
/// Gives a device of a site a new host name.
class RenameCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& program) override;
    ExitStatus Run(CommandContext& context) override;

private:
    std::string MeantBy(const SiteDevices& devices) const;

    std::string newHostName;
    std::string macAddress;
    std::string device; // its id
    std::string hostName;
    RemoteChange::Settings settings;
};

/// Gives network interfaces of a site's devices new settings.
class ConfigureCommand final : public ICommand
{
public:
    CLI::App& AddTo(CLI::App& program) override;
    ExitStatus Run(CommandContext& context) override;

private:
    std::string file;
    RemoteChange::Settings settings;
};
} // namespace Zent::Discovery::FleetConsole
