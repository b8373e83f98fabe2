#pragma once

#include <type_traits>

namespace Nfx::System
{
/// Finds raw pointers that two SmartPointers adopt: each would delete the object. Builds with NFX_CHECK_ADOPTION ask it
/// at every adoption; the others do not pay for it. Any thread.
class AdoptionCheck final
{
public:
    AdoptionCheck() = delete;

    /// @throws InvalidOperationException when the object has been adopted and not been deleted since.
    template <class T>
    static void Adopt(const T* object)
    {
        Add(Address(object));
    }

    /// Before the object is deleted.
    template <class T>
    static void Release(const T* object) noexcept
    {
        Remove(Address(object));
    }

private:
    // The same one however the object is held: as a class, as its base or as what it implements.
    template <class T>
    static const void* Address(const T* object) noexcept
    {
        if constexpr (std::is_polymorphic_v<T>)
        {
            return dynamic_cast<const void*>(object);
        }
        else
        {
            return object;
        }
    }

    static void Add(const void* address);
    static void Remove(const void* address) noexcept;
};
} // namespace Nfx::System
