#pragma once

#include "system/AdoptionCheck.h"
#include "system/Boolean.h"
#include "system/Exceptions.h"
#include "system/Int32.h"
#include "system/IntPtr.h"
#include "system/RefCounter.h"
#include "system/String.h"

#include <concepts>
#include <cstddef>
#include <functional>
#include <memory>
#include <new>
#include <utility>

namespace Nfx::System
{
/// Shares one heap object among any number of owners; the last one to let go deletes it through its virtual
/// destructor. Copies may be made and dropped on different threads; one SmartPointer variable must not be assigned on
/// one thread while another reads it.
///
/// A raw pointer is adopted once, in the expression that allocates it: a second adoption would delete it twice. Builds
/// with NFX_CHECK_ADOPTION raise InvalidOperationException there.
/// Assignment releases before it takes: assigning a SmartPointer to itself leaves it empty, and assigning from
/// something that only the target keeps alive is a fault of the caller.
template <class T>
class SmartPointer final : public Object
{
public:
    SmartPointer() noexcept = default;

    SmartPointer(std::nullptr_t) noexcept {}

    /// Adopts the object; null gives an empty pointer. When there is no memory for the counter the object is deleted.
    explicit SmartPointer(T* object) { Adopt(object); }

    /// Constructs an object and adopts it, with one allocation for the object and its counter.
    template <class... TArguments>
    static SmartPointer Create(TArguments&&... arguments)
    {
        auto holder = std::make_unique<_RefCounterWithObject<T>>();
        SmartPointer created;
        created.pointer = new (holder->Place()) T(std::forward<TArguments>(arguments)...);
        created.counter = holder.release();
        created.counter->Increment();
        Note(created.pointer);
        return created;
    }

    SmartPointer(const SmartPointer& source) noexcept
        : Object()
        , pointer(source.pointer)
        , counter(source.counter)
    {
        Share();
    }

    SmartPointer(SmartPointer&& source) noexcept
        : pointer(std::exchange(source.pointer, nullptr))
        , counter(std::exchange(source.counter, nullptr))
    {
    }

    /// Shares an object held as a derived class, or as a class that implements this interface.
    template <class U>
    requires std::convertible_to<U*, T*> SmartPointer(const SmartPointer<U>& source)
    noexcept
        : pointer(source.pointer)
        , counter(source.counter)
    {
        Share();
    }

    /// Takes over what is held as a derived class, or as a class that implements this interface.
    template <class U>
    requires std::convertible_to<U*, T*> SmartPointer(SmartPointer<U>&& source)
    noexcept
        : pointer(std::exchange(source.pointer, nullptr))
        , counter(std::exchange(source.counter, nullptr))
    {
    }

    ~SmartPointer() override { Release(); }

    SmartPointer& operator=(const SmartPointer& source)
    {
        Assign(&source);
        return *this;
    }

    SmartPointer& operator=(SmartPointer&& source) noexcept
    {
        Release();
        pointer = std::exchange(source.pointer, nullptr);
        counter = std::exchange(source.counter, nullptr);
        return *this;
    }

    /// Releases the current object, then adopts another; null just releases.
    SmartPointer& operator=(T* object)
    {
        Release();
        Adopt(object);
        return *this;
    }

    /// Releases the current object, then shares the source's.
    /// @throws ArgumentNullException when there is no source; nothing changes.
    SmartPointer& Assign(const SmartPointer* source)
    {
        if (source == nullptr)
        {
            throw ArgumentNullException("include/system/SmartPointer", 186);
        }
        Release();
        pointer = source->pointer;
        counter = source->counter;
        Share();
        return *this;
    }

    /// @throws NullPointerException when the pointer is empty.
    T* operator->() const { return Get(); }

    /// @throws NullPointerException when the pointer is empty.
    T& operator*() const { return *Get(); }

    bool IsNull() const noexcept { return pointer == nullptr && counter == nullptr; }

    friend bool operator==(const SmartPointer& left, std::nullptr_t) noexcept { return left.IsNull(); }

    /// The same object held as another class; empty when it is not of that class.
    template <class U>
    SmartPointer<U> As() const noexcept
    {
        SmartPointer<U> result;
        U* object = dynamic_cast<U*>(pointer);
        if (object != nullptr)
        {
            result.pointer = object;
            result.counter = counter;
            result.Share();
        }
        return result;
    }

    /// False when either side is empty, true when both share one counter, otherwise what the objects' own Equals says.
    Boolean Equals(const Object* object) const override
    {
        const SmartPointer* other = dynamic_cast<const SmartPointer*>(object);
        if (other == nullptr || counter == nullptr || other->counter == nullptr)
        {
            return false;
        }
        if (counter == other->counter)
        {
            return true;
        }
        if constexpr (std::derived_from<T, Object>)
        {
            return pointer->Equals(other->pointer);
        }
        else
        {
            const Object* mine = dynamic_cast<const Object*>(pointer);
            return mine != nullptr && mine->Equals(dynamic_cast<const Object*>(other->pointer));
        }
    }

    /// The hash of the address that is held: objects that are equal by their values have different ones.
    Int32 GetHashCode() const override { return Int32(static_cast<std::int32_t>(std::hash<const void*>{}(pointer))); }

    String ToString() const override
    {
        if (counter == nullptr)
        {
            return "SmartPointer [null]";
        }
        return "SmartPointer [Pointer=" + IntPtr(pointer).ToString() +
               ", Aliases Count=" + counter->Count().ToString() + "]";
    }

private:
    template <class U>
    friend class SmartPointer;

    T* Get() const
    {
        if (counter == nullptr)
        {
            throw NullPointerException("include/system/SmartPointer", 109);
        }
        return pointer;
    }

    void Adopt(T* object)
    {
        if (object == nullptr)
        {
            return;
        }
        Note(object);
        try
        {
            counter = new _RefCounter();
        }
        catch (...) // whatever stops the counter must not leak the object that was handed over
        {
            Delete(object);
            throw;
        }
        pointer = object;
        counter->Increment();
    }

    void Share() noexcept
    {
        if (counter != nullptr)
        {
            counter->Increment();
        }
    }

    void Release() noexcept
    {
        T* const releasedObject = std::exchange(pointer, nullptr);
        _RefCounter* const releasedCounter = std::exchange(counter, nullptr);
        if (releasedCounter == nullptr || releasedCounter->Decrement() != 0)
        {
            return;
        }
        if (releasedCounter->HoldsObject())
        {
            Forget(releasedObject);
            releasedObject->~T();
            delete releasedCounter;
        }
        else
        {
            delete releasedCounter;
            Delete(releasedObject);
        }
    }

    static void Delete(T* object) noexcept
    {
        Forget(object);
        delete object;
    }

    static void Note([[maybe_unused]] const T* object)
    {
#if defined(NFX_CHECK_ADOPTION)
        AdoptionCheck::Adopt(object);
#endif
    }

    static void Forget([[maybe_unused]] const T* object) noexcept
    {
#if defined(NFX_CHECK_ADOPTION)
        AdoptionCheck::Release(object);
#endif
    }

    T* pointer = nullptr;
    _RefCounter* counter = nullptr;
};
} // namespace Nfx::System
