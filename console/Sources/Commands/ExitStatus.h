#pragma once

namespace Zent::Discovery::Console
{
/// How the program ends; scripts rely on the numbers.
enum class ExitStatus
{
    Success = 0,
    Failure = 1, // the library or the system refused
    Usage = 2,
    NoAnswer = 3,  // no device answered in time, or not as it should
    Different = 4, // two saved results tell different things
    Interrupted = 130
};
} // namespace Zent::Discovery::Console
