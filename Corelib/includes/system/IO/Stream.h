#pragma once

#include "system/Object.h"
#include "system/String.h"

#include <cstddef>
#include <string_view>

namespace Nfx::System::IO
{
/// Takes bytes in order. One thread at a time.
class Stream : public Object
{
public:
    /// Writes bytes and returns how many were taken: fewer than given when the stream failed on the way. A later call
    /// may succeed.
    virtual std::size_t Write(std::string_view bytes) = 0;

    /// Why the last write took less than it was given.
    virtual String GetFailureText() const = 0;

    /// May be called again.
    virtual void Close() = 0;
};
} // namespace Nfx::System::IO
