#include "Doctor/HostProbe.h"

#include "Doctor/NftRules.h"
#include "Programs/UdpSockets.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <stdlib.h>
#include <sys/wait.h>
#include <system_error>

using Zent::Discovery::Programs::UdpSockets;

namespace Zent::Discovery::Console::Doctor
{
namespace
{
namespace fs = std::filesystem;

/// What a command prints; nothing when it fails.
std::optional<std::string> OutputOf(const std::string& command)
{
    // The folders of the administrator's programs are not in every user's path.
    FILE* const pipe = popen(("export PATH=\"$PATH:/usr/sbin:/sbin\"; { " + command + "; } 2>/dev/null").c_str(), "re");
    if (pipe == nullptr)
    {
        return std::nullopt;
    }
    std::string output;
    std::array<char, 4096> buffer;
    while (const std::size_t size = fread(buffer.data(), 1, buffer.size(), pipe))
    {
        output.append(buffer.data(), size);
    }
    const int status = pclose(pipe);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? std::optional(output) : std::nullopt;
}

bool HasUfw()
{
    std::ifstream settings("/etc/ufw/ufw.conf");
    for (std::string line; std::getline(settings, line);)
    {
        if (line == "ENABLED=yes")
        {
            return true;
        }
    }
    return false;
}

bool HasFirewalld()
{
    return OutputOf("timeout 2 firewall-cmd --state").has_value(); // a service that hangs holds it up
}

/// The program that looks after the rules, with the commands that let answers in. No name when there is none.
struct Keeper
{
    std::string Name;
    std::vector<std::string> Commands;
};

Keeper FindKeeper()
{
    std::error_code error;
    if (HasUfw())
    {
        const bool hasProfile = fs::exists("/etc/ufw/applications.d/discoveryserver", error);
        return {"ufw", {hasProfile ? "sudo ufw allow DiscoveryServer" : "sudo ufw allow 12001/udp"}};
    }
    if (HasFirewalld())
    {
        const bool hasService = fs::exists("/usr/lib/firewalld/services/discoveryserver.xml", error);
        const std::string subject = hasService ? "--add-service=discoveryserver" : "--add-port=12001/udp";
        return {"firewalld", {"sudo firewall-cmd --permanent " + subject, "sudo firewall-cmd --reload"}};
    }
    return {};
}
} // namespace

Observations::Systems HostProbe::System()
{
    return Observations::Systems::Linux;
}

FirewallState HostProbe::Firewall()
{
    const Keeper keeper = FindKeeper();
    FirewallState state;
    if (const std::optional<std::string> rules = OutputOf("timeout 2 nft list ruleset"))
    {
        state = NftRules::Judge(*rules, UdpSockets::HostPort);
    }
    else if (!keeper.Name.empty() || OutputOf("command -v nft || command -v iptables"))
    {
        state.Verdict = FirewallState::Verdicts::Unclear;
        state.Reason = "by the rules of " + (keeper.Name.empty() ? "the packet filter" : keeper.Name) +
                       ", which the system shows to root alone";
        state.Commands = {"sudo discovery-console doctor --check firewall"};
    }
    if (!keeper.Name.empty() && state.Verdict != FirewallState::Verdicts::LetIn)
    {
        state.Commands = keeper.Commands;
    }
    return state;
}

std::string HostProbe::MakePrivateFolder()
{
    std::error_code error;
    fs::path folder = fs::temp_directory_path(error);
    if (error)
    {
        folder = "/tmp";
    }
    std::string pattern = (folder / "discovery-doctor-XXXXXX").native();
    if (mkdtemp(pattern.data()) == nullptr)
    {
        throw std::system_error(errno, std::generic_category(), "cannot make a folder in " + folder.native());
    }
    return pattern;
}
} // namespace Zent::Discovery::Console::Doctor
