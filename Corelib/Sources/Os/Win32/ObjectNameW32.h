#pragma once

#include "Os/WaitObject.h"

#include <string_view>

namespace Nfx::Os
{
/// The name of a semaphore, mutex or event in the platform's wide form: from UTF-8 or, when it is not valid UTF-8, from
/// the ANSI code page.
class ObjectNameW32 final
{
public:
    explicit ObjectNameW32(std::string_view name);

    /// Created when the name can be used.
    CreateStatus Status() const noexcept;

    /// Null for an empty name: the object gets none.
    const wchar_t* Text() const noexcept;

private:
    CreateStatus status = CreateStatus::Created;
    bool isEmpty;
    wchar_t text[LongestObjectName + 1] = {};
};
} // namespace Nfx::Os
