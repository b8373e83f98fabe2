#include "Broker/BrokerSettings.h"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace Zent::Discovery::Broker
{
std::string BrokerSettings::WrongWithFiles() const
{
    for (const std::string& path : {AuthorityFile, CertificateFile, KeyFile})
    {
        errno = 0;
        std::ifstream file(path);
        if (!path.empty() && file.peek() == std::ifstream::traits_type::eof())
        {
            return "cannot read \"" + path +
                   "\": " + (errno == 0 ? "it is empty" : std::generic_category().message(errno));
        }
    }
    return "";
}
} // namespace Zent::Discovery::Broker
