#include "ProcessState.h"

#include <arpa/inet.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <netinet/in.h>
#include <string>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Tests
{
namespace
{
namespace fs = std::filesystem;

std::int64_t Entries(const char* folder)
{
    return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

bool IsBoundToEveryAddress(int socket, std::uint16_t port)
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    return getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) == 0 && address.sin_family == AF_INET &&
           address.sin_addr.s_addr == htonl(INADDR_ANY) && address.sin_port == htons(port);
}
} // namespace

ProcessState CurrentState()
{
    std::int64_t total = 0;
    std::int64_t resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return {Entries("/proc/self/fd"), Entries("/proc/self/task"), resident * (sysconf(_SC_PAGESIZE) / 1024)};
}

bool ShutDownSocketOn(std::uint16_t port)
{
    // Works on duplicates: the library may close its descriptor at any moment, and the number may then be another's.
    const int self = static_cast<int>(syscall(SYS_pidfd_open, getpid(), 0));
    bool isDone = false;
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc/self/fd"))
    {
        const int number = std::stoi(entry.path().filename().string());
        const int duplicate = static_cast<int>(syscall(SYS_pidfd_getfd, self, number, 0));
        if (duplicate >= 0)
        {
            if (IsBoundToEveryAddress(duplicate, port))
            {
                shutdown(duplicate, SHUT_RDWR); // says ENOTCONN, and wakes the receiver all the same
                isDone = true;
            }
            close(duplicate);
        }
    }
    close(self);
    return isDone;
}
} // namespace Tests
