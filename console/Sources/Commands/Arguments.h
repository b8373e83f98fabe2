#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace CLI
{
class App;
class Option;
} // namespace CLI

namespace Zent::Discovery::Console
{
/// The arguments of a command. Reading the command line fills their targets, which must outlive it. Commands know the
/// parser through this alone: its headers take the compiler several times as long as a command does.
class Arguments final
{
public:
    /// Takes a text of the user's.
    /// @throws std::exception with what is wrong with it, which the user is told.
    using Reader = std::function<void(const std::string& text)>;

    /// What is wrong with a text; empty for nothing.
    using Check = std::function<std::string(const std::string& text)>;

    /// One of them, to say more about it.
    class Argument final
    {
    public:
        explicit Argument(CLI::Option& option)
            : option(option)
        {
        }

        const Argument& IsRequired() const;
        const Argument& Needs(const Argument& other) const;
        const Argument& Excludes(const Argument& other) const;
        const Argument& MustPass(const Check& check) const;
        const Argument& MustBeFile() const;

    private:
        CLI::Option& option;
    };

    /// Those of a command that is there.
    explicit Arguments(CLI::App& command);

    /// Those of a command that is added to its parent.
    Arguments(CLI::App& parent, const std::string& name, const std::string& description);

    CLI::App& Command() const { return command; }

    /// A required one without a name; help calls it by this one.
    Argument AddPositional(const std::string& name, std::string& target, const std::string& description);
    Argument AddPositional(const std::string& name, const Reader& read, const std::string& description);

    Argument AddFlag(const std::string& name, bool& target, const std::string& description);

    /// One with a value, whose type help shows.
    Argument Add(const std::string& name, const std::string& type, std::string& target, const std::string& description);
    Argument Add(const std::string& name, const std::string& type, const Reader& read, const std::string& description);

    /// One that may be repeated, with a value each time.
    Argument AddRepeated(const std::string& name,
                         const std::string& type,
                         std::vector<std::string>& target,
                         const std::string& description);
    Argument AddRepeated(const std::string& name,
                         const std::string& type,
                         const Reader& read,
                         const std::string& description);

    /// A whole number of minimum to maximum units.
    Argument AddCount(const std::string& name,
                      std::size_t& target,
                      const std::string& description,
                      std::size_t minimum,
                      std::size_t maximum,
                      const std::string& unit);

    /// A time of minimum to 86400 seconds.
    Argument AddSeconds(const std::string& name,
                        std::optional<std::chrono::milliseconds>& target,
                        const std::string& description,
                        double minimum);

    /// Refuses a command line on which none of the arguments is that the names speak of.
    void RequireAny(const std::string& names, const std::function<bool()>& hasAny);

private:
    CLI::App& command;
};
} // namespace Zent::Discovery::Console
