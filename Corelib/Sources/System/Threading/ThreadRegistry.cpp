#include "System/Threading/ThreadRegistry.h"

#include "system/Collections/Generic/Dictionary.h"
#include "system/Exceptions.h"
#include "system/Immortal.h"
#include "system/Threading/Lock.h"

#include <new>

namespace Nfx::System::Threading
{
namespace
{
class Table final
{
public:
    static Table& Instance()
    {
        static const Immortal<Table> table;
        return table.Get();
    }

    void Reserve()
    {
        const Lock lock(access);
        const std::size_t places = threads.Count() + reserved + 1;
        threads.Reserve(places);
        ids.Reserve(places);
        ++reserved;
    }

    void GiveBack()
    {
        const Lock lock(access);
        --reserved;
    }

    void Add(const UInt64& id, const SmartPointer<Thread::ThreadData>& data)
    {
        const Lock lock(access);
        if (threads.TryAdd(id, data)) // one of this id may have been ended by somebody else and not been removed
        {
            ids.Add(id);
        }
    }

    void Remove(const UInt64& id)
    {
        const Lock lock(access);
        threads.Remove(id);
        for (std::int32_t index = 0; index < ids.Count(); ++index)
        {
            if (ids[index] == id)
            {
                ids.RemoveAt(index);
                return;
            }
        }
    }

    Collections::Generic::List<UInt64> Ids() const
    {
        const Lock lock(access);
        return ids;
    }

private:
    mutable Monitor access; // taken after a thread's control
    Collections::Generic::Dictionary<UInt64, SmartPointer<Thread::ThreadData>> threads NFX_GUARDED_BY(access);
    Collections::Generic::List<UInt64> ids NFX_GUARDED_BY(access);
    std::size_t reserved NFX_GUARDED_BY(access) = 0; // places of threads that are being started
};
} // namespace

ThreadRegistry::Place::Place()
{
    try
    {
        Table::Instance().Reserve();
    }
    catch (const std::bad_alloc&)
    {
        throw OutOfMemoryException("Corelib/Sources/System/Threading/ThreadRegistry", __LINE__);
    }
}

ThreadRegistry::Place::~Place()
{
    Table::Instance().GiveBack();
}

void ThreadRegistry::Place::Take(const UInt64& id, const SmartPointer<Thread::ThreadData>& data) noexcept
{
    Table::Instance().Add(id, data);
}

void ThreadRegistry::Remove(const UInt64& id) noexcept
{
    Table::Instance().Remove(id);
}

Collections::Generic::List<UInt64> ThreadRegistry::Ids()
{
    return Table::Instance().Ids();
}
} // namespace Nfx::System::Threading
