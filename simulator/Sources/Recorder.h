#pragma once

#include "Inbox.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace Zent::Discovery::Simulator
{
/// Asks the devices of the network who they are, and keeps what they say in a file. Main thread only.
class Recorder final
{
public:
    struct Options
    {
        std::string Path;                   // is made anew
        std::vector<std::string> Addresses; // of this machine, to ask from; without any those of its usual interfaces
        bool SharesPort = false;            // with other programs on this machine
    };

    Recorder() = delete;

    /// Prints a line "ready" once it listens and has asked, then one for each datagram, until the inbox is closed.
    /// @throws Programs::WrongArgument for an address that is not one of this machine; std::runtime_error;
    /// Nfx::System::Exception.
    static void Run(const Options& options, Inbox& inbox, std::ostream& out);
};
} // namespace Zent::Discovery::Simulator
