#include "Recording.h"

#include "system/Exception.h"
#include "system/Net/IPAddress.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace Zent::Discovery::Simulator
{
namespace
{
constexpr std::size_t MaximumDatagramBytes = 65507;

std::string HexOf(std::string_view bytes)
{
    static constexpr char Digits[] = "0123456789abcdef";
    std::string text;
    for (const char byte : bytes)
    {
        const auto value = static_cast<unsigned char>(byte);
        text += {Digits[value >> 4], Digits[value & 15]};
    }
    return text;
}

std::string BytesOf(const std::string& hex)
{
    std::string bytes;
    for (std::size_t at = 0; at < hex.size(); at += 2)
    {
        unsigned value = 0;
        const char* const begin = hex.data() + at;
        const char* const end = hex.data() + std::min(at + 2, hex.size());
        if (end - begin != 2 || std::from_chars(begin, end, value, 16).ptr != end)
        {
            throw std::invalid_argument("\"Bytes\" are not pairs of hexadecimal digits");
        }
        bytes += static_cast<char>(value);
    }
    return bytes;
}

RecordedDatagram DatagramOf(const nlohmann::json& document)
{
    static constexpr double MaximumSeconds = 1e6;
    const double seconds = document.at("Seconds").get<double>();
    if (!(seconds >= 0 && seconds <= MaximumSeconds))
    {
        throw std::invalid_argument("\"Seconds\" is not a number from 0 to 1000000");
    }
    RecordedDatagram datagram{std::chrono::round<std::chrono::milliseconds>(std::chrono::duration<double>(seconds)),
                              document.at("Sender").get<std::string>(),
                              document.contains("Bytes") ? BytesOf(document.at("Bytes").get<std::string>())
                                                         : document.at("Text").get<std::string>()};
    if (datagram.Text.size() > MaximumDatagramBytes)
    {
        throw std::invalid_argument("the datagram has " + std::to_string(datagram.Text.size()) + " bytes; at most " +
                                    std::to_string(MaximumDatagramBytes) + " can be sent");
    }
    try
    {
        Nfx::System::Net::IPAddress::Parse(Nfx::System::String(std::string_view(datagram.Sender)));
    }
    catch (const Nfx::System::Exception&)
    {
        throw std::invalid_argument("\"Sender\" is \"" + datagram.Sender + "\", which is not an IP address");
    }
    return datagram;
}

[[noreturn]] void Refuse(const std::string& name, std::size_t line, const std::string& reason)
{
    throw std::runtime_error("recording \"" + name + "\", line " + std::to_string(line) + ": " + reason);
}
} // namespace

std::string Recording::LineOf(const RecordedDatagram& datagram)
{
    nlohmann::ordered_json document{{"Seconds", static_cast<double>(datagram.Time.count()) / 1000},
                                    {"Sender", datagram.Sender},
                                    {"Text", datagram.Text}};
    try
    {
        return document.dump();
    }
    catch (const nlohmann::json::type_error&) // no UTF-8
    {
        document.erase("Text");
        document["Bytes"] = HexOf(datagram.Text);
        return document.dump();
    }
}

std::vector<RecordedDatagram> Recording::Read(const std::string& path)
{
    errno = 0;
    std::ifstream file(std::filesystem::path(std::u8string(path.begin(), path.end())), std::ios::binary);
    std::ostringstream content;
    if (!file.is_open() || !(content << file.rdbuf()))
    {
        throw std::runtime_error("cannot read recording \"" + path + "\": " + std::strerror(errno == 0 ? EIO : errno));
    }
    return Parse(content.str(), path);
}

std::vector<RecordedDatagram> Recording::Parse(std::string_view text, const std::string& name)
{
    std::vector<RecordedDatagram> datagrams;
    std::istringstream lines{std::string(text)};
    std::string line;
    for (std::size_t number = 1; std::getline(lines, line); ++number)
    {
        if (line.find_first_not_of(" \t\r") == std::string::npos)
        {
            continue;
        }
        try
        {
            datagrams.push_back(DatagramOf(nlohmann::json::parse(line)));
        }
        catch (const nlohmann::json::parse_error& error)
        {
            Refuse(name, number, "no JSON document from column " + std::to_string(error.byte) + " on");
        }
        catch (const nlohmann::json::exception&)
        {
            Refuse(name, number, "not an object with \"Seconds\", \"Sender\", and \"Text\" or \"Bytes\"");
        }
        catch (const std::invalid_argument& error)
        {
            Refuse(name, number, error.what());
        }
    }
    if (datagrams.empty())
    {
        throw std::runtime_error("recording \"" + name + "\": there is no datagram in it");
    }
    return datagrams;
}
} // namespace Zent::Discovery::Simulator
