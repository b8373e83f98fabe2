#pragma once

#include "system/Exceptions.h"

#include <cstdint>
#include <new>
#include <utility>

namespace Zent::Discovery::ExtC
{
/// Keeps exceptions away from the host application: each becomes a log line and a code.
class ExceptionGuard final
{
public:
    ExceptionGuard() = delete;

    /// Runs the body; 0, or the code of the exception that stopped it.
    template <class TBody>
    static std::int32_t Run(TBody&& body)
    {
        try
        {
            std::forward<TBody>(body)();
            return Nfx::System::ErrorCodes::None;
        }
        catch (const Nfx::System::Exception& exception)
        {
            return Report(exception);
        }
        catch (const std::bad_alloc&)
        {
            return Report(Nfx::System::OutOfMemoryException("extc/Sources/ExceptionGuard", __LINE__));
        }
    }

private:
    static std::int32_t Report(const Nfx::System::Exception& exception) noexcept;
};
} // namespace Zent::Discovery::ExtC
