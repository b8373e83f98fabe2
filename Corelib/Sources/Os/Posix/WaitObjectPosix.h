#pragma once

#include "Os/Posix/WaitablePosix.h"
#include "Os/WaitObject.h"

#include <atomic>
#include <memory>
#include <string>
#include <string_view>

namespace Nfx::Os
{
/// What a handle stands for. Objects with a name are in one table of the process; a name belongs to the first object
/// that takes it, whatever its kind, until the last handle is closed.
class WaitObjectPosix : public WaitablePosix
{
public:
    template <class T>
    static T& Of(ObjectHandle handle) noexcept
    {
        return *static_cast<T*>(reinterpret_cast<WaitObjectPosix*>(handle));
    }

    /// A handle of the object or, when one of its kind has the name already, of that one. Null counts as a failure.
    static CreateStatus Publish(std::unique_ptr<WaitObjectPosix> object, std::string_view name, ObjectHandle& handle);

    /// Another handle of the object of this kind that has the name; false when there is none.
    template <class T>
    static bool Open(std::string_view name, ObjectHandle& handle)
    {
        return OpenIf([](const WaitObjectPosix& object) { return dynamic_cast<const T*>(&object) != nullptr; }, name,
                      handle);
    }

    static void Close(ObjectHandle handle);

protected:
    /// Keeps the object until it is dropped as often; all its handles together are one share.
    void Share() noexcept;
    void Drop() noexcept;

private:
    using IsWanted = bool (*)(const WaitObjectPosix& object);
    static bool OpenIf(IsWanted isWanted, std::string_view name, ObjectHandle& handle);

    std::string name;         // constant once published
    std::int32_t handles = 1; // guarded by the table's lock
    std::atomic<std::int32_t> shares{1};
};
} // namespace Nfx::Os
