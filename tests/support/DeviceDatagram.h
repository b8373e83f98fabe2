#pragma once

#include <string>

namespace Tests
{
/// A datagram as a device sends it.
inline std::string DeviceDatagram(const std::string& type, const std::string& version, const std::string& hostName)
{
    return "{\"DiscoveryMessageType\":\"" + type + "\",\"DiscoveryVersion\":\"" + version +
           "\",\"Broadcast\":\"True\",\"Host\":{\"HostName\":\"" + hostName +
           "\",\"DeviceType\":\"Panel\",\"NICs\":[],\"Products\":[],\"FileTransferInfos\":{}},"
           "\"SourceNIC\":{\"FriendlyName\":\"eth0\",\"MACAddress\":\"00:1A:2B:3C:4D:5E\",\"IPAddress\":\"192.0.2.1\","
           "\"SubNetMask\":\"255.255.255.0\",\"DefaultGateway\":\"\"}}";
}
} // namespace Tests
