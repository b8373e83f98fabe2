#pragma once

#include "system/LogStreams/LogStreamChannel.h"
#include "system/LogStreams/LogStreamLevel.h"

#include <cstdint>

namespace Zent::Discovery
{
/// Logs what is wrong with a received text.
class DefectLog final
{
public:
    DefectLog() = delete;

    /// Builds no text when the level is off.
    static void Write(const Nfx::System::LogStreams::LogStreamChannel& channel,
                      const char* text,
                      const Nfx::System::LogStreams::LogStreamLevel& level);

    /// Writes a Critical line, then throws.
    /// @throws Exception with ErrorCodes::InvalidFormat.
    [[noreturn]] static void Reject(const Nfx::System::LogStreams::LogStreamChannel& channel,
                                    const char* text,
                                    const char* sourceFile,
                                    std::int32_t line);
};
} // namespace Zent::Discovery
