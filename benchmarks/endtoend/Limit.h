#pragma once

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct cJSON;

namespace Benchmarks
{
/// The least that one thread has to do for a signature: one cJSON parse, the checks of type and version, all fields,
/// the host application's document, and where the log is on, its two lines.
class Limit final
{
public:
    using CallBack = void (*)(const char* document);

    /// Logs when there is a log file.
    Limit(CallBack callBack, const char* logFile);
    ~Limit();
    Limit(const Limit&) = delete;
    Limit& operator=(const Limit&) = delete;

    /// False when the datagram is no signature of this version.
    bool Handle(std::string_view datagram);

    /// The datagram that asks all devices for their signatures; its lines, where the log is on, are those that the
    /// library writes before it sends one.
    std::string Request();

private:
    struct NIC
    {
        std::string FriendlyName, MACAddress, IPAddress, SubNetMask, DefaultGateway, MTU;
    };

    struct Product
    {
        std::string Type, SerialNumber, Version, Name;
    };

    struct Host
    {
        std::string HostName, DeviceType, DeviceFamily, SerialNumber;
        bool IsHostNameReadOnly, RebootForIPConfig, RebootForHostName;
        std::vector<NIC> NICs;
        std::vector<Product> Products;
        std::vector<std::pair<std::string, std::string>> FileTransferInfos;
    };

    static NIC ReadNIC(const cJSON* json);
    static Host ReadHost(const cJSON* json);
    static cJSON* Document(const NIC& nic);
    static cJSON* Document(const Host& host);

    void Log(const char* channel, const char* text, const char* more = "");

    const CallBack callBack;
    const int file;
    std::time_t second = 0; // whose text the date is
    char date[24] = "";
};
} // namespace Benchmarks
