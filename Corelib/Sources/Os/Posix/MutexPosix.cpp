#include "Os/Posix/MutexPosix.h"

#include "Os/Posix/WaitObjectPosix.h"

#include <memory>
#include <new>

namespace Nfx::Os
{
namespace
{
class MutexObject;

// The mutexes that one thread owns: at its end they go to whoever waits for them.
class OwnedMutexes final
{
public:
    OwnedMutexes() = default;
    ~OwnedMutexes();
    OwnedMutexes(const OwnedMutexes&) = delete;
    OwnedMutexes& operator=(const OwnedMutexes&) = delete;

    void Add(MutexObject& mutex) noexcept;
    void Remove(MutexObject& mutex) noexcept;

private:
    MutexObject* first = nullptr;
};

thread_local OwnedMutexes ownedMutexes;

class MutexObject final : public WaitObjectPosix
{
public:
    explicit MutexObject(bool owned)
    {
        const ConditionPosix::Guard lock(condition);
        if (owned)
        {
            Own();
        }
    }

    // Owned only when it got no name and so never was anybody else's.
    ~MutexObject() override
    {
        const ConditionPosix::Guard lock(condition);
        if (owner != nullptr)
        {
            owner->Remove(*this);
        }
    }

    bool Release()
    {
        {
            const ConditionPosix::Guard lock(condition);
            if (owner != &ownedMutexes)
            {
                return false;
            }
            if (--entries > 0)
            {
                return true;
            }
        }
        Disown();
        return true;
    }

    // By the owner only; the mutex may be gone afterwards.
    void Disown()
    {
        ownedMutexes.Remove(*this);
        {
            const ConditionPosix::Guard lock(condition);
            owner = nullptr;
            entries = 0;
            condition.WakeOne();
        }
        Drop();
    }

    MutexObject* Next = nullptr; // these two belong to the owner
    MutexObject* Previous = nullptr;

protected:
    bool TryTake() override NFX_REQUIRES(condition)
    {
        if (owner == nullptr)
        {
            Own();
            return true;
        }
        if (owner == &ownedMutexes)
        {
            ++entries;
            return true;
        }
        return false;
    }

private:
    void Own() NFX_REQUIRES(condition)
    {
        owner = &ownedMutexes;
        entries = 1;
        ownedMutexes.Add(*this);
        Share();
    }

    OwnedMutexes* owner NFX_GUARDED_BY(condition) = nullptr;
    std::int64_t entries NFX_GUARDED_BY(condition) = 0;
};

OwnedMutexes::~OwnedMutexes()
{
    while (first != nullptr)
    {
        first->Disown();
    }
}

void OwnedMutexes::Add(MutexObject& mutex) noexcept
{
    mutex.Previous = nullptr;
    mutex.Next = first;
    if (first != nullptr)
    {
        first->Previous = &mutex;
    }
    first = &mutex;
}

void OwnedMutexes::Remove(MutexObject& mutex) noexcept
{
    if (mutex.Previous != nullptr)
    {
        mutex.Previous->Next = mutex.Next;
    }
    else
    {
        first = mutex.Next;
    }
    if (mutex.Next != nullptr)
    {
        mutex.Next->Previous = mutex.Previous;
    }
}
} // namespace

bool MutexPosix::Close(ObjectHandle mutex)
{
    WaitObjectPosix::Close(mutex);
    return true;
}

bool MutexPosix::Create(ObjectHandle& mutex, bool initiallyOwned, std::string_view name, CreateStatus& status)
{
    std::unique_ptr<WaitObjectPosix> object(new (std::nothrow) MutexObject(initiallyOwned));
    status = WaitObjectPosix::Publish(std::move(object), name, mutex);
    return status == CreateStatus::Created || status == CreateStatus::Existed;
}

bool MutexPosix::Open(ObjectHandle& mutex, std::string_view name)
{
    return WaitObjectPosix::Open<MutexObject>(name, mutex);
}

bool MutexPosix::Release(ObjectHandle mutex, ReleaseStatus& status)
{
    status = WaitObjectPosix::Of<MutexObject>(mutex).Release() ? ReleaseStatus::Released : ReleaseStatus::Refused;
    return status == ReleaseStatus::Released;
}

bool MutexPosix::Wait(ObjectHandle mutex, std::int32_t timeout)
{
    return WaitObjectPosix::Of<MutexObject>(mutex).Wait(timeout);
}
} // namespace Nfx::Os
