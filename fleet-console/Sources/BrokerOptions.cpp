#include "BrokerOptions.h"

#include "Programs/WrongArgument.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <fstream>
#include <random>

using Zent::Discovery::Broker::BrokerSettings;
using Zent::Discovery::Programs::WrongArgument;

namespace Zent::Discovery::FleetConsole
{
namespace
{
constexpr std::uint16_t TlsPort = 8883;

std::uint16_t PortOf(const std::string& text)
{
    std::uint16_t port = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, port);
    if (error != std::errc() || stop != end || port == 0)
    {
        throw WrongArgument("--broker: \"" + text + "\" is no port from 1 to 65535");
    }
    return port;
}

std::string FirstLineOf(const std::string& path)
{
    std::ifstream file(path);
    std::string line;
    if (!std::getline(file, line))
    {
        throw WrongArgument("--password-file: cannot read a password from \"" + path + "\"");
    }
    return line;
}
} // namespace

void BrokerOptions::AddTo(CLI::App& program)
{
    program.add_option("--broker", broker, "the MQTT 5 broker; localhost without it")->type_name("HOST[:PORT]");
    auto* const tls = program.add_flag("--tls", settings.UsesTls, "encrypt the connection; the port is 8883 then");
    program.add_option("--authority", settings.AuthorityFile, "certificates that the broker's is checked against")
        ->type_name("FILE")
        ->needs(tls);
    auto* const certificate = program.add_option("--certificate", settings.CertificateFile, "the user's certificate");
    auto* const key = program.add_option("--key", settings.KeyFile, "the key of the certificate");
    certificate->type_name("FILE")->needs(tls)->needs(key);
    key->type_name("FILE")->needs(certificate);
    auto* const user = program.add_option("--user", settings.User, "the user's name")->type_name("NAME");
    program.add_option("--password-file", passwordFile, "a file whose first line is the user's password")
        ->type_name("FILE")
        ->needs(user);
}

BrokerSettings BrokerOptions::Settings() const
{
    BrokerSettings result = settings;
    const std::size_t colon = broker.rfind(':');
    const bool hasPort = colon != std::string::npos && broker.find(':') == colon; // other colons are an IPv6 address's
    result.Host = hasPort ? broker.substr(0, colon) : broker;
    result.Port = hasPort ? PortOf(broker.substr(colon + 1)) : settings.UsesTls ? TlsPort : settings.Port;
    if (result.Host.empty())
    {
        throw WrongArgument("--broker: \"" + broker + "\" has no name of a machine");
    }
    result.Password = passwordFile.empty() ? "" : FirstLineOf(passwordFile);
    std::random_device random;
    result.ClientId = "discovery-fleet-" + std::to_string(random()) + std::to_string(random());
    return result;
}
} // namespace Zent::Discovery::FleetConsole
