#pragma once

#include "endtoend/Figure.h"
#include "endtoend/Growth.h"
#include "endtoend/Round.h"

#include <string>

namespace Benchmarks
{
/// Everything that was measured, for people and for programs.
class Report final
{
public:
    Values Limit[2]; // by level
    Values Library[2];
    Growth Costs;
    double Seconds = 0; // that the bench took

    /// The table, as Markdown.
    std::string Table(Level level, const Scale& scale) const;

    /// All values of all rounds, as JSON.
    std::string Json() const;
};
} // namespace Benchmarks
