#pragma once

#include "Inventory/DeviceSelection.h"
#include "Programs/HostSession.h"
#include "TerminalText.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace Zent::Discovery::Console
{
/// What the user asked for. All texts are UTF-8.
struct Options
{
    enum class CommandName
    {
        Discover,
        Watch,
        Refresh,
        Reach,
        Rename,
        Configure,
        InventoryDiff,
        InventoryShow,
        Error
    };

    CommandName Command = CommandName::Discover;

    Programs::HostSession::Settings Session;
    std::optional<std::chrono::milliseconds> Wait;
    bool Json = false;

    Inventory::DeviceSelection Selection{&TerminalText::Plain}; // of the devices to show
    std::size_t ExpectedDevices = 0;                            // 0 when their number is unknown
    std::optional<std::chrono::milliseconds> Interval;          // from one question to the next while watching
    std::string MACAddress;                                     // of the device meant; empty when IPAddress is set
    std::string IPAddress;
    std::string NewHostName;
    std::string File; // with settings, or a saved result
    std::string LaterFile;
    int ErrorCode = 0;
};
} // namespace Zent::Discovery::Console
