#pragma once

#include "system/Object.h"

#include <utility>

namespace Nfx::System::Collections::Generic
{
/// One entry of a dictionary.
template <class K, class V>
class KeyValuePair final : public Object
{
public:
    KeyValuePair(K key, V value)
        : key(std::move(key))
        , value(std::move(value))
    {
    }

    const K& Key() const noexcept { return key; }

    const V& Value() const noexcept { return value; }

    V& Value() noexcept { return value; }

private:
    K key;
    V value;
};
} // namespace Nfx::System::Collections::Generic
