#include "Recorder.h"

#include "Discovery/DiscoveryPorts.h"
#include "Discovery/Message/AllSendYourSignatureMessage.h"
#include "Listener.h"
#include "LocalPort.h"
#include "Programs/InterfaceChoice.h"
#include "Programs/SystemNetwork.h"
#include "Programs/WrongArgument.h"
#include "Recording.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <stdexcept>

using Nfx::System::String;
using Nfx::System::Net::IPAddress;

namespace Zent::Discovery::Simulator
{
namespace
{
[[noreturn]] void RefuseFile(const std::string& path)
{
    throw std::runtime_error("cannot write recording \"" + path + "\": " + std::strerror(errno == 0 ? EIO : errno));
}

std::vector<std::string> LocalAddresses(const std::vector<std::string>& wished)
{
    const std::vector<Programs::NetworkInterface> interfaces = Programs::SystemNetwork::Interfaces();
    const Programs::InterfaceChoice::Wishes wishes{.Addresses = wished};
    Programs::InterfaceChoice::Check(interfaces, wishes);
    std::vector<std::string> addresses = Programs::InterfaceChoice(interfaces, wishes).AddressTexts();
    if (addresses.empty())
    {
        throw Programs::WrongArgument("no interface takes part; name the address to ask from with --from");
    }
    return addresses;
}

void Ask(LocalPort& port, const std::vector<std::string>& addresses)
{
    const String question = AllSendYourSignatureMessage().ToJson();
    for (const std::string& address : addresses)
    {
        port.Send(question, IPAddress::Parse(String(std::string_view(address))), IPAddress::Broadcast());
    }
}
} // namespace

void Recorder::Run(const Options& options, Inbox& inbox, std::ostream& out)
{
    const std::vector<std::string> addresses = LocalAddresses(options.Addresses);
    const auto& ports = *DiscoveryPorts::GetInstance();
    LocalPort port(ports.ServerPort(), ports.ClientPort(), options.SharesPort);
    errno = 0;
    std::ofstream file(std::filesystem::path(std::u8string(options.Path.begin(), options.Path.end())),
                       std::ios::binary);
    if (!file)
    {
        RefuseFile(options.Path);
    }
    const Listener listener(port, inbox);
    const auto start = std::chrono::steady_clock::now();
    Ask(port, addresses);
    out << "ready" << std::endl;
    while (!inbox.IsClosed())
    {
        const std::optional<Inbox::Entry> entry = inbox.Take(std::nullopt);
        const auto* const said = entry ? std::get_if<Request>(&*entry) : nullptr;
        if (said == nullptr)
        {
            continue;
        }
        const RecordedDatagram datagram{
            std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start),
            std::string(said->Sender.ToString().View()), std::string(said->Text.View())};
        errno = 0;
        file << Recording::LineOf(datagram) << '\n' << std::flush;
        if (!file)
        {
            RefuseFile(options.Path);
        }
        out << datagram.Sender << ": " << datagram.Text.size() << " bytes" << std::endl;
    }
}
} // namespace Zent::Discovery::Simulator
