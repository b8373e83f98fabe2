#pragma once

#include "system/Object.h"

namespace Nfx::System
{
/// A function that is bound and can be called later; two delegates are equal when they call the same function on the
/// same target.
template <class... TArgs>
class Delegate : public Object
{
public:
    virtual void Invoke(TArgs... args) = 0;

protected:
    Delegate() = default;
};

/// What events call: (sender, arguments).
template <class TEventArgs>
using EventHandler = Delegate<Object*, const TEventArgs&>;
} // namespace Nfx::System
