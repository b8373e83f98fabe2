#pragma once

#include <iosfwd>

namespace CLI
{
class App;
class ParseError;
} // namespace CLI

namespace Zent::Discovery::Console
{
/// What the user is told in place of a command that is carried out.
class ParserReport final
{
public:
    ParserReport() = delete;

    /// Prints the help that the user has asked for, or behind the program's name what is wrong with the arguments.
    /// True for help.
    static bool Print(const CLI::App& program, const CLI::ParseError& error, std::ostream& out, std::ostream& errors);
};
} // namespace Zent::Discovery::Console
