#pragma once

#include "system/Interface.h"

#include <cstdint>

namespace Nfx::System::LogStreams
{
/// Supplies the reference time that a log shows in its second column.
class ILogStreamRefTime : public Interface
{
public:
    /// Microseconds since the reference point; never goes back. Any thread.
    virtual std::int64_t Microseconds() const = 0;
};
} // namespace Nfx::System::LogStreams
