#include "Discovery/Message/DiscoveryMessageDeserializer.h"
#include "Discovery/Message/SignatureBroadcastMessage.h"
#include "support/LogCapture.h"
#include "system/Exceptions.h"
#include "system/Memory.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>

using Nfx::System::Memory;
using Nfx::System::SmartPointer;
using Nfx::System::String;
using Nfx::System::LogStreams::LogStreamLevel;
using namespace Zent::Discovery;

namespace
{
constexpr std::size_t LargestDatagram = 65507;

const std::string HelloBegin =
    R"({"DiscoveryMessageType":"Hello","DiscoveryVersion":"1.0.18","Host":{"HostName":"box","DeviceType":"panel")";
const std::string HelloEnd = R"(,"NICs":[],"Products":[]}})";
const std::string ConfigBegin =
    R"({"DiscoveryMessageType":"ChangeYourIPConfig","DiscoveryVersion":"1.0.18","NewNICConfigs":[)";

/// A text of the largest size, the part repeated in it.
std::string Fill(const std::string& begin, const std::string& part, const std::string& end)
{
    std::string text = begin;
    while (text.size() + part.size() + end.size() <= LargestDatagram)
    {
        text += part;
    }
    return text + end;
}

/// Deserializes a text and, when that works, writes the message and its host as the callbacks need it.
void Handle(const std::string& text)
{
    try
    {
        const SmartPointer<DiscoveryMessage> message = DiscoveryMessageDeserializer().Deserialize(String(text));
        EXPECT_LT(message->ToJson().Length(), 7 * text.size());
    }
    catch (const Nfx::System::Exception&)
    {
    }
}

TEST(HostileDatagramTest, AnyDatagramIsDoneInTimeAndLeavesNothingBehind)
{
    const std::string emptyNIC =
        R"({"FriendlyName":"","MACAddress":"","IPAddress":"","SubNetMask":"","DefaultGateway":""},)";
    const std::string product = R"({"ProductType":"","ProductSerialNumber":"","ProductVersion":"","ProductName":""},)";
    const std::string cases[] = {
        std::string(LargestDatagram, ' '),
        std::string(LargestDatagram, '['),
        std::string(LargestDatagram, '"'),
        std::string(LargestDatagram, '\\'),
        std::string(LargestDatagram, '\0'),
        std::string(LargestDatagram, '1'),
        std::string(LargestDatagram, '{'),
        Fill("{", "\"a\":{},", "\"b\":1}"),
        Fill(ConfigBegin, "1,", "1]}"),
        Fill(ConfigBegin, "{},", "1]}"),
        Fill(ConfigBegin, emptyNIC, "1]}"),
        Fill(ConfigBegin, R"({"FriendlyName":"","MACAddress":""},)", "1]}"),
        Fill(HelloBegin + R"(,"Products":[],"NICs":[)", "1,", "1]}}"),
        Fill(HelloBegin + R"(,"Products":[],"NICs":[)", emptyNIC, "1]}}"),
        Fill(HelloBegin + R"(,"NICs":[],"Products":[)", product, product.substr(0, product.size() - 1) + "]}}"),
        Fill(HelloBegin + R"(,"FileTransferInfos":{)", "\"a\":\"\",", "\"b\":\"\"}" + HelloEnd),
        Fill(HelloBegin + R"(,"FileTransferInfos":{)", "\"a\":\"\",\"A\":\"\",", "\"b\":1}" + HelloEnd),
        Fill(HelloBegin + ",\"DeviceFamily\":\"", "\x01", "\"" + HelloEnd),
        Fill(HelloBegin + ",\"DeviceFamily\":\"", "\\u0000", "\"" + HelloEnd),
        Fill(HelloBegin, ",\"HostName\":\"\"", HelloEnd),
        Fill(HelloBegin + ",\"SourceNIC\":{\"FriendlyName\":\"\",\"MACAddress\":\"", "0:", "\"}" + HelloEnd),
    };
    const Tests::LogCapture log(LogStreamLevel::Debug);
    double slowest = 0;
    for (const std::string& text : cases)
    {
        SCOPED_TRACE(text.substr(0, 160));
        const std::int64_t before = Memory::LiveCount();
        const auto start = std::chrono::steady_clock::now();
        Handle(text);
        const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
        slowest = std::max(slowest, taken.count());
        EXPECT_LT(taken.count(), 2000); // tens of milliseconds where each element has its line, unless it is quadratic
        EXPECT_EQ(Memory::LiveCount(), before);
    }
    RecordProperty("SlowestMilliseconds", std::to_string(slowest));
}

TEST(HostileDatagramTest, ThousandsOfSettingsAreReadInOrder)
{
    std::string settings;
    for (int number = 0; number < 6000; ++number)
    {
        settings += (number == 0 ? "\"" : ",\"") + std::to_string(number) + "\":\"\"";
    }
    const SmartPointer<DiscoveryMessage> message = DiscoveryMessageDeserializer().Deserialize(
        String(HelloBegin + R"(,"FileTransferInfos":{)" + settings + "}" + HelloEnd));
    const SmartPointer<DiscoveryHost> host = message.As<SignatureBroadcastMessage>()->Host;
    EXPECT_EQ(host->FileTransferInfos->Count(), 6000u);
    EXPECT_EQ(host->FileTransferInfos->ToJson().View(), "{" + settings + "}");
}

TEST(HostileDatagramTest, OneViewOfATextHoldsEverywhere)
{
    const auto hostNameOf = [](const std::string& json) {
        const SmartPointer<DiscoveryMessage> message = DiscoveryMessageDeserializer().Deserialize(String(json));
        return std::string(message.As<SignatureBroadcastMessage>()->Host->HostName.View());
    };
    const std::string begin = R"({"DiscoveryMessageType":"Hello","DiscoveryVersion":"1.0.18","Host":{)";
    const std::string end = R"(,"DeviceType":"","NICs":[],"Products":[]}})";
    const std::pair<std::string, std::string> cases[] = {
        {R"("HostName\u0000x":"other","HostName":"box")", "box"},
        {R"("Host\u0000Name":"first","HostName":"box")", "first"},
        {R"("HOSTNAME":"first","HostName":"box")", "first"},
        {R"("HostName":"a\u0000b")", "ab"},
        {R"("HostName":"\ud800\xy")", "xy"},
        {"\"HostName\":\"\xFF\xC3\"", "\xFF\xC3"},
    };
    for (const auto& [member, expected] : cases)
    {
        SCOPED_TRACE(member);
        EXPECT_EQ(hostNameOf(begin + member + end), expected);
        EXPECT_EQ(hostNameOf(begin + member + end + std::string(8, '\0')), expected);
        EXPECT_EQ(hostNameOf(begin + member + end + R"({"Host":{}} \u)"), expected);
    }
}
} // namespace
