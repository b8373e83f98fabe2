#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Zent::Discovery::Page
{
/// Where the page is served, and for whom. All texts are UTF-8.
struct PageSettings
{
    std::string Address = "127.0.0.1"; // of this machine, IPv4 or IPv6
    std::uint16_t Port = 0;            // 0 for any that is free

    std::string CertificateFile = {}; // with it viewers come by TLS alone
    std::string KeyFile = {};
    std::string AuthorityFile = {}; // of the certificates that viewers may show
    std::string TokenFile = {};     // its first line is what viewers may enter instead

    std::vector<std::string> Names = {}; // that viewers may call the machine by, beside its address and "localhost"

    /// Refuses settings that do not go together: who is not on this machine must come by TLS, and show that he may.
    /// Looks at the files, too.
    /// @throws Programs::WrongArgument that says what is wrong.
    void Check() const;
};
} // namespace Zent::Discovery::Page
