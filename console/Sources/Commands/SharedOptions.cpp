#include "Commands/SharedOptions.h"

#include "Inventory/ChangeRequest.h"
#include "Inventory/Network.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <stdexcept>
#include <vector>

using Zent::Discovery::Inventory::ChangeRequest;
using Zent::Discovery::Inventory::DeviceSelection;
using Zent::Discovery::Inventory::Network;

namespace Zent::Discovery::Console
{
namespace
{
using Add = void (DeviceSelection::*)(const std::string&);

CLI::Option& AddPart(
    CLI::App& command, DeviceSelection& target, const std::string& name, Add add, const std::string& description)
{
    const auto addEach = [&target, name, add](const std::vector<std::string>& texts) {
        try
        {
            for (const std::string& text : texts)
            {
                (target.*add)(text);
            }
        }
        catch (const std::invalid_argument& error)
        {
            throw CLI::ValidationError(name, error.what());
        }
    };
    return *command.add_option_function<std::vector<std::string>>(name, addEach, description)->allow_extra_args(false);
}

template <class TNumber>
CLI::Validator InRange(TNumber minimum, TNumber maximum, const std::string& what)
{
    return CLI::Validator(
        [minimum, maximum, what](const std::string& text) {
            TNumber number{};
            const bool isNumber = CLI::detail::lexical_cast(text, number);
            return isNumber && number >= minimum && number <= maximum // nan is neither
                       ? std::string()
                       : '"' + text + "\" is not a " + what + " from " + CLI::detail::to_string(minimum) + " to " +
                             CLI::detail::to_string(maximum);
        },
        "");
}
} // namespace

CLI::Validator SharedOptions::Between(double minimum, double maximum, const std::string& unit)
{
    return InRange(minimum, maximum, "number of " + unit);
}

CLI::Validator SharedOptions::Between(int minimum, int maximum, const std::string& unit)
{
    return InRange(minimum, maximum, "whole number of " + unit);
}

CLI::Validator SharedOptions::MACAddress()
{
    return CLI::Validator(
        [](const std::string& text) {
            try
            {
                ChangeRequest::Rename(text, "any").Normal();
                return std::string();
            }
            catch (const std::invalid_argument& error)
            {
                return std::string(error.what());
            }
        },
        "");
}

CLI::Validator SharedOptions::IPAddress()
{
    return CLI::Validator(
        [](const std::string& text) {
            return Network::ParseAddress(text) ? std::string() : '"' + text + "\" is no IPv4 address, such as 10.0.0.7";
        },
        "");
}

void SharedOptions::AddSeconds(CLI::App& command,
                               const std::string& name,
                               std::optional<std::chrono::milliseconds>& target,
                               const std::string& description,
                               double minimum)
{
    command
        .add_option_function<double>(
            name,
            [&target](double seconds) {
                target = std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000));
            },
            description)
        ->type_name("SECONDS")
        ->check(Between(minimum, 86400.0, "seconds"));
}

void SharedOptions::AddSelection(CLI::App& command, DeviceSelection& target, const std::string& columns)
{
    AddPart(command, target, "--sort", &DeviceSelection::AddOrder, "sort by " + columns + "; may be repeated")
        .type_name("COLUMN[:desc]");
    AddPart(command, target, "--filter", &DeviceSelection::AddFilter,
            "show only devices whose column matches, with * and ? as wildcards; != inverts; may be repeated")
        .type_name("COLUMN=PATTERN");
}
} // namespace Zent::Discovery::Console
