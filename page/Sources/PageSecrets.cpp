#include "PageSecrets.h"

#include "Programs/WrongArgument.h"
#include "TokenGate.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <gnutls/gnutls.h>
#include <memory>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

using Zent::Discovery::Programs::WrongArgument;

namespace Zent::Discovery::Page
{
namespace
{
constexpr std::size_t MaximumBytes = std::size_t{1} << 20U;

enum class Readers
{
    Anybody,
    OwnerAlone
};

/// An open file.
class File final
{
public:
    explicit File(const std::string& path)
        : path(path)
        , descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY))
    {
        if (descriptor < 0)
        {
            Refuse(std::generic_category().message(errno));
        }
    }

    ~File() { close(descriptor); }

    File(const File&) = delete;
    File& operator=(const File&) = delete;

    /// The group may read what belongs to root: so the service manager hands secrets to a service.
    void CheckRights() const
    {
        struct stat status = {};
        const bool isKnown = fstat(descriptor, &status) == 0;
        const unsigned tooMuch = status.st_uid == 0 ? S_IWGRP | S_IXGRP | S_IRWXO : S_IRWXG | S_IRWXO;
        if (!isKnown || !S_ISREG(status.st_mode) || (status.st_mode & tooMuch) != 0)
        {
            Refuse("it must be a file that nobody but its owner may read: chmod 600");
        }
    }

    std::string ReadAll() const
    {
        std::string text;
        std::array<char, 4096> buffer{};
        for (;;)
        {
            const ssize_t length = read(descriptor, buffer.data(), buffer.size());
            if (length < 0 || text.size() > MaximumBytes)
            {
                Refuse(length < 0 ? std::generic_category().message(errno) : "it is too long");
            }
            if (length == 0)
            {
                return text;
            }
            text.append(buffer.data(), static_cast<std::size_t>(length));
        }
    }

private:
    [[noreturn]] void Refuse(const std::string& reason) const
    {
        throw WrongArgument("cannot use \"" + path + "\" for the page: " + reason);
    }

    const std::string path;
    const int descriptor;
};

std::string TextOf(const std::string& path, Readers readers)
{
    if (path.empty())
    {
        return "";
    }
    const File file(path);
    if (readers == Readers::OwnerAlone)
    {
        file.CheckRights();
    }
    return file.ReadAll();
}

gnutls_datum_t DatumOf(std::string& text)
{
    return {reinterpret_cast<unsigned char*>(text.data()), static_cast<unsigned>(text.size())};
}

/// Whether TLS can use them, before a viewer finds out.
void CheckTls(PageSecrets& secrets, const PageSettings& settings)
{
    gnutls_certificate_credentials_t raw = nullptr;
    if (gnutls_certificate_allocate_credentials(&raw) != 0)
    {
        throw std::bad_alloc();
    }
    const std::unique_ptr<gnutls_certificate_credentials_st, decltype(&gnutls_certificate_free_credentials)>
        credentials(raw, gnutls_certificate_free_credentials);
    const gnutls_datum_t certificate = DatumOf(secrets.Certificate);
    const gnutls_datum_t key = DatumOf(secrets.Key);
    if (const int error = gnutls_certificate_set_x509_key_mem(raw, &certificate, &key, GNUTLS_X509_FMT_PEM); error != 0)
    {
        throw WrongArgument("certificate \"" + settings.CertificateFile + "\" and key \"" + settings.KeyFile +
                            "\" of the page cannot be used: " + gnutls_strerror(error));
    }
    const gnutls_datum_t authority = DatumOf(secrets.Authority);
    if (!secrets.Authority.empty() && gnutls_certificate_set_x509_trust_mem(raw, &authority, GNUTLS_X509_FMT_PEM) <= 0)
    {
        throw WrongArgument("\"" + settings.AuthorityFile + "\" has no certificate of an authority");
    }
}
} // namespace

PageSecrets PageSecrets::Load(const PageSettings& settings)
{
    PageSecrets secrets{TextOf(settings.CertificateFile, Readers::Anybody),
                        TextOf(settings.KeyFile, Readers::OwnerAlone), TextOf(settings.AuthorityFile, Readers::Anybody),
                        TextOf(settings.TokenFile, Readers::OwnerAlone)};
    if (!settings.CertificateFile.empty())
    {
        CheckTls(secrets, settings);
    }
    if (!settings.AuthorityFile.empty() && secrets.Authority.empty())
    {
        throw WrongArgument("\"" + settings.AuthorityFile + "\" is empty");
    }
    if (!settings.TokenFile.empty())
    {
        secrets.Token.resize(std::min(secrets.Token.find_first_of("\r\n"), secrets.Token.size()));
        if (const std::string weakness = TokenGate::WeaknessOf(secrets.Token); !weakness.empty())
        {
            throw WrongArgument("the token in \"" + settings.TokenFile + "\" " + weakness +
                                ": \"openssl rand -hex 32\" makes a better one");
        }
    }
    return secrets;
}
} // namespace Zent::Discovery::Page
