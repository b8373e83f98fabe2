#include "Discovery/ComponentLog.h"

#include "Discovery/DiscoveryLogger.h"

namespace Zent::Discovery
{
using Nfx::System::Exception;
using Nfx::System::String;
using Nfx::System::LogStreams::LogStreamLevel;

namespace
{
constexpr char NoMemoryText[] = "out of memory"; // short enough to need none
}

ComponentLog::ComponentLog(const String& name)
    : channel(name)
{
}

// What is never enabled is never asked for: there may be no memory to make a logger of.
void ComponentLog::Write(const String& message, const LogStreamLevel& level) const
{
    if (IsEnabled(level))
    {
        DiscoveryLogger::GetInstance().Log(channel, message, level);
    }
}

void ComponentLog::Write(const char* message, const LogStreamLevel& level) const
{
    if (!IsEnabled(level))
    {
        return; // makes no text
    }
    try
    {
        Write(String(message), level);
    }
    catch (const std::bad_alloc&)
    {
        Write(String(NoMemoryText), level);
    }
}

void ComponentLog::Write(const String& message, const Exception& exception) const
{
    if (IsEnabled(LogStreamLevel::Critical))
    {
        DiscoveryLogger::GetInstance().Log(channel, message, exception);
    }
}

void ComponentLog::Write(const char* message, const Exception& exception) const
{
    try
    {
        Write(String(message), exception);
    }
    catch (const std::bad_alloc&)
    {
        Write(String(NoMemoryText), exception);
    }
}

void ComponentLog::Reject(const char* reason, const char* sourceFile, std::int32_t line) const
{
    Write(reason, LogStreamLevel::Critical);
    throw Exception(Nfx::System::ErrorCodes::InvalidFormat, sourceFile, line);
}

void ComponentLog::WriteForeign(const char* failure, const char* description) const
{
    Attempt([&] { Write(failure, Exception(String(description), SourceName, __LINE__)); },
            [&](const Exception&) { Write(failure, Exception(SourceName, __LINE__)); });
}

bool ComponentLog::IsEnabled(const LogStreamLevel& level) noexcept
{
    return DiscoveryLogger::IsEnabled(level);
}
} // namespace Zent::Discovery
