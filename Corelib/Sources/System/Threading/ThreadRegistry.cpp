#include "System/Threading/ThreadRegistry.h"

#include "Os/ThreadTable.h"
#include "system/Immortal.h"
#include "system/Threading/Lock.h"

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

    Table() { ids.Reserve(Os::ThreadTable::MaximumThreads); }

    void Add(const UInt64& id)
    {
        const Lock lock(access);
        ids.Add(id);
    }

    void Remove(const UInt64& id)
    {
        const Lock lock(access);
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
    mutable Monitor access;                                        // taken after a thread's control
    Collections::Generic::List<UInt64> ids NFX_GUARDED_BY(access); // never grows: each has a record of its own
};
} // namespace

void ThreadRegistry::Prepare()
{
    Table::Instance();
}

void ThreadRegistry::Add(const UInt64& id) noexcept
{
    Table::Instance().Add(id);
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
