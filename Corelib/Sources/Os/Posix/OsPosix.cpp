#include "Os/IOs.h"
#include "Os/Posix/HostMemoryPosix.h"
#include "Os/Posix/MonitorPosix.h"

namespace Nfx::Os
{
namespace
{
class OsPosix final : public IOs
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
    static OsPosix& platform = *new OsPosix();
    return platform;
}
} // namespace Nfx::Os
