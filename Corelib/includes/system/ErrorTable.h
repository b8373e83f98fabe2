#pragma once

#include <cstdint>

namespace Nfx::System
{
/// The process-wide map from error code to text, in signed order of the codes. A constant: it needs no memory and has
/// no first use that threads could race for, so an error can be reported when nothing else works any more.
class ErrorTable final
{
public:
    ErrorTable() = delete;

    /// Null when the code has no row.
    static const char* Find(std::int32_t code) noexcept;
};
} // namespace Nfx::System
