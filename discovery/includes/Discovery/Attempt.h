#pragma once

#include "system/Exceptions.h"

#include <new>
#include <utility>

namespace Zent::Discovery
{
/// Runs a body whose failure is answered on the spot, by the handler that is given it; false when the body failed.
///
/// The one place that says what counts as a failure: every Exception, and want of memory however it is reported, which
/// the handler sees as an OutOfMemoryException. What foreign code throws and what ends a thread goes on. The handler
/// may throw; "throw;" in it lets the failure itself go on.
template <class TBody, class THandler>
bool Attempt(TBody&& body, THandler&& onFailure)
{
    try
    {
        std::forward<TBody>(body)();
        return true;
    }
    catch (const Nfx::System::Exception& exception)
    {
        onFailure(exception);
    }
    catch (const std::bad_alloc&)
    {
        onFailure(Nfx::System::OutOfMemoryException("includes/Discovery/Attempt", __LINE__));
    }
    return false;
}

/// The same where nothing is to be known of the failure but that there was one.
template <class TBody>
bool Attempt(TBody&& body)
{
    return Attempt(std::forward<TBody>(body), [](const Nfx::System::Exception&) {});
}
} // namespace Zent::Discovery
