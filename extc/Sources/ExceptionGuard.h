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

    /// Runs the body; 0, or the code of the exception that stopped it, which is logged.
    template <class TBody>
    static std::int32_t Run(TBody&& body)
    {
        return Guard(std::forward<TBody>(body), &Report);
    }

    /// Run without the log line.
    template <class TBody>
    static std::int32_t RunSilently(TBody&& body)
    {
        return Guard(std::forward<TBody>(body), &CodeOf);
    }

private:
    using Handler = std::int32_t (*)(const Nfx::System::Exception& exception) noexcept;

    template <class TBody>
    static std::int32_t Guard(TBody&& body, Handler handler)
    {
        try
        {
            std::forward<TBody>(body)();
            return Nfx::System::ErrorCodes::None;
        }
        catch (const Nfx::System::Exception& exception)
        {
            return handler(exception);
        }
        catch (const std::bad_alloc&)
        {
            return handler(Nfx::System::OutOfMemoryException("extc/Sources/ExceptionGuard", __LINE__));
        }
    }

    static std::int32_t CodeOf(const Nfx::System::Exception& exception) noexcept { return exception.GetError().Code(); }

    static std::int32_t Report(const Nfx::System::Exception& exception) noexcept;
};
} // namespace Zent::Discovery::ExtC
