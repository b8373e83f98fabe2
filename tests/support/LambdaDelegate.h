#pragma once

#include "system/Delegate.h"
#include "system/SmartPointer.h"

#include <utility>

/// Calls a function object.
template <class TFunction, class... TArgs>
class LambdaDelegate final : public Nfx::System::Delegate<TArgs...>
{
public:
    explicit LambdaDelegate(TFunction function)
        : function(std::move(function))
    {
    }

    void Invoke(TArgs... args) override { function(args...); }

private:
    TFunction function;
};

/// MakeLambda(f) is a Delegate<>, MakeLambda<A, B>(f) a Delegate<A, B>.
template <class... TArgs, class TFunction>
Nfx::System::SmartPointer<Nfx::System::Delegate<TArgs...>> MakeLambda(TFunction function)
{
    return Nfx::System::SmartPointer<Nfx::System::Delegate<TArgs...>>(
        new LambdaDelegate<TFunction, TArgs...>(std::move(function)));
}
