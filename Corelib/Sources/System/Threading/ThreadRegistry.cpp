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

    void Add(const UInt64& id, const SmartPointer<Thread::ThreadData>& data)
    {
        const Lock lock(access);
        ids.Add(id);
        try
        {
            threads.Add(id, data);
        }
        catch (...) // the two go together
        {
            ids.RemoveAt(ids.Count() - 1);
            throw;
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
};
} // namespace

void ThreadRegistry::Prepare()
{
    Table::Instance();
}

void ThreadRegistry::Add(const UInt64& id, const SmartPointer<Thread::ThreadData>& data) noexcept
{
    try
    {
        Table::Instance().Add(id, data);
    }
    catch (const std::bad_alloc&)
    {
        // the thread runs already, and keeps its data itself
    }
    catch (const ArgumentException&)
    {
        // nor does it matter when one of this id was ended by somebody else and has not been removed
    }
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
