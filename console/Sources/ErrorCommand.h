#pragma once

#include "DiscoverySession.h"
#include "ExitStatus.h"

namespace Zent::Discovery::Console
{
class Output;

/// Prints the library's text of a result code.
class ErrorCommand final
{
public:
    explicit ErrorCommand(int code);

    ExitStatus Run(const DiscoveryFunctions& library, Output& output) const;

private:
    const int code;
};
} // namespace Zent::Discovery::Console
