#pragma once

#include "system/Enum.h"

namespace Nfx::System::LogStreams
{
/// How much goes into the log: a line is written when its level is not above the stream's. None as the level of a
/// stream writes no event at all, and a line of level None is never written.
class LogStreamLevel final : public Enum<LogStreamLevel>
{
public:
    enum : std::int32_t
    {
        Critical = 1,
        Standard = 2,
        Debug = 3,
        None = 255
    };

    static constexpr EnumName Names[] = {
        {None, "None"},
        {Critical, "Critical"},
        {Standard, "Standard"},
        {Debug, "Debug"},
    };

    using Enum::Enum;
};
} // namespace Nfx::System::LogStreams
