#pragma once

#include "Commands/Arguments.h"

#include <chrono>
#include <optional>
#include <string>

namespace Zent::Discovery::Console
{
struct ProgramOptions;

/// What users may say to commands that change devices.
struct ChangeSettings
{
    /// Adds them to a command's; reading the command line fills them.
    void AddTo(Arguments& arguments);

    /// The same, and those about the search for devices before.
    void AddWithLookTo(Arguments& arguments);

    /// An option that is a MAC address, which the library's way and that of Windows may write.
    static Arguments::Argument AddMAC(Arguments& arguments, std::string& target, const std::string& description);

    /// From a request to the verdict: the user's word, or else three seconds.
    std::chrono::milliseconds TimeoutWith(const ProgramOptions& options) const;

    bool Yes = false;    // to all questions
    bool Force = false;  // though something is against it; asks nothing
    bool DryRun = false; // shows what would be sent, and sends nothing
    bool NoLook = false;
    std::optional<std::chrono::milliseconds> Timeout;
    std::optional<std::chrono::milliseconds> RebootTimeout;
};
} // namespace Zent::Discovery::Console
