#pragma once

#include "Doctor/Observations.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Zent::Discovery::Console::Doctor
{
enum class Severity
{
    Ok,
    Note,    // may matter one day
    Warning, // some devices, or some hosts, are affected
    Error    // nothing can be found
};

/// As users read it, such as "warning".
std::string_view NameOf(Severity severity);

/// What a check has found.
struct Symptom
{
    std::string Detail;                     // what the check's sentence leaves open
    std::optional<Severity> HowBad = {};    // the check's own without it
    std::vector<std::string> Commands = {}; // the check's own when empty
};

/// One of the things that can keep devices from being found.
struct Check
{
    const char* Code;
    const char* Title; // what is looked at
    Severity HowBad;
    const char* Sentence; // what is wrong; {} stands for the symptom's detail
    const char* Affects;
    const char* LinuxCommand; // that helps, or shows more
    const char* WindowsCommand;
    std::vector<std::string_view>
        DependsOn; // codes: while one of these finds a warning or an error, this one is hidden
    bool NeedsSearch;

    /// Nothing when all is well. Depends on the observations alone.
    std::optional<Symptom> (*Probe)(const Observations& observations);

    /// All checks, causes before their consequences.
    static std::span<const Check> All();

    /// Null when there is none of that code.
    static const Check* Find(std::string_view code);
};
} // namespace Zent::Discovery::Console::Doctor
