#include "Os/Posix/WaitObjectPosix.h"

#include "system/Immortal.h"

#include <map>
#include <new>
#include <typeinfo>

namespace Nfx::Os
{
namespace
{
struct NamedObjects
{
    ConditionPosix Lock;
    std::map<std::string, WaitObjectPosix*, std::less<>> ByName NFX_GUARDED_BY(Lock);
};

NamedObjects& Named()
{
    static const System::Immortal<NamedObjects> named;
    return named.Get();
}

ObjectHandle HandleOf(WaitObjectPosix& object)
{
    return reinterpret_cast<ObjectHandle>(&object);
}

bool IsName(std::string_view name)
{
    return name.find('\0') == std::string_view::npos;
}
} // namespace

CreateStatus WaitObjectPosix::Publish(std::unique_ptr<WaitObjectPosix> object,
                                      std::string_view name,
                                      ObjectHandle& handle)
{
    if (name.size() > LongestObjectName)
    {
        return CreateStatus::NameTooLong;
    }
    if (object == nullptr || !IsName(name))
    {
        return CreateStatus::Failed;
    }
    if (name.empty())
    {
        handle = HandleOf(*object.release());
        return CreateStatus::Created;
    }
    try
    {
        object->name = name;
        NamedObjects& named = Named();
        const ConditionPosix::Guard lock(named.Lock);
        const auto [position, isNew] = named.ByName.try_emplace(object->name, object.get());
        const WaitObjectPosix& unpublished = *object;
        WaitObjectPosix& published = *position->second;
        if (typeid(published) != typeid(unpublished))
        {
            return CreateStatus::Failed;
        }
        handle = HandleOf(published);
        if (isNew)
        {
            static_cast<void>(object.release()); // is published
            return CreateStatus::Created;
        }
        ++published.handles;
        return CreateStatus::Existed;
    }
    catch (const std::bad_alloc&)
    {
        return CreateStatus::Failed;
    }
}

bool WaitObjectPosix::OpenIf(IsWanted isWanted, std::string_view name, ObjectHandle& handle)
{
    NamedObjects& named = Named();
    const ConditionPosix::Guard lock(named.Lock);
    const auto position = named.ByName.find(name);
    if (position == named.ByName.end() || !isWanted(*position->second))
    {
        return false;
    }
    ++position->second->handles;
    handle = HandleOf(*position->second);
    return true;
}

void WaitObjectPosix::Close(ObjectHandle handle)
{
    WaitObjectPosix& object = Of<WaitObjectPosix>(handle);
    if (!object.name.empty())
    {
        NamedObjects& named = Named();
        const ConditionPosix::Guard lock(named.Lock);
        if (--object.handles > 0)
        {
            return;
        }
        named.ByName.erase(object.name);
    }
    object.Drop();
}

void WaitObjectPosix::Share() noexcept
{
    shares.fetch_add(1, std::memory_order_relaxed);
}

void WaitObjectPosix::Drop() noexcept
{
    if (shares.fetch_sub(1, std::memory_order_acq_rel) == 1)
    {
        delete this;
    }
}
} // namespace Nfx::Os
