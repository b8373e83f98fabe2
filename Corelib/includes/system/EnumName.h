#pragma once

#include <cstdint>

namespace Nfx::System
{
/// One row of an enumeration's name table.
struct EnumName
{
    std::int32_t Value;
    const char* Name;
};
} // namespace Nfx::System
