#include "system/Net/IPEndPoint.h"

#include "support/ExpectError.h"

#include <gtest/gtest.h>

namespace Nfx::System::Net
{
namespace
{
TEST(IPEndPointTest, SurvivesTheFormThatSocketCallsUse)
{
    const IPEndPoint endPoint(IPAddress::Parse("192.168.1.20"), 12001);
    const SocketAddress address = endPoint.Serialize();

    EXPECT_EQ(address.Family(), AddressFamily::InterNetwork);
    const std::uint8_t portAndAddress[] = {0x2E, 0xE1, 192, 168, 1, 20, 0, 0};
    for (std::size_t index = 0; index < sizeof portAndAddress; ++index)
    {
        EXPECT_EQ(address.Data()[2 + index], portAndAddress[index]) << index;
    }
    EXPECT_EQ(IPEndPoint(address), endPoint);
    EXPECT_TRUE(IPEndPoint(IPAddress::Any(), 0).Create(address)->Equals(&endPoint));
}

TEST(IPEndPointTest, RefusesAnAddressOfAnotherFamily)
{
    EXPECT_ERROR(IPEndPoint(SocketAddress()), ErrorCodes::Argument);
    EXPECT_ERROR(IPEndPoint(SocketAddress(AddressFamily::InterNetworkV6, 80, 0)), ErrorCodes::Argument);
}

TEST(IPEndPointTest, PortsAre16Bits)
{
    EXPECT_EQ(IPEndPoint(IPAddress::Broadcast(), 65535).ToString(), "255.255.255.255:65535");
    EXPECT_EQ(IPEndPoint(IPEndPoint(IPAddress::Any(), 65535).Serialize()).Port(), 65535);
    EXPECT_ERROR(IPEndPoint(IPAddress::Any(), 65536), ErrorCodes::ArgumentOutOfRange);
    EXPECT_ERROR(IPEndPoint(IPAddress::Any(), -1), ErrorCodes::ArgumentOutOfRange);
}

TEST(IPEndPointTest, EqualsTheSameAddressAndPortOnly)
{
    const IPEndPoint endPoint(IPAddress::Broadcast(), 1);
    const IPEndPoint otherPort(IPAddress::Broadcast(), 2);
    const IPEndPoint otherAddress(IPAddress::Any(), 1);

    EXPECT_TRUE(endPoint.Equals(SmartPointer<IPEndPoint>(new IPEndPoint(endPoint)).operator->()));
    EXPECT_FALSE(endPoint.Equals(&otherPort));
    EXPECT_FALSE(endPoint.Equals(&otherAddress));
    EXPECT_FALSE(endPoint.Equals(&endPoint.Address()));
    EXPECT_FALSE(endPoint.Equals(nullptr));
}
} // namespace
} // namespace Nfx::System::Net
