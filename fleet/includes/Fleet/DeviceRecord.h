#pragma once

#include "Fleet/UtcTime.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace Zent::Discovery::Fleet
{
/// What a broker keeps of a device. All texts of the host are as the device sent them, unfit for a terminal or a page.
class DeviceRecord final
{
public:
    enum class DeviceState
    {
        Present,
        Gone,
        Left,
        Flapping
    };

    static constexpr std::size_t MaximumHostBytes = std::size_t{64} * 1024;

    /// How long a record stays after its device has gone or left.
    static constexpr std::chrono::days KeptAfterGone{30};

    /// The host of a document that the library gives for a message; bytes that are no UTF-8 become U+FFFD.
    /// @throws std::invalid_argument when it has none, or one of more than MaximumHostBytes.
    static std::string HostOf(std::string_view document);

    /// @throws std::invalid_argument with the reason when the bytes are no record. Whatever a broker gives may come.
    static DeviceRecord Parse(std::string_view bytes);

    /// host is a JSON object of MaximumHostBytes at most.
    DeviceRecord(DeviceState state, std::string host, WallTime since);

    DeviceState State() const { return state; }

    const char* StateName() const;

    /// A JSON object without blanks.
    const std::string& Host() const { return host; }

    /// When it came into this state.
    WallTime Since() const { return since; }

    /// Changes with state and host. Other texts than these may differ while it stays: a publisher that starts anew
    /// leaves alone what tells the same.
    const std::string& Revision() const { return revision; }

    /// Whether it has gone or left.
    bool IsAway() const { return state == DeviceState::Gone || state == DeviceState::Left; }

    /// Whether its time is over.
    bool IsOverdue(WallTime now) const;

    /// {"Revision":"..","Since":"2026-03-01T12:30:00.250Z","State":"present","Host":{..}}
    std::string ToJson() const;

    /// {"Host":{..}}: what the inventory reads as a device's message.
    std::string ToDocument() const { return R"({"Host":)" + host + "}"; }

private:
    DeviceState state;
    std::string host;
    WallTime since;
    std::string revision;
};
} // namespace Zent::Discovery::Fleet
