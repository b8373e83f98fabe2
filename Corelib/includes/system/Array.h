#pragma once

#include "system/Exceptions.h"

#include <cstdint>
#include <vector>

namespace Nfx::System
{
/// A fixed number of elements with checked access. Not locked.
template <class T>
class Array final : public Object
{
public:
    /// @throws ArgumentOutOfRangeException when length is negative.
    explicit Array(std::int32_t length)
        : elements(CheckedLength(length))
    {
    }

    Int32 Length() const noexcept { return static_cast<std::int32_t>(elements.size()); }

    /// @throws IndexOutOfRangeException for an index outside of 0 to Length() - 1.
    T& operator[](std::int32_t index) { return elements[CheckedIndex(index)]; }

    const T& operator[](std::int32_t index) const { return elements[CheckedIndex(index)]; }

    /// The elements in a row.
    T* Data() noexcept { return elements.data(); }

    const T* Data() const noexcept { return elements.data(); }

    template <class TAction>
    void ForEach(TAction&& action) const
    {
        for (const T& element : elements)
        {
            action(element);
        }
    }

private:
    static std::size_t CheckedLength(std::int32_t length)
    {
        if (length < 0)
        {
            throw ArgumentOutOfRangeException("Corelib/includes/system/Array", __LINE__);
        }
        return static_cast<std::size_t>(length);
    }

    std::size_t CheckedIndex(std::int32_t index) const
    {
        if (index < 0 || static_cast<std::size_t>(index) >= elements.size())
        {
            throw IndexOutOfRangeException("Corelib/includes/system/Array", __LINE__);
        }
        return static_cast<std::size_t>(index);
    }

    std::vector<T> elements;
};
} // namespace Nfx::System
