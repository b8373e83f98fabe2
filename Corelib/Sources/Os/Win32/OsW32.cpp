#include "Os/IOs.h"
#include "Os/Win32/HostMemoryW32.h"
#include "Os/Win32/MonitorW32.h"

namespace Nfx::Os
{
namespace
{
class OsW32 final : public IOs
{
public:
    IHostMemory& HostMemory() override { return hostMemory; }

    IMonitor& Monitor() override { return monitor; }

private:
    Os::HostMemory hostMemory;
    Os::Monitor monitor;
};
} // namespace

IOs& Platform()
{
    static OsW32& platform = *new OsW32();
    return platform;
}
} // namespace Nfx::Os
