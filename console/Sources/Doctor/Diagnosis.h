#pragma once

#include "Doctor/Check.h"
#include "Doctor/Observations.h"

#include <span>
#include <string>
#include <vector>

namespace Zent::Discovery::Console::Doctor
{
/// What a check says of the observations.
struct Finding
{
    const Check* Of;
    Severity HowBad = Severity::Ok;
    std::string Text = {}; // unfit for a terminal: it may hold what devices have sent
    std::vector<std::string> Commands = {};
};

/// What the checks make of observations. Pure: it asks no system.
class Diagnosis final
{
public:
    Diagnosis() = delete;

    /// The findings of the checks with these codes, or of all without any, in the order of the checks. A check that one
    /// of its causes hides is left out, and the cause stands in its place even if its code is not among those asked
    /// for. So are checks that need a search when there was none.
    static std::vector<Finding> Of(const Observations& observations, std::span<const std::string> codes = {});

    /// The worst of the findings; Ok without any.
    static Severity WorstOf(std::span<const Finding> findings);
};
} // namespace Zent::Discovery::Console::Doctor
