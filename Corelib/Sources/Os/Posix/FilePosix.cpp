#include "Os/Posix/FilePosix.h"

#include "Os/Posix/FileFailurePosix.h"
#include "Os/Posix/ThreadBlockPosix.h"
#include "system/String.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Nfx::Os
{
namespace
{
/// Keeps SIGXFSZ (a file at the size limit of the process) and SIGPIPE (a pipe without a reader) from ending the host
/// while this thread writes: both go to the thread that called write.
class WriteSignals final
{
public:
    WriteSignals()
    {
        sigemptyset(&pendingBefore);
        if (isOurThread)
        {
            return;
        }
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGXFSZ);
        sigaddset(&signals, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &signals, &previous);
        if (WasBlocked(SIGXFSZ) || WasBlocked(SIGPIPE)) // only what is blocked can be pending
        {
            sigpending(&pendingBefore);
        }
    }

    ~WriteSignals()
    {
        if (!isOurThread && (!WasBlocked(SIGXFSZ) || !WasBlocked(SIGPIPE)))
        {
            pthread_sigmask(SIG_SETMASK, &previous, nullptr);
        }
    }

    WriteSignals(const WriteSignals&) = delete;
    WriteSignals& operator=(const WriteSignals&) = delete;

    /// Takes back the signal that a failed write has raised, so that it is not delivered when the mask is restored. One
    /// that was pending before belongs to the host and stays.
    void TakeBack(int signal) const
    {
        if (sigismember(&pendingBefore, signal) == 1)
        {
            return;
        }
        sigset_t raised;
        sigemptyset(&raised);
        sigaddset(&raised, signal);
        const timespec noWait{};
        while (sigtimedwait(&raised, nullptr, &noWait) < 0 && errno == EINTR)
        {
        }
    }

private:
    bool WasBlocked(int signal) const { return sigismember(&previous, signal) == 1; }

    // The library's own threads block both for good, which saves them a system call a line, and of what they have
    // pending nothing is the host's.
    const bool isOurThread = ThreadBlockPosix::Current() != nullptr;
    sigset_t previous;
    sigset_t pendingBefore;
};

int DescriptorOf(IFile::Handle file)
{
    return static_cast<int>(file);
}
} // namespace

FileResult FilePosix::OpenToAppend(const System::String& path, Handle& file)
{
    // Non-blocking for the sake of pipes alone: one without a reader would hold up the caller, for ever perhaps.
    const int flags = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    int descriptor;
    do
    {
        descriptor = open(path.CString(), flags, 0666);
    } while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0)
    {
        return FileFailurePosix(errno, path);
    }
    file = descriptor;
    return {};
}

FileResult FilePosix::Write(Handle file, const char* bytes, std::size_t size, std::size_t& written)
{
    written = 0;
    const WriteSignals signals;
    ssize_t result;
    do
    {
        result = write(DescriptorOf(file), bytes, size);
    } while (result < 0 && errno == EINTR);
    if (result < 0)
    {
        const int number = errno;
        if (number == EFBIG || number == EPIPE)
        {
            signals.TakeBack(number == EFBIG ? SIGXFSZ : SIGPIPE);
        }
        return FileFailurePosix(number, System::String());
    }
    written = static_cast<std::size_t>(result);
    return {};
}

FileResult FilePosix::Query(Handle file, Properties& properties)
{
    struct stat found;
    if (fstat(DescriptorOf(file), &found) != 0)
    {
        return FileFailurePosix(errno, System::String());
    }
    properties.Size = found.st_size;
    properties.IsRegular = S_ISREG(found.st_mode);
    return {};
}

void FilePosix::Close(Handle file)
{
    close(DescriptorOf(file)); // also after EINTR the descriptor is gone: repeating it could close another thread's
}

bool FilePosix::Exists(const System::String& path)
{
    struct stat found;
    return lstat(path.CString(), &found) == 0;
}

FileResult FilePosix::Rename(const System::String& path, const System::String& newPath)
{
    if (rename(path.CString(), newPath.CString()) != 0)
    {
        return FileFailurePosix(errno, path);
    }
    return {};
}

std::string_view FilePosix::LineEnd()
{
    return "\n";
}

System::String FilePosix::Describe(std::int32_t nativeError)
{
    char buffer[256];
    return strerror_r(nativeError, buffer, sizeof buffer);
}
} // namespace Nfx::Os
