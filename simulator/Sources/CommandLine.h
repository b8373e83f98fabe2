#pragma once

#include "SimulationOptions.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace Zent::Discovery::Simulator
{
/// Reads the arguments of the program.
class CommandLine final
{
public:
    CommandLine() = delete;

    /// Nothing when there is nothing left to do: help was printed to out, or what is wrong to errors. status then says
    /// how to end.
    static std::optional<SimulationOptions> Parse(const std::vector<std::string>& arguments,
                                                  std::ostream& out,
                                                  std::ostream& errors,
                                                  int& status);
};
} // namespace Zent::Discovery::Simulator
