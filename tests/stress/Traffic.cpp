#include "Traffic.h"

#include "support/DeviceDatagram.h"
#include "system/Exception.h"
#include "system/Net/Sockets/SocketOptionLevel.h"
#include "system/Net/Sockets/SocketOptionName.h"

#include <array>

namespace Tests
{
using Nfx::System::Exception;
using Nfx::System::SmartPointer;
using Nfx::System::Net::AddressFamily;
using Nfx::System::Net::EndPoint;
using Nfx::System::Net::IPAddress;
using Nfx::System::Net::IPEndPoint;
using Nfx::System::Net::Sockets::ProtocolType;
using Nfx::System::Net::Sockets::Socket;
using Nfx::System::Net::Sockets::SocketOptionLevel;
using Nfx::System::Net::Sockets::SocketOptionName;
using Nfx::System::Net::Sockets::SocketType;

namespace
{
constexpr std::int32_t DevicePort = 12000;
constexpr std::int32_t ServerPort = 12001;

std::string Noise(std::mt19937& random, std::size_t size)
{
    std::string noise(size, '\0');
    for (char& byte : noise)
    {
        byte = static_cast<char>(random());
    }
    return noise;
}
} // namespace

Traffic::Traffic()
    : socket(AddressFamily::InterNetwork, SocketType::Dgram, ProtocolType::Udp)
{
}

void Traffic::Send(const std::string& datagram)
{
    socket.SendTo(reinterpret_cast<const std::uint8_t*>(datagram.data()), static_cast<std::int32_t>(datagram.size()),
                  IPEndPoint(IPAddress::Parse("127.0.0.1"), ServerPort));
}

std::string Traffic::AnyMessage(std::mt19937& random, const std::string& hostName)
{
    constexpr std::array<const char*, 3> Kinds{"SignatureBroadcast", "Hello", "Bye"};
    return DeviceDatagram(Kinds[random() % Kinds.size()], "1.0.18", hostName);
}

std::string Traffic::Hostile(std::mt19937& random)
{
    std::string message = AnyMessage(random, "vandal");
    switch (random() % 7)
    {
    case 0:
        return Noise(random, random() % 2000);
    case 1:
        return message.substr(0, random() % message.size());
    case 2:
        message[random() % message.size()] = static_cast<char>(random());
        return "[" + message + "]";
    case 3:
        return std::string(60000, '[');
    case 4:
        return "{\"Host\":" + std::string(random() % 30000, '9') + "}";
    case 5:
        return DeviceDatagram("Goodbye", "1.0.18", "vandal");
    default:
        return "";
    }
}

RequestListener::RequestListener()
    : socket(AddressFamily::InterNetwork, SocketType::Dgram, ProtocolType::Udp)
{
    constexpr std::int32_t Milliseconds = 5;
    socket.SetSocketOption(SocketOptionLevel::Socket, SocketOptionName::ReceiveTimeout, Milliseconds);
    socket.Bind(SmartPointer<EndPoint>(new IPEndPoint(IPAddress::Parse("0.0.0.0"), DevicePort)));
}

bool RequestListener::HasHeard(const std::string& text)
{
    std::array<std::uint8_t, 4096> buffer{};
    IPEndPoint sender(IPAddress::Parse("0.0.0.0"), 0);
    try
    {
        const std::int32_t count = socket.ReceiveFrom(buffer.data(), static_cast<std::int32_t>(buffer.size()), sender);
        const std::string_view request(reinterpret_cast<const char*>(buffer.data()), static_cast<std::size_t>(count));
        return request.find(text) != std::string_view::npos;
    }
    catch (const Exception&)
    {
        return false;
    }
}

bool IsServerPortFree()
{
    try
    {
        Socket probe(AddressFamily::InterNetwork, SocketType::Dgram, ProtocolType::Udp);
        probe.Bind(SmartPointer<EndPoint>(new IPEndPoint(IPAddress::Parse("0.0.0.0"), ServerPort)));
        return true;
    }
    catch (const Exception&)
    {
        return false;
    }
}
} // namespace Tests
