#include "system/Threading/Monitor.h"

#include "System/Threading/MonitorData.h"
#include "System/Threading/ObjectMonitors.h"
#include "system/Exceptions.h"

namespace Nfx::System::Threading
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/Threading/Monitor";

std::int32_t CheckedTimeout(std::int32_t timeout)
{
    if (timeout < -1)
    {
        throw Exception(ErrorCodes::InvalidParameterValue, SourceName, __LINE__);
    }
    return timeout;
}

void RequireMine(bool isMine)
{
    if (!isMine)
    {
        throw InvalidOperationException(SourceName, __LINE__);
    }
}

Monitor::MonitorData& MineOf(const Object& object)
{
    Monitor::MonitorData* const data = ObjectMonitors::Instance().FindMine(object);
    RequireMine(data != nullptr);
    return *data;
}
} // namespace

Monitor::Monitor()
    : data(std::make_unique<MonitorData>())
{
}

Monitor::~Monitor() = default;

void Monitor::Enter()
{
    data->Enter();
}

void Monitor::Exit()
{
    RequireMine(data->IsMine());
    data->Exit();
}

Boolean Monitor::Wait(Int32 timeout)
{
    RequireMine(data->IsMine());
    return data->Wait(CheckedTimeout(timeout));
}

void Monitor::Pulse()
{
    RequireMine(data->IsMine());
    data->Pulse();
}

void Monitor::PulseAll()
{
    RequireMine(data->IsMine());
    data->PulseAll();
}

void Monitor::Enter(const Object& object)
{
    ObjectMonitors::Instance().Enter(object);
}

void Monitor::Exit(const Object& object)
{
    RequireMine(ObjectMonitors::Instance().Exit(object));
}

Boolean Monitor::Wait(const Object& object, Int32 timeout)
{
    return MineOf(object).Wait(CheckedTimeout(timeout));
}

void Monitor::Pulse(const Object& object)
{
    MineOf(object).Pulse();
}

void Monitor::PulseAll(const Object& object)
{
    MineOf(object).PulseAll();
}
} // namespace Nfx::System::Threading
