#pragma once

#include "endtoend/HostProcess.h"

#include <map>
#include <string>
#include <vector>

namespace Benchmarks
{
/// A row of the table: what is measured, and the goal.
struct Figure
{
    enum class Goal
    {
        None, // a figure to know, mostly of the system's own
        RatioAtLeast,
        RatioAtMost,
        AtLeast, // the library's figure as it is
        AtMost
    };

    std::string Name; // in the machine-readable results
    std::string Title;
    std::string Unit;
    Goal Kind;
    double GoalNone;
    double GoalStandard;

    /// All rows in the order of the table.
    static const std::vector<Figure>& All();

    double GoalAt(Level level) const { return level == Level::None ? GoalNone : GoalStandard; }

    bool IsRatio() const { return Kind == Goal::RatioAtLeast || Kind == Goal::RatioAtMost; }

    bool IsMet(double value, Level level) const;
};

/// The values of one contender at one level, a value a round and figure.
using Values = std::map<std::string, std::vector<double>>;

/// The value in the middle, or between the two in the middle; 0 of none.
double Median(std::vector<double> values);

/// The value that so many percent do not exceed; 0 of none.
double Percentile(std::vector<double> values, double percent);
} // namespace Benchmarks
