#include "Os/IOs.h"
#include "Os/Win32/DateTimeW32.h"
#include "Os/Win32/DirectoryW32.h"
#include "Os/Win32/FileW32.h"
#include "Os/Win32/HostMemoryW32.h"
#include "Os/Win32/MonitorW32.h"
#include "Os/Win32/SocketW32.h"
#include "Os/Win32/StringW32.h"

namespace Nfx::Os
{
namespace
{
class OsW32 final : public IOs
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
    DateTimeW32 dateTime;
    DirectoryW32 directory;
    FileW32 file;
    HostMemoryW32 hostMemory;
    Os::Monitor monitor;
    SocketW32 socket;
    StringW32 string;
};
} // namespace

IOs& Platform()
{
    static OsW32& platform = *new OsW32();
    return platform;
}
} // namespace Nfx::Os
