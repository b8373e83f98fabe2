#include "Programs/PrivateFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace Zent::Discovery::Programs
{
namespace
{
/// Closes it, too.
class Descriptor final
{
public:
    Descriptor(const std::filesystem::path& path, int flags)
        : value(open(path.c_str(), flags | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR))
    {
        Check(value >= 0);
    }

    ~Descriptor() { close(value); }

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    static void Check(bool isDone)
    {
        if (!isDone)
        {
            throw std::system_error(errno, std::generic_category());
        }
    }

    const int value;
};
} // namespace

void PrivateFile::Append(const std::filesystem::path& path, std::string_view text)
{
    const Descriptor file(path, O_WRONLY | O_APPEND);
    while (!text.empty())
    {
        const ssize_t size = write(file.value, text.data(), text.size());
        Descriptor::Check(size >= 0 || errno == EINTR);
        text.remove_prefix(size > 0 ? static_cast<std::size_t>(size) : 0);
    }
    // What is no file on a disk, such as a pipe, cannot be synchronized.
    Descriptor::Check(fsync(file.value) == 0 || errno == EINVAL || errno == EROFS);
}

void PrivateFile::CreateLike(const std::filesystem::path& path, const std::filesystem::path& other)
{
    struct stat status = {};
    Descriptor::Check(stat(other.c_str(), &status) == 0);
    const Descriptor file(path, O_WRONLY | O_EXCL); // never what somebody has linked there to be given it
    Descriptor::Check(fchown(file.value, status.st_uid, status.st_gid) == 0);
    Descriptor::Check(fchmod(file.value, status.st_mode & ALLPERMS) == 0);
}

FileLock::FileLock(const std::filesystem::path& path)
    : handle(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR))
{
    Descriptor::Check(handle >= 0);
    int result = 0;
    do
    {
        result = flock(static_cast<int>(handle), LOCK_EX);
    } while (result != 0 && errno == EINTR);
    if (result != 0)
    {
        const int error = errno;
        close(static_cast<int>(handle));
        throw std::system_error(error, std::generic_category());
    }
}

FileLock::~FileLock()
{
    close(static_cast<int>(handle));
}
} // namespace Zent::Discovery::Programs
