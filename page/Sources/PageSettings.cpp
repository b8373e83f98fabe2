#include "Page/PageSettings.h"

#include "InternetAddress.h"
#include "PageSecrets.h"
#include "Programs/WrongArgument.h"

#include <optional>

using Zent::Discovery::Programs::WrongArgument;

namespace Zent::Discovery::Page
{
namespace
{
/// Browsers write other letters in these, and nothing stands for several names.
constexpr const char* NameCharacters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._";
} // namespace

void PageSettings::Check() const
{
    const std::optional<InternetAddress> address = InternetAddress::Parse(Address, Port);
    if (!address)
    {
        throw WrongArgument("the page's address \"" + Address + "\" is neither an IPv4 nor an IPv6 address");
    }
    if (CertificateFile.empty() != KeyFile.empty())
    {
        throw WrongArgument("certificate and key of the page belong together");
    }
    const bool isForSome = !AuthorityFile.empty() || !TokenFile.empty();
    if (isForSome && CertificateFile.empty())
    {
        throw WrongArgument("authority and token of the page need certificate and key: others could read along");
    }
    if (!address->IsLoopback() && !isForSome)
    {
        throw WrongArgument("the page's address " + Address + " can be reached from other machines: it needs " +
                            (CertificateFile.empty() ? "certificate and key, and either " : "") +
                            "an authority of viewers' certificates or a token");
    }
    for (const std::string& name : Names)
    {
        if (name.empty() || name.find_first_not_of(NameCharacters) != std::string::npos)
        {
            throw WrongArgument("\"" + name + "\" is no name that the page's machine can be called by");
        }
    }
    PageSecrets::Load(*this);
}
} // namespace Zent::Discovery::Page
