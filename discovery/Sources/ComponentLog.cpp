#include "Discovery/ComponentLog.h"

#include "Discovery/DiscoveryLogger.h"

namespace Zent::Discovery
{
using Nfx::System::Exception;
using Nfx::System::String;
using Nfx::System::LogStreams::LogStreamLevel;

ComponentLog::ComponentLog(const String& name)
    : channel(name)
{
}

void ComponentLog::Write(const String& message, const LogStreamLevel& level) const
{
    DiscoveryLogger::GetInstance().Log(channel, message, level);
}

void ComponentLog::Write(const char* message, const LogStreamLevel& level) const
{
    if (IsEnabled(level))
    {
        Write(String(message), level);
    }
}

void ComponentLog::Write(const String& message, const Exception& exception) const
{
    DiscoveryLogger::GetInstance().Log(channel, message, exception);
}

void ComponentLog::WriteLastResort(const char* message, const Exception& exception) const noexcept
{
    try
    {
        Write(message, exception);
    }
    catch (const std::bad_alloc&)
    {
        // The text alone takes more memory than there is.
    }
}

bool ComponentLog::IsEnabled(const LogStreamLevel& level) noexcept
{
    return DiscoveryLogger::GetInstance().IsEnabled(level);
}
} // namespace Zent::Discovery
