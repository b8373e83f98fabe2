#pragma once

#include "system/Enum.h"

namespace Nfx::System
{
/// What String::Split does with empty parts.
class StringSplitOptions final : public Enum<StringSplitOptions>
{
public:
    enum : std::int32_t
    {
        None = 0,
        RemoveEmptyEntries = 1
    };

    static constexpr EnumName Names[] = {{None, "None"}, {RemoveEmptyEntries, "RemoveEmptyEntries"}};

    using Enum::Enum;
};
} // namespace Nfx::System
