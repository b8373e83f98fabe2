#include "Commands/Arguments.h"

#include <CLI/CLI.hpp>

#include <cstdint>

namespace Zent::Discovery::Console
{
namespace
{
void Read(const std::string& name, const Arguments::Reader& read, const std::string& text)
{
    try
    {
        read(text);
    }
    catch (const std::exception& error)
    {
        throw CLI::ValidationError(name, error.what());
    }
}

CLI::Option& AddReader(CLI::App& command,
                       const std::string& name,
                       const Arguments::Reader& read,
                       const std::string& description)
{
    const auto take = [name, read](const std::string& text) { Read(name, read, text); };
    return *command.add_option_function<std::string>(name, take, description);
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

const Arguments::Argument& Arguments::Argument::IsRequired() const
{
    option.required();
    return *this;
}

const Arguments::Argument& Arguments::Argument::Needs(const Argument& other) const
{
    option.needs(&other.option);
    return *this;
}

const Arguments::Argument& Arguments::Argument::Excludes(const Argument& other) const
{
    option.excludes(&other.option);
    return *this;
}

const Arguments::Argument& Arguments::Argument::MustPass(const Check& check) const
{
    option.check(check);
    return *this;
}

const Arguments::Argument& Arguments::Argument::MustBeFile() const
{
    option.check(CLI::ExistingFile);
    return *this;
}

Arguments::Arguments(CLI::App& command)
    : command(command)
{
}

Arguments::Arguments(CLI::App& parent, const std::string& name, const std::string& description)
    : command(*parent.add_subcommand(name, description))
{
}

Arguments::Argument Arguments::AddPositional(const std::string& name,
                                             std::string& target,
                                             const std::string& description)
{
    return Argument(*command.add_option(name, target, description)->required()->type_name(""));
}

Arguments::Argument Arguments::AddPositional(const std::string& name,
                                             const Reader& read,
                                             const std::string& description)
{
    return Argument(*AddReader(command, name, read, description).required()->type_name(""));
}

Arguments::Argument Arguments::AddFlag(const std::string& name, bool& target, const std::string& description)
{
    return Argument(*command.add_flag(name, target, description));
}

Arguments::Argument Arguments::Add(const std::string& name,
                                   const std::string& type,
                                   std::string& target,
                                   const std::string& description)
{
    return Argument(*command.add_option(name, target, description)->type_name(type));
}

Arguments::Argument Arguments::Add(const std::string& name,
                                   const std::string& type,
                                   const Reader& read,
                                   const std::string& description)
{
    return Argument(*AddReader(command, name, read, description).type_name(type));
}

Arguments::Argument Arguments::AddRepeated(const std::string& name,
                                           const std::string& type,
                                           std::vector<std::string>& target,
                                           const std::string& description)
{
    return Argument(*command.add_option(name, target, description)->type_name(type)->allow_extra_args(false));
}

Arguments::Argument Arguments::AddRepeated(const std::string& name,
                                           const std::string& type,
                                           const Reader& read,
                                           const std::string& description)
{
    const auto take = [name, read](const std::vector<std::string>& texts) {
        for (const std::string& text : texts)
        {
            Read(name, read, text);
        }
    };
    return Argument(*command.add_option_function<std::vector<std::string>>(name, take, description)
                         ->type_name(type)
                         ->allow_extra_args(false));
}

Arguments::Argument Arguments::AddCount(const std::string& name,
                                        std::size_t& target,
                                        const std::string& description,
                                        std::size_t minimum,
                                        std::size_t maximum,
                                        const std::string& unit)
{
    return Argument(*command.add_option(name, target, description)
                         ->type_name("COUNT")
                         ->check(InRange(minimum, maximum, "whole number of " + unit)));
}

Arguments::Argument Arguments::AddSeconds(const std::string& name,
                                          std::optional<std::chrono::milliseconds>& target,
                                          const std::string& description,
                                          double minimum)
{
    const auto take = [&target](double seconds) {
        target = std::chrono::milliseconds(static_cast<std::int64_t>(seconds * 1000));
    };
    return Argument(*command.add_option_function<double>(name, take, description)
                         ->type_name("SECONDS")
                         ->check(InRange(minimum, 86400.0, "number of seconds")));
}

void Arguments::RequireAny(const std::string& names, const std::function<bool()>& hasAny)
{
    command.parse_complete_callback([names, hasAny] {
        if (!hasAny())
        {
            throw CLI::RequiredError(names);
        }
    });
}
} // namespace Zent::Discovery::Console
