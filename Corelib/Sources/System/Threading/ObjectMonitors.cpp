#include "System/Threading/ObjectMonitors.h"

#include "system/Threading/Lock.h"

namespace Nfx::System::Threading
{
ObjectMonitors& ObjectMonitors::Instance()
{
    static const Immortal<ObjectMonitors> instance;
    return instance.Get();
}

void ObjectMonitors::Enter(const Object& object)
{
    Use(object).Enter();
}

Monitor::MonitorData* ObjectMonitors::FindMine(const Object& object)
{
    const Lock lock(access);
    const auto position = entries.find(&object);
    return position != entries.end() && position->second->Data.IsMine() ? &position->second->Data : nullptr;
}

bool ObjectMonitors::Exit(const Object& object)
{
    Monitor::MonitorData* const data = FindMine(object);
    if (data == nullptr)
    {
        return false;
    }
    data->Exit();
    Unuse(object);
    return true;
}

Monitor::MonitorData& ObjectMonitors::Use(const Object& object)
{
    const Lock lock(access);
    auto position = entries.find(&object);
    if (position == entries.end())
    {
        position = entries.emplace(&object, std::make_unique<Entry>()).first;
    }
    ++position->second->Users;
    return position->second->Data;
}

void ObjectMonitors::Unuse(const Object& object)
{
    const Lock lock(access);
    const auto position = entries.find(&object);
    if (--position->second->Users == 0)
    {
        entries.erase(position);
    }
}
} // namespace Nfx::System::Threading
