#pragma once

#include "Discovery/DiscoveryLogger.h"
#include "support/TemporaryFolder.h"

#include <initializer_list>
#include <string>
#include <string_view>

namespace Tests
{
/// Sends the discovery log to a file of its own for the length of a test.
class LogCapture final
{
public:
    explicit LogCapture(const Nfx::System::LogStreams::LogStreamLevel& level);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::string Text() const;

    /// How often a text occurs.
    int Count(std::string_view text) const;

    bool Has(std::string_view text) const { return Count(text) > 0; }

    /// Waits up to ten seconds until a text has occurred so often.
    bool WaitFor(std::string_view text, int times = 1) const;

    /// The type columns of the lines that hold a text, in their order: "CC" for two Critical ones.
    std::string TypesOf(std::string_view text) const;

    /// True when the texts occur in this order.
    bool HasInOrder(std::initializer_list<std::string_view> texts) const;

private:
    TemporaryFolder folder;
};
} // namespace Tests
