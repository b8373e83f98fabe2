#include "Broker/BrokerSettings.h"

#include "Programs/WrongArgument.h"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace Zent::Discovery::Broker
{
namespace
{
/// Why nothing could be read. errno must have been 0 before.
std::string Reason()
{
    return errno == 0 ? "it is empty" : std::generic_category().message(errno);
}
} // namespace

std::string BrokerSettings::WrongWithFiles() const
{
    for (const std::string& path : {AuthorityFile, CertificateFile, KeyFile})
    {
        errno = 0;
        std::ifstream file(path);
        if (!path.empty() && file.peek() == std::ifstream::traits_type::eof())
        {
            return "cannot read \"" + path + "\": " + Reason();
        }
    }
    return "";
}

void BrokerSettings::ReadPassword(const std::string& file)
{
    errno = 0;
    std::ifstream stream(file);
    if (!std::getline(stream, Password))
    {
        throw Programs::WrongArgument("cannot read the broker's password from \"" + file + "\": " + Reason());
    }
    if (Password.ends_with('\r'))
    {
        Password.pop_back(); // of a file from Windows
    }
}
} // namespace Zent::Discovery::Broker
