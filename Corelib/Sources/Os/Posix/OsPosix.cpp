#include "Os/IOs.h"
#include "Os/Posix/DateTimePosix.h"
#include "Os/Posix/DirectoryPosix.h"
#include "Os/Posix/FilePosix.h"
#include "Os/Posix/HostMemoryPosix.h"
#include "Os/Posix/MonitorPosix.h"
#include "Os/Posix/SocketPosix.h"
#include "Os/Posix/StringPosix.h"

namespace Nfx::Os
{
namespace
{
class OsPosix final : public IOs
{
public:
    IDateTime& DateTime() override { return dateTime; }

    IDirectory& Directory() override { return directory; }

    IFile& File() override { return file; }

    IHostMemory& HostMemory() override { return hostMemory; }

    IMonitor& Monitor() override { return monitor; }

    ISocket& Socket() override { return socket; }

    IString& String() override { return string; }

private:
    DateTimePosix dateTime;
    DirectoryPosix directory;
    FilePosix file;
    HostMemoryPosix hostMemory;
    Os::Monitor monitor;
    SocketPosix socket;
    StringPosix string;
};
} // namespace

IOs& Platform()
{
    static OsPosix& platform = *new OsPosix();
    return platform;
}
} // namespace Nfx::Os
