#include "PageOptions.h"

#include <CLI/CLI.hpp>

namespace Zent::Discovery::FleetConsole
{
void PageOptions::AddTo(CLI::App& command)
{
    command.add_option("--page-address", settings.Address, "of this machine; 127.0.0.1 without it")
        ->type_name("ADDRESS");
    command
        .add_option("--page-port", settings.Port,
                    "0 for any that is free; " + std::to_string(UsualPort) + " without it")
        ->type_name("NUMBER")
        ->check(CLI::Range(0, 65535).description(""));
    auto* const certificate =
        command.add_option("--page-certificate", settings.CertificateFile, "serve the page by TLS alone");
    auto* const key = command.add_option("--page-key", settings.KeyFile, "the key of the certificate");
    certificate->type_name("FILE")->needs(key);
    key->type_name("FILE")->needs(certificate);
    command.add_option("--page-authority", settings.AuthorityFile, "of the certificates that viewers may show")
        ->type_name("FILE");
    command
        .add_option("--page-token-file", settings.TokenFile,
                    "a file whose first line is what viewers may enter instead")
        ->type_name("FILE");
    command.add_option("--page-name", settings.Names, "that browsers may call this machine by; may be repeated")
        ->type_name("NAME")
        ->allow_extra_args(false);
}
} // namespace Zent::Discovery::FleetConsole
