#include "discovery/HostileDatagrams.h"

#include <random>

namespace Tests
{
namespace
{
const std::string Hello = R"({"DiscoveryMessageType":"Hello","DiscoveryVersion":"1.0.18",)";
const std::string HostBegin = Hello + R"("Host":{"HostName":"box","DeviceType":"panel")";
const std::string HostEnd = R"(,"NICs":[],"Products":[]}})";
const std::string RenameBegin =
    R"({"DiscoveryMessageType":"ChangeYourHostName","DiscoveryVersion":"1.0.18","NewHostName":"",)";
const std::string ConfigBegin =
    R"({"DiscoveryMessageType":"ChangeYourIPConfig","DiscoveryVersion":"1.0.18","NewNICConfigs":[)";
const std::string EmptyNIC =
    R"({"FriendlyName":"","MACAddress":"","IPAddress":"","SubNetMask":"","DefaultGateway":""},)";
const std::string GoodNIC =
    R"({"FriendlyName":"","MACAddress":"0:0:0:0:0:0","IPAddress":"0.0.0.0","SubNetMask":"0.0.0.0","DefaultGateway":""})";
const std::string Product = R"({"ProductType":"","ProductSerialNumber":"","ProductVersion":"","ProductName":""})";

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

std::string NestedArrays(std::size_t levels)
{
    return std::string(levels, '[') + std::string(levels, ']');
}

/// Settings whose keys are all the same but for case.
std::string FoldingSettings()
{
    constexpr std::size_t Letters = 13;
    std::string settings;
    for (std::size_t number = 0; settings.size() + HostBegin.size() + HostEnd.size() + 60 < LargestDatagram; ++number)
    {
        std::string key = "abcdefghijklm";
        for (std::size_t letter = 0; letter < Letters; ++letter)
        {
            key[letter] ^= static_cast<char>((number >> letter & 1) * 32);
        }
        settings += "\"" + key + "\":\"\",";
    }
    return HostBegin + ",\"FileTransferInfos\":{" + settings + "\"end\":\"\"}" + HostEnd;
}

std::string DifferentSettings()
{
    std::string settings;
    for (int number = 0; number < 5000; ++number)
    {
        settings += "\"" + std::to_string(number) + "\":\"\",";
    }
    return HostBegin + ",\"FileTransferInfos\":{" + settings + "\"end\":\"\"}" + HostEnd;
}

std::string Noise()
{
    std::mt19937 random(1);
    std::string noise(LargestDatagram, '\0');
    for (char& byte : noise)
    {
        byte = static_cast<char>(random());
    }
    return noise;
}

std::vector<std::string> NoMessages()
{
    std::vector<std::string> texts = {"", Noise(), Fill("", "\"\\", ""), Fill("", "{\"a\":", "")};
    for (const char byte : {' ', '[', '{', '"', '\\', '1', '-', '\0', '\x01', '\x7F', '\xFF'})
    {
        texts.emplace_back(LargestDatagram, byte);
    }
    return texts;
}

std::vector<std::string> Messages()
{
    const std::string text = "\"DeviceFamily\":\"";
    return {
        // members that nobody asked for, before those that count
        Fill("{", "\"a\":{},", Hello.substr(1) + "\"b\":1}"),
        Fill(Hello, R"("Host":1,)", "\"Broadcast\":\"True\"}"),
        Fill(HostBegin, ",\"HostName\":\"\"", HostEnd),
        Fill(HostBegin + ",\"x\":[", "1e999,", "1]" + HostEnd),
        Fill(HostBegin + ",\"x\":[", NestedArrays(900) + ",", "1]" + HostEnd),
        HostBegin + ",\"x\":" + NestedArrays(990) + HostEnd,
        // long lists
        Fill(ConfigBegin, "1,", "1]}"),
        Fill(ConfigBegin, EmptyNIC, "1]}"),
        Fill(ConfigBegin, GoodNIC + ",", GoodNIC + "]}"),
        Fill(ConfigBegin, R"({"FriendlyName":"","MACAddress":""},)", "1]}"),
        Fill(HostBegin + R"(,"Products":[],"NICs":[)", GoodNIC + ",", GoodNIC + "]}}"),
        Fill(HostBegin + R"(,"NICs":[],"Products":[)", Product + ",", Product + "]}}"),
        Fill(HostBegin + R"(,"FileTransferInfos":{)", "\"a\":\"\",", "\"b\":\"\"}" + HostEnd),
        Fill(HostBegin + R"(,"FileTransferInfos":{)", "\"a\":\"\",\"A\":\"\",", "\"b\":1}" + HostEnd),
        FoldingSettings(),
        DifferentSettings(),
        // long texts
        Fill(Hello + R"("Host":{"HostName":")", "\x01", R"(","DeviceType":"panel")" + HostEnd),
        Fill(HostBegin + "," + text, "\x01", "\"" + HostEnd),
        Fill(HostBegin + "," + text, "\\u0000", "\"" + HostEnd),
        Fill(HostBegin + R"(,"SourceNIC":{"FriendlyName":"","MACAddress":")", "0:", "\"}" + HostEnd),
        Fill(RenameBegin + R"("TargetedMACAddress":")", "00:", "00\"}"),
        Fill(R"({"DiscoveryMessageType":"Hello","DiscoveryVersion":"1)", ".1", "\"}"),
        Fill(R"({"DiscoveryVersion":"1.0","DiscoveryMessageType":"Hello)", "\n", "\"}"),
        Fill(Hello + "\"Broadcast\":\"True", " ", "\"}"),
    };
}
} // namespace

std::vector<std::string> LargestHostileDatagrams()
{
    std::vector<std::string> datagrams = NoMessages();
    for (std::string& message : Messages())
    {
        datagrams.push_back(std::move(message));
    }
    return datagrams;
}

std::string BeginningOf(const std::string& datagram)
{
    constexpr std::size_t Shown = 160;
    return datagram.substr(0, Shown);
}
} // namespace Tests
