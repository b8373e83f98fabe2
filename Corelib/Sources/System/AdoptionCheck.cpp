#include "system/AdoptionCheck.h"

#include "system/Exceptions.h"
#include "system/Immortal.h"
#include "system/Threading/Lock.h"

#include <new>
#include <set>

namespace Nfx::System
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/AdoptionCheck";

struct Adoptions final
{
    Threading::Monitor Guard;
    std::set<const void*> Addresses NFX_GUARDED_BY(Guard);
};

Adoptions& TheAdoptions()
{
    static const Immortal<Adoptions> adoptions;
    return adoptions.Get();
}
} // namespace

void AdoptionCheck::Add(const void* address)
{
    try
    {
        Adoptions& adoptions = TheAdoptions();
        const Threading::Lock lock(adoptions.Guard);
        if (adoptions.Addresses.insert(address).second)
        {
            return;
        }
    }
    catch (const std::bad_alloc&)
    {
        return; // an object that there is no memory to note goes unchecked
    }
    catch (const OutOfMemoryException&)
    {
        return; // there is not even a lock for the notes
    }
    throw InvalidOperationException("Object adopted by a second SmartPointer.", SourceName, __LINE__);
}

void AdoptionCheck::Remove(const void* address) noexcept
{
    try
    {
        Adoptions& adoptions = TheAdoptions();
        const Threading::Lock lock(adoptions.Guard);
        adoptions.Addresses.erase(address);
    }
    catch (const std::bad_alloc&)
    {
        // nothing has been noted yet
    }
    catch (const OutOfMemoryException&)
    {
        // likewise
    }
}
} // namespace Nfx::System
