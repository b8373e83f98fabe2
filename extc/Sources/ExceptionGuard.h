#pragma once

#include "Discovery/Attempt.h"
#include "system/Exceptions.h"

#include <cstdint>
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
        std::int32_t code = Nfx::System::ErrorCodes::None;
        Attempt(std::forward<TBody>(body), [&](const Nfx::System::Exception& exception) { code = handler(exception); });
        return code;
    }

    static std::int32_t CodeOf(const Nfx::System::Exception& exception) noexcept { return exception.GetError().Code(); }

    static std::int32_t Report(const Nfx::System::Exception& exception) noexcept;
};
} // namespace Zent::Discovery::ExtC
