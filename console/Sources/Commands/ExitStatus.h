#pragma once

#include <string>

namespace Zent::Discovery::Console
{
/// How the program ends; scripts rely on the numbers.
enum class ExitStatus
{
    Success = 0,
    Failure = 1, // the library or the system refused
    Usage = 2,
    NoAnswer = 3,   // no device answered in time, or not as it should
    Different = 4,  // two results tell different things, or devices are not as a site file says
    Warnings = 5,   // the doctor has found something that affects some devices or some hosts
    Incomplete = 6, // a search that found devices ended before it could tell that there are no others
    Errors = 7,     // the doctor has found something that keeps all devices from being found
    Interrupted = 130
};

/// All of them with their meanings, a line each, for the user.
std::string ExitStatusTable();
} // namespace Zent::Discovery::Console
