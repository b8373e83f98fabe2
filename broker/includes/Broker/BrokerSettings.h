#pragma once

#include "Broker/IBroker.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace Zent::Discovery::Broker
{
/// How to reach a broker. All texts are UTF-8.
struct BrokerSettings
{
    std::string Host = "localhost";
    std::uint16_t Port = 1883;
    std::string ClientId;      // no two clients of a broker have the same
    std::string User = {};     // empty without one
    std::string Password = {}; // empty without one

    bool UsesTls = false;
    std::string AuthorityFile = {};   // of certificates that brokers are checked against; empty for the system's
    std::string CertificateFile = {}; // this client's; empty without one
    std::string KeyFile = {};

    std::chrono::seconds KeepAlive{20};            // and half as long again, until the broker takes it for lost
    std::chrono::milliseconds LongestRetry{30000}; // from one attempt to connect to the next, chosen by chance
    std::optional<Publication> Will = {};          // what the broker publishes when the connection breaks

    /// Which of the files for TLS cannot be read, and why; empty when all can.
    std::string WrongWithFiles() const;

    /// Takes the first line of the file as the password.
    /// @throws Programs::WrongArgument that names the file when it cannot be read.
    void ReadPassword(const std::string& file);
};
} // namespace Zent::Discovery::Broker
