#pragma once

#include "system/Enum.h"

namespace Nfx::System::Threading
{
/// Whether an event that was set lets one wait through and resets itself, or all until it is reset.
class EventResetMode final : public Enum<EventResetMode>
{
public:
    enum : std::int32_t
    {
        AutoReset = 0,
        ManualReset = 1
    };

    static constexpr EnumName Names[] = {{AutoReset, "AutoReset"}, {ManualReset, "ManualReset"}};

    using Enum::Enum;
};
} // namespace Nfx::System::Threading
