#pragma once

#include "Discovery/Attempt.h"
#include "system/Exceptions.h"
#include "system/Immortal.h"
#include "system/LogStreams/LogStreamChannel.h"
#include "system/LogStreams/LogStreamLevel.h"
#include "system/String.h"
#include "system/Threading/Thread.h"

#include <algorithm>
#include <cstddef>
#include <cxxabi.h>
#include <exception>
#include <utility>

namespace Zent::Discovery
{
/// A literal as a template's argument.
template <std::size_t Size>
struct LiteralText
{
    consteval LiteralText(const char (&literal)[Size]) { std::copy_n(literal, Size, Text); }

    char Text[Size];
};

/// Writes a component's lines into the discovery log, on the channel of its name. Any thread.
class ComponentLog final
{
public:
    explicit ComponentLog(const Nfx::System::String& name);

    /// The log of a component that has no object to keep one, such as a kind of message. Never destroyed.
    template <LiteralText Name>
    static const ComponentLog& Of()
    {
        static const Nfx::System::Immortal<ComponentLog> log(Name.Text);
        return log.Get();
    }

    void Write(const Nfx::System::String& message, const Nfx::System::LogStreams::LogStreamLevel& level) const;

    /// For literals: makes no text of a line whose level is off. For want of memory the line is lost, and nothing else.
    void Write(const char* message, const Nfx::System::LogStreams::LogStreamLevel& level) const;
    void Write(const char* message, const Nfx::System::Exception& exception) const;

    void Write(const Nfx::System::String& message, const Nfx::System::Exception& exception) const;

    /// Runs a body for a place that nothing may leave, such as the outermost function of a thread: what the body throws
    /// becomes a line, if there is memory for one. False when it threw. Only the end of the thread itself gets through.
    template <class TBody>
    bool Guard(const char* failure, TBody&& body) const
    {
        try
        {
            return Attempt(std::forward<TBody>(body),
                           [&](const Nfx::System::Exception& exception) { Write(failure, exception); });
        }
        catch (const Nfx::System::Threading::Thread::AbortSignal&)
        {
            throw;
        }
        catch (abi::__forced_unwind&)
        {
            throw; // the platform ends the thread, and the process if somebody stops it
        }
        catch (const std::exception& exception) // thrown by a callback of the host
        {
            WriteForeign(failure, exception.what());
        }
        catch (...) // likewise, and only the host knows what it is
        {
            Write(failure, Nfx::System::Exception(SourceName, __LINE__));
        }
        return false;
    }

    /// Says in a Critical line why a received text is refused, then throws.
    /// @throws Exception with ErrorCodes::InvalidFormat, thrown at the place that is given.
    [[noreturn]] void Reject(const char* reason, const char* sourceFile, std::int32_t line) const;

    /// Ask before making a long text of a line that may be off.
    static bool IsEnabled(const Nfx::System::LogStreams::LogStreamLevel& level) noexcept;

private:
    void WriteForeign(const char* failure, const char* description) const;

    static constexpr char SourceName[] = "includes/Discovery/ComponentLog";

    const Nfx::System::LogStreams::LogStreamChannel channel;
};
} // namespace Zent::Discovery
