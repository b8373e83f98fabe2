#pragma once

#include "system/Exceptions.h"
#include "system/Int32.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace Nfx::System::Collections::Generic
{
/// A growing row of values. Not locked.
template <class T>
class List final : public Object
{
public:
    List() = default;

    List(std::initializer_list<T> values)
        : elements(values)
    {
    }

    void Add(T value) { elements.push_back(std::move(value)); }

    Int32 Count() const noexcept { return static_cast<std::int32_t>(elements.size()); }

    bool IsEmpty() const noexcept { return elements.empty(); }

    void Reserve(std::size_t count) { elements.reserve(count); }

    /// @throws ArgumentOutOfRangeException for an index outside of 0 to Count() - 1.
    T& operator[](std::int32_t index) { return elements[Checked(index)]; }

    const T& operator[](std::int32_t index) const { return elements[Checked(index)]; }

    /// @throws ArgumentOutOfRangeException for an index outside of 0 to Count() - 1.
    void RemoveAt(std::int32_t index)
    {
        elements.erase(elements.begin() + static_cast<std::ptrdiff_t>(Checked(index)));
    }

    /// Removes each value for which isUnwanted(value) is true, in one pass.
    template <class TPredicate>
    void RemoveAll(TPredicate&& isUnwanted)
    {
        std::erase_if(elements, std::forward<TPredicate>(isUnwanted));
    }

    void Clear() noexcept { elements.clear(); }

    /// Calls action(value) for each value in order.
    template <class TAction>
    void ForEach(TAction&& action) const
    {
        for (const T& element : elements)
        {
            action(element);
        }
    }

    auto begin() noexcept { return elements.begin(); }

    auto end() noexcept { return elements.end(); }

    auto begin() const noexcept { return elements.begin(); }

    auto end() const noexcept { return elements.end(); }

private:
    std::size_t Checked(std::int32_t index) const
    {
        if (index < 0 || static_cast<std::size_t>(index) >= elements.size())
        {
            throw ArgumentOutOfRangeException("Corelib/includes/system/Collections/Generic/List", __LINE__);
        }
        return static_cast<std::size_t>(index);
    }

    std::vector<T> elements;
};
} // namespace Nfx::System::Collections::Generic
