#pragma once

#include "Recorder.h"
#include "SimulationOptions.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace Zent::Discovery::Simulator
{
/// What the program is to do.
struct ProgramOptions
{
    SimulationOptions Simulation;
    Recorder::Options Recording; // is to be made instead when it has a path
    bool EndsWithInput = false;  // when standard input ends
};

/// Reads the arguments of the program.
class CommandLine final
{
public:
    CommandLine() = delete;

    /// Nothing when there is nothing left to do: help was printed to out, or what is wrong to errors. status then says
    /// how to end.
    static std::optional<ProgramOptions> Parse(const std::vector<std::string>& arguments,
                                               std::ostream& out,
                                               std::ostream& errors,
                                               int& status);
};
} // namespace Zent::Discovery::Simulator
