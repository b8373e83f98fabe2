#include "support/Device.h"
#include "support/DeviceDatagram.h"
#include "support/Server.h"
#include "support/TemporaryFolder.h"
#include "support/WaitUntil.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <string>

namespace
{
using Tests::Server;

constexpr int ArgumentNull = 9;
constexpr int ArgumentOutOfRange = 10;
constexpr int InvalidOperation = 30;
constexpr int NullPointer = 41;
constexpr int ResourceNotFound = static_cast<int>(0xC0090109u);
constexpr int InvalidFormat = static_cast<int>(0xC0090114u);

class ExtCTest : public testing::Test
{
protected:
    void TearDown() override { EXPECT_EQ(0, Server().Terminate()); }

    std::string LogPath() const { return folder.PathOf("logs/discovery.log"); }

    std::string Log() const { return folder.Read("logs/discovery.log"); }

    void SendHello() { device.Send(Tests::DeviceDatagram("Hello", "1.0.18", "bad \xFF\xC3( text")); }

    const Tests::TemporaryFolder folder;
    Tests::Device device;
};

TEST_F(ExtCTest, ErrorTextsAreExactAndUnknownCodesHaveOneOfTheirOwn)
{
    EXPECT_EQ("None", Server().TextOf(0));
    EXPECT_EQ("IO", Server().TextOf(58));
    EXPECT_EQ("Web", Server().TextOf(72));
    EXPECT_EQ("Invalid parameter value", Server().TextOf(static_cast<int>(0xC0090101u)));
    EXPECT_EQ("A warning occured", Server().TextOf(static_cast<int>(0xC0090006u)));
    for (const std::uint32_t code : {85u, 0xC009020Au, 0xC009FF05u, 0xFFFFFFFFu})
    {
        EXPECT_EQ("Unable to retrieve error message!", Server().TextOf(static_cast<int>(code)));
    }
}

TEST_F(ExtCTest, AFailedInitializeLeavesNothingBehind)
{
    EXPECT_EQ(ArgumentNull, Server().Initialize(nullptr, DiscoveryLogStandard));
    EXPECT_EQ(ArgumentOutOfRange, Server().Initialize(LogPath().c_str(), 7));
    EXPECT_FALSE(std::filesystem::exists(folder.PathOf("logs")));
    std::filesystem::create_directories(LogPath()); // a folder where the file should be
    EXPECT_NE(0, Server().Initialize(LogPath().c_str(), DiscoveryLogStandard));
    EXPECT_EQ(InvalidOperation, Server().SetHelloMessageReceivedEventCallBack(nullptr));
    std::filesystem::remove_all(LogPath());
    EXPECT_EQ(0, Server().Initialize(LogPath().c_str(), DiscoveryLogStandard));
    EXPECT_EQ(InvalidOperation, Server().Initialize(LogPath().c_str(), DiscoveryLogStandard));
    EXPECT_EQ(0, Server().SetHelloMessageReceivedEventCallBack(nullptr));
}

TEST_F(ExtCTest, MalformedArgumentsGiveTheirCodeAndALogLine)
{
    ASSERT_EQ(0, Server().Initialize(LogPath().c_str(), DiscoveryLogStandard));
    ASSERT_EQ(0, Server().StartServer());
    ASSERT_EQ(0, Server().InitBroadcastProvider("[\"127.0.0.1\"]"));
    EXPECT_EQ(InvalidFormat, Server().RefreshClient("00:11:22:33:44"));
    EXPECT_EQ(InvalidFormat, Server().ChangeClientsHostName("name", "00:11:22:33:44:GG"));
    EXPECT_EQ(InvalidFormat, Server().ReachClient("localhost"));
    EXPECT_EQ(InvalidFormat, Server().ChangeClientsHostNameWithIP("name", "1.2.3.256"));
    EXPECT_EQ(InvalidFormat, Server().SetMinCompatibleVersion("1"));
    EXPECT_EQ(InvalidFormat, Server().InitBroadcastProvider("{}"));
    EXPECT_EQ(InvalidFormat, Server().InitBroadcastProvider("[\"127.0.0.1\",\"somewhere\"]"));
    EXPECT_EQ(ResourceNotFound, Server().InitBroadcastProvider("[1]"));
    EXPECT_EQ(InvalidFormat, Server().ChangeClientsIPConfigurations("[{]"));
    EXPECT_EQ(ResourceNotFound, Server().ChangeClientsIPConfigurations("[{\"FriendlyName\":\"eth0\"}]"));
    EXPECT_EQ(ArgumentNull, Server().RefreshClient(nullptr));
    EXPECT_EQ(ArgumentNull, Server().ChangeClientsHostName(nullptr, "00:11:22:33:44:55"));
    ASSERT_EQ(0, Server().StopServer());

    const std::string log = Log();
    EXPECT_NE(std::string::npos, log.find("|DiscoveryServerExtCFacade               |E|$0xC0090114|Exception caught in "
                                          "ExtC layer. "));
    EXPECT_EQ(std::string::npos, log.find("Refresh Client owning"));
    EXPECT_EQ(std::string::npos, log.find("Sending message"));
}

TEST_F(ExtCTest, RequestsNeedAStartedServer)
{
    ASSERT_EQ(0, Server().Initialize(LogPath().c_str(), DiscoveryLogStandard));
    EXPECT_EQ(NullPointer, Server().Discover());
    EXPECT_EQ(0, Server().InitBroadcastProvider("[]"));
    EXPECT_NE(std::string::npos, Log().find("Broadcast provider not installed"));
    EXPECT_EQ(0, Server().StopServer());
}

std::atomic<int> hellos{0};

void DISCOVERY_EXTC_CALL OnHello(const char* hostJson)
{
    hellos += std::string(hostJson).find("bad \xFF\xC3( text") != std::string::npos ? 1 : 0; // as it came: no UTF-8
}

TEST_F(ExtCTest, AStopWritesTheLifeOfEachWorkerIntoTheLog)
{
    ASSERT_EQ(0, Server().Initialize(LogPath().c_str(), DiscoveryLogCritical));
    hellos = 0;
    ASSERT_EQ(0, Server().SetHelloMessageReceivedEventCallBack(&OnHello));
    ASSERT_EQ(0, Server().StartServer());
    ASSERT_EQ(0, Server().StartServer());
    SendHello();
    ASSERT_TRUE(Tests::WaitUntil([] { return hellos > 0; })); // now the stop has to wake the receiver
    ASSERT_EQ(0, Server().StopServer());
    ASSERT_EQ(0, Server().StopServer());
    ASSERT_EQ(0, Server().Terminate());

    const std::string log = Log();
    std::size_t position = 0;
    for (const char* line :
         {"Starting Discovery Server service (01.00.18)", "Server's current state : Running ! -> Starting aborted.",
          "Stopping Discovery Server service", "Stopping receiver", "Stopping worker", "Worker stopped",
          "---Receiver stopped---", "Stopping message parser", "---Message parser stopped---",
          "Stopping Task Processor", "Stopping worker", "Worker stopped", "---Task Processor stopped---",
          "Discovery Server stopped", "Close Log"})
    {
        position = log.find(line, position);
        ASSERT_NE(std::string::npos, position) << line << "\nin\n" << log;
    }
    EXPECT_TRUE(log.find("The socket has been shut down : ending worker.") != std::string::npos ||
                log.find("The socket has been closed : ending worker.") != std::string::npos)
        << log;
    EXPECT_EQ(std::string::npos, log.find("Unexpected socket error"));
    EXPECT_EQ(std::string::npos, log.find("Asynchronous restart"));
}

TEST_F(ExtCTest, ACallbackThatIsTakenAwayIsNotCalled)
{
    ASSERT_EQ(0, Server().Initialize(LogPath().c_str(), DiscoveryLogStandard));
    ASSERT_EQ(0, Server().SetHelloMessageReceivedEventCallBack(&OnHello));
    ASSERT_EQ(0, Server().SetHelloMessageReceivedEventCallBack(nullptr));
    ASSERT_EQ(0, Server().SetByeMessageReceivedEventCallBack(&OnHello));
    ASSERT_EQ(0, Server().StartServer());
    hellos = 0;
    SendHello();
    device.Send(Tests::DeviceDatagram("Bye", "1.0.18", "bad \xFF\xC3( text"));
    EXPECT_TRUE(Tests::WaitUntil([] { return hellos > 0; }));
    EXPECT_EQ(1, hellos);
}

std::atomic<int> callsBack{0};
std::atomic<int> refusals{0};

/// Tries everything that waits for the thread which it runs on, and a request, which does not.
void DISCOVERY_EXTC_CALL CallBack(const char*)
{
    refusals += Server().StopServer() == InvalidOperation ? 1 : 0;
    refusals += Server().StartServer() == InvalidOperation ? 1 : 0;
    refusals += Server().Terminate() == InvalidOperation ? 1 : 0;
    refusals += Server().Initialize("unused.log", DiscoveryLogNone) == InvalidOperation ? 1 : 0;
    EXPECT_EQ(0, Server().Discover());
    EXPECT_EQ(0, Server().SetByeMessageReceivedEventCallBack(nullptr));
    ++callsBack;
}

TEST_F(ExtCTest, WithinACallbackNothingWaitsForTheThreadThatRunsIt)
{
    ASSERT_EQ(0, Server().Initialize(LogPath().c_str(), DiscoveryLogStandard));
    ASSERT_EQ(0, Server().SetHelloMessageReceivedEventCallBack(&CallBack));
    ASSERT_EQ(0, Server().StartServer());
    ASSERT_EQ(0, Server().InitBroadcastProvider("[\"127.0.0.1\"]"));
    SendHello();
    ASSERT_TRUE(Tests::WaitUntil([] { return callsBack == 1; }));
    EXPECT_EQ(4, refusals);
    EXPECT_EQ(0, Server().StopServer());
    EXPECT_NE(std::string::npos, Log().find("StopServer must not be called within a callback."));
}

} // namespace
