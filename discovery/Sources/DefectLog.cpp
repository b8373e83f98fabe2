#include "DefectLog.h"

#include "Discovery/DiscoveryLogger.h"
#include "system/Exceptions.h"

using Nfx::System::LogStreams::LogStreamChannel;
using Nfx::System::LogStreams::LogStreamLevel;

namespace Zent::Discovery
{
void DefectLog::Write(const LogStreamChannel& channel, const char* text, const LogStreamLevel& level)
{
    DiscoveryLogger& logger = DiscoveryLogger::GetInstance();
    if (logger.IsEnabled(level))
    {
        logger.Log(channel, text, level);
    }
}

void DefectLog::Reject(const LogStreamChannel& channel, const char* text, const char* sourceFile, std::int32_t line)
{
    Write(channel, text, LogStreamLevel::Critical);
    throw Nfx::System::Exception(Nfx::System::ErrorCodes::InvalidFormat, sourceFile, line);
}
} // namespace Zent::Discovery
