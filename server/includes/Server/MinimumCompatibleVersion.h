#pragma once

#include "system/Version.h"

namespace Zent::Discovery::Server
{
/// The oldest protocol version that the process still accepts; 0.0 until the host application sets one, so that
/// nothing is refused. Survives the server. Any thread.
class MinimumCompatibleVersion final
{
public:
    MinimumCompatibleVersion() = delete;

    /// A copy.
    static Nfx::System::Version Get();

    /// Holds for the messages that are parsed from now on.
    static void Set(const Nfx::System::Version& version);

    /// True from the first Set on.
    static bool IsSet();
};
} // namespace Zent::Discovery::Server
