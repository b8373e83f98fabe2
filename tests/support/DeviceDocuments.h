#pragma once

#include "Inventory/DeviceMessage.h"

#include <string>

/// Documents as the library gives them.
namespace DeviceDocuments
{
inline std::string Nic(const std::string& mac, const std::string& ip)
{
    return R"({"MACAddress":")" + mac + R"(","IPAddress":")" + ip + R"("})";
}

/// A device with one interface; members go between host and interface.
inline std::string Document(const std::string& name,
                            const std::string& mac,
                            const std::string& ip,
                            const std::string& members = "")
{
    return R"({"Host":{"HostName":")" + name + R"(",)" + members + R"("NICs":[)" + Nic(mac, ip) + "]}}";
}

/// A device with the interfaces 02:..:01 at 10.0.0.1 and 02:..:02 at 10.0.0.2.
inline Zent::Discovery::Inventory::DeviceMessage Message(Zent::Discovery::Inventory::DeviceMessage::MessageKind kind,
                                                         const std::string& name,
                                                         const std::string& members = "")
{
    return {kind, R"({"Host":{"HostName":")" + name + R"(",)" + members + R"("NICs":[)" +
                      Nic("02:00:00:00:00:01", "10.0.0.1") + "," + Nic("02:00:00:00:00:02", "10.0.0.2") + "]}}"};
}
} // namespace DeviceDocuments
