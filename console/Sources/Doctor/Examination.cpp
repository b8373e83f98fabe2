#include "Doctor/Examination.h"

#include "Commands/CommandContext.h"
#include "Commands/DeviceReader.h"
#include "Doctor/Diagnosis.h"
#include "Doctor/HostProbe.h"
#include "Programs/HostSession.h"
#include "Programs/InterfaceChoice.h"
#include "Programs/LogReader.h"
#include "Programs/SystemNetwork.h"
#include "Show/Output.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

using Zent::Discovery::Inventory::Device;
using Zent::Discovery::Inventory::DeviceMessage;
using Zent::Discovery::Inventory::IPv4;
using Zent::Discovery::Programs::HostSession;
using Zent::Discovery::Programs::InterfaceChoice;
using Zent::Discovery::Programs::LogReader;
using Zent::Discovery::Programs::LogSummary;
using Zent::Discovery::Programs::NetworkInterface;
using Zent::Discovery::Programs::SystemNetwork;
using Zent::Discovery::Programs::UdpSocket;
using Zent::Discovery::Programs::UdpSockets;

namespace Zent::Discovery::Console::Doctor
{
namespace
{
namespace fs = std::filesystem;

/// A folder that only the user may look into, for as long as the object lives.
class PrivateFolder final
{
public:
    PrivateFolder()
        : path(HostProbe::MakePrivateFolder())
    {
    }

    ~PrivateFolder()
    {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }

    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;

    fs::path File(const std::string& name) const { return path / name; }

private:
    const fs::path path;
};

HeardDevice Heard(const Device& device)
{
    std::string lowest;
    for (const Device::Interface& interface : device.Interfaces())
    {
        if (interface.HasMACAddress() && (lowest.empty() || interface.MACAddress < lowest))
        {
            lowest = interface.MACAddress;
        }
    }
    return {device.HostName, device.SerialNumber, lowest, device.MainInterface().IPAddress};
}

/// The library has split a log that grew too large.
std::string TextOfLog(const fs::path& file)
{
    std::ostringstream log;
    for (const char* const suffix : {".3.bak", ".2.bak", ".1.bak", ""})
    {
        if (std::ifstream part(fs::path(file).concat(suffix)); part)
        {
            log << part.rdbuf();
            log.clear(); // an empty part is a failure to the stream
        }
    }
    return log.str();
}

LogSummary Summary(const std::string& log)
{
    std::istringstream stream(log);
    LogReader reader;
    for (std::string line; std::getline(stream, line);)
    {
        reader.Add(line);
    }
    return reader.Summary();
}

Observations Observe(const ProgramOptions& options, const std::vector<NetworkInterface>& interfaces)
{
    constexpr IPv4 Elsewhere = 0xC0000201; // 192.0.2.1, which no network has
    const InterfaceChoice choice(interfaces, options.Session.Interfaces);

    Observations observations;
    observations.System = HostProbe::System();
    observations.HasInterface = !choice.Addresses().empty();
    observations.LeftOut = choice.LeftOut();
    for (const NetworkInterface& interface : interfaces)
    {
        observations.SubNets.insert(observations.SubNets.end(), interface.Addresses.begin(), interface.Addresses.end());
    }
    observations.HasBroadcastRoute = SystemNetwork::HasRoute(Elsewhere);
    observations.Firewall = HostProbe::Firewall();
    observations.IsPortTaken = !UdpSockets::CanShare(UdpSockets::HostPort);
    for (const UdpSocket& socket : UdpSockets::OnPort(UdpSockets::HostPort))
    {
        if (!socket.IsOwn)
        {
            observations.PortHolders.push_back(socket);
        }
    }
    return observations;
}
} // namespace

Observations Examination::OfSystem(const ProgramOptions& options)
{
    const std::vector<NetworkInterface> interfaces = SystemNetwork::Interfaces();
    InterfaceChoice::Check(interfaces, options.Session.Interfaces);
    return Observe(options, interfaces);
}

std::optional<SearchResult> Examination::Search(CommandContext& context)
{
    const PrivateFolder folder;
    const fs::path logFile = folder.File("doctor.log");
    HostSession::Settings settings = context.Options().Session;
    settings.LogFile = logFile.string();
    settings.LogLevel = DiscoveryLogDebug;
    Programs::MessageQueue& messages = context.Messages();
    const auto queue = [&messages](DeviceMessage::MessageKind kind) {
        return [&messages, kind](const std::string& document) {
            messages.Push({kind, document, std::chrono::system_clock::now()});
        };
    };
    const auto complain = [&context](const std::string& text) { context.Out().Complain(text); };
    SearchResult result;
    {
        HostSession session(settings, {complain, queue(DeviceMessage::MessageKind::Signature),
                                       queue(DeviceMessage::MessageKind::Hello), nullptr});
        session.Requests().Discover();
        DeviceReader reader(messages, complain, context.Wait());
        context.Out().ShowStatus("Waiting for answers");
        while (!reader.IsOver())
        {
            if (const std::optional<Device> device = reader.Next())
            {
                result.Devices.insert(Heard(*device));
                result.Documents += Output::DocumentOf(Output::MembersOf(*device), *device) + '\n';
            }
        }
        result.BufferDrops = UdpSockets::OwnDrops(UdpSockets::HostPort);
        session.Close();
        if (reader.IsInterrupted())
        {
            return std::nullopt;
        }
    }
    result.Seconds = std::chrono::duration<double>(context.Wait()).count();
    result.LogText = TextOfLog(logFile);
    result.Log = Summary(result.LogText);
    return result;
}

std::string Examination::ReasonForSilence(const ProgramOptions& options, double seconds)
{
    Observations observations = Observe(options, SystemNetwork::Interfaces());
    SearchResult& search = observations.Search.emplace();
    search.Seconds = seconds;
    search.Log = Summary(TextOfLog(options.Session.LogFile));
    const std::string wanted[] = {"nobody-answers"};
    const std::vector<Finding> findings = Diagnosis::Of(observations, wanted);
    const Finding& reason = findings.front(); // nobody has answered, so there is one
    return reason.Of->Code == wanted[0] ? reason.Of->Affects : reason.Text;
}

std::string Examination::ReasonForTakenPort(const ProgramOptions& options)
{
    const std::string wanted[] = {"port-taken"};
    return Diagnosis::Of(Observe(options, SystemNetwork::Interfaces()), wanted).front().Text;
}
} // namespace Zent::Discovery::Console::Doctor
