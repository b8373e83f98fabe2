#pragma once

#include "System/Threading/MonitorData.h"
#include "system/Immortal.h"

#include <map>
#include <memory>

namespace Nfx::System::Threading
{
/// The locks of objects that threads hold or want at the moment, one table per process. Any thread.
class ObjectMonitors final
{
public:
    static ObjectMonitors& Instance();

    ObjectMonitors(const ObjectMonitors&) = delete;
    ObjectMonitors& operator=(const ObjectMonitors&) = delete;

    void Enter(const Object& object);

    /// The lock of an object that the calling thread owns; null otherwise.
    Monitor::MonitorData* FindMine(const Object& object);

    /// Gives up one entry; false when the calling thread does not own the lock.
    bool Exit(const Object& object);

private:
    friend class Immortal<ObjectMonitors>;

    struct Entry
    {
        Monitor::MonitorData Data;
        std::int32_t Users = 0; // entries that were made or are wanted; guarded by access
    };

    ObjectMonitors() = default;

    /// Counts a user; without access. The lock stays until Unuse.
    Monitor::MonitorData& Use(const Object& object);

    /// Once for each Use; without access, and after the last exit that belongs to it.
    void Unuse(const Object& object);

    Monitor access;
    std::map<const Object*, std::unique_ptr<Entry>> entries NFX_GUARDED_BY(access);
};
} // namespace Nfx::System::Threading
