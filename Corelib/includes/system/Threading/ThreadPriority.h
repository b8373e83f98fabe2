#pragma once

#include "system/Enum.h"

namespace Nfx::System::Threading
{
/// How much a thread is preferred to others.
class ThreadPriority final : public Enum<ThreadPriority>
{
public:
    enum : std::int32_t
    {
        Lowest = 0,
        BelowNormal = 1,
        Normal = 2,
        AboveNormal = 3,
        Highest = 4
    };

    static constexpr EnumName Names[] = {{Lowest, "Lowest"},
                                         {BelowNormal, "BelowNormal"},
                                         {Normal, "Normal"},
                                         {AboveNormal, "AboveNormal"},
                                         {Highest, "Highest"}};

    using Enum::Enum;
};
} // namespace Nfx::System::Threading
