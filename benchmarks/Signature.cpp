#include "Signature.h"

namespace Benchmarks
{
namespace
{
constexpr std::size_t DigitCount = 10;
constexpr std::string_view HostNameStart = R"("HostName":"device-)";
constexpr std::string_view DocumentStart = R"({"Host":{"HostName":"device-)";

std::string NIC(std::size_t index)
{
    const std::string number = std::to_string(10 + index % 90);
    return R"({"FriendlyName":"eth)" + number + R"(","MACAddress":"02:6F:68:00:00:)" + number +
           R"(","IPAddress":"192.168.)" + number + R"(.17","SubNetMask":"255.255.255.0","DefaultGateway":"192.168.)" +
           number + R"(.1","MTU":"1500"})";
}

std::string Product(std::size_t index)
{
    const std::string number = std::to_string(10 + index % 90);
    return R"({"ProductType":"Runtime","ProductSerialNumber":"9069)" + number + R"(","ProductVersion":"4.7.)" + number +
           R"(","ProductName":"Control Runtime )" + number + R"("})";
}

std::string List(std::size_t count, std::string (*element)(std::size_t))
{
    std::string list = "[";
    for (std::size_t index = 0; index < count; ++index)
    {
        list += (index == 0 ? "" : ",") + element(index);
    }
    return list + "]";
}
} // namespace

Signature::Signature()
    : Signature(2, 2)
{
}

Signature::Signature(std::size_t nics, std::size_t products)
    : text(R"({"DiscoveryMessageType":"SignatureBroadcast","DiscoveryVersion":"1.0.18","Broadcast":"True","Host":{)")
{
    text += HostNameStart;
    number = text.size();
    text += std::string(DigitCount, '0') +
            R"(","IsHostNameReadOnly":false,"RebootRequiredForIPConfigChange":false,)"
            R"("RebootRequiredForHostNameChange":true,"DeviceType":"Controller","DeviceFamily":"C700",)"
            R"("SerialNumber":"538281810","NICs":)" +
            List(nics, &NIC) + R"(,"Products":)" + List(products, &Product) +
            R"(,"FileTransferInfos":{"Protocol":"SFTP","Port":"22"}},"SourceNIC":)" + NIC(0) + "}";
}

std::string_view Signature::Numbered(std::uint64_t value)
{
    for (std::size_t digit = DigitCount; digit-- > 0; value /= 10)
    {
        text[number + digit] = static_cast<char>('0' + value % 10);
    }
    return text;
}

std::uint64_t Signature::NumberIn(const char* document) noexcept
{
    std::uint64_t value = 0;
    for (std::size_t digit = 0; digit < DigitCount; ++digit)
    {
        value = value * 10 + static_cast<std::uint64_t>(document[DocumentStart.size() + digit] - '0');
    }
    return value;
}
} // namespace Benchmarks
