#include "Discovery/Message/DiscoveryMessageDeserializer.h"
#include "Discovery/Message/SignatureBroadcastMessage.h"
#include "support/LogCapture.h"
#include "system/Exceptions.h"
#include "system/Memory.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <iostream>
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

/// How long a text takes at the level that logs most. What it allocates must be gone afterwards.
double MillisecondsOf(const std::string& text)
{
    const Tests::LogCapture log(LogStreamLevel::Debug);
    const std::int64_t before = Memory::LiveCount();
    const auto start = std::chrono::steady_clock::now();
    Handle(text);
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(Memory::LiveCount(), before);
    return taken.count();
}

/// How much a text writes to the log. At Standard, where the file is not split so soon.
std::size_t LoggedBytesOf(const std::string& text)
{
    const Tests::LogCapture log(LogStreamLevel::Standard);
    const std::size_t before = log.Text().size();
    Handle(text);
    return log.Text().size() - before;
}

/// The case with the largest amount.
struct Most
{
    double Amount = -1;
    std::string What;

    void Note(double amount, const std::string& text)
    {
        if (amount > Amount)
        {
            *this = {amount, text.substr(0, 160)};
        }
    }
};

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
    Most slowest;
    Most talkative;
    for (const std::string& text : cases)
    {
        SCOPED_TRACE(text.substr(0, 160));
        const double milliseconds = MillisecondsOf(text);
        slowest.Note(milliseconds, text);
        EXPECT_LT(milliseconds, TIME_SCALE * 500); // tens, where each element has its line, unless it is quadratic
        const std::size_t logged = LoggedBytesOf(text);
        talkative.Note(static_cast<double>(logged), text);
        EXPECT_LT(logged, 100 * text.size()); // a line for two characters, at the most
    }
    std::cout << "slowest, " << slowest.Amount << " ms: " << slowest.What << "\nmost talkative, " << talkative.Amount
              << " bytes: " << talkative.What << "\n";
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
