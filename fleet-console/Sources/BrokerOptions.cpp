#include "BrokerOptions.h"

#include "Commands/Arguments.h"
#include "Programs/RandomName.h"
#include "Programs/WrongArgument.h"

#include <charconv>

using Zent::Discovery::Broker::BrokerSettings;
using Zent::Discovery::Console::Arguments;
using Zent::Discovery::Programs::RandomName;
using Zent::Discovery::Programs::WrongArgument;

namespace Zent::Discovery::FleetConsole
{
namespace
{
using Argument = Arguments::Argument;

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
} // namespace

void BrokerOptions::AddTo(CLI::App& program)
{
    Arguments arguments(program);
    arguments.Add("--broker", "HOST[:PORT]", broker, "the MQTT 5 broker; localhost without it");
    const Argument tls = arguments.AddFlag("--tls", settings.UsesTls, "encrypt the connection; the port is 8883 then");
    arguments.Add("--authority", "FILE", settings.AuthorityFile, "certificates that the broker's is checked against")
        .Needs(tls);
    const Argument certificate =
        arguments.Add("--certificate", "FILE", settings.CertificateFile, "the user's certificate");
    const Argument key = arguments.Add("--key", "FILE", settings.KeyFile, "the key of the certificate");
    certificate.Needs(tls).Needs(key);
    key.Needs(certificate);
    const Argument user = arguments.Add("--user", "NAME", settings.User, "the user's name");
    arguments.Add("--password-file", "FILE", passwordFile, "a file whose first line is the user's password")
        .Needs(user);
}

BrokerSettings BrokerOptions::Settings() const
{
    BrokerSettings result = settings;
    const std::size_t colon = broker.rfind(':');
    // An IPv6 address has colons of its own; with a port it stands in brackets.
    const bool hasBrackets = broker.starts_with('[');
    const bool hasPort =
        colon != std::string::npos && (hasBrackets ? broker[colon - 1] == ']' : broker.find(':') == colon);
    result.Host = hasPort ? broker.substr(0, colon) : broker;
    if (hasBrackets && result.Host.ends_with(']'))
    {
        result.Host = result.Host.substr(1, result.Host.size() - 2);
    }
    result.Port = hasPort ? PortOf(broker.substr(colon + 1)) : settings.UsesTls ? TlsPort : settings.Port;
    if (result.Host.empty())
    {
        throw WrongArgument("--broker: \"" + broker + "\" has no name of a machine");
    }
    if (const std::string wrong = result.WrongWithFiles(); !wrong.empty())
    {
        throw WrongArgument(wrong);
    }
    if (!passwordFile.empty())
    {
        result.ReadPassword(passwordFile);
    }
    result.ClientId = "discovery-fleet-" + RandomName::Make();
    return result;
}
} // namespace Zent::Discovery::FleetConsole
