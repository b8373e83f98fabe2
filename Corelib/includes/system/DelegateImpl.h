#pragma once

#include "system/Boolean.h"
#include "system/Delegate.h"
#include "system/SmartPointer.h"

namespace Nfx::System
{
/// Calls a member function of a target, which must outlive the delegate's last call.
template <class TTarget, class... TArgs>
class MemberDelegate final : public Delegate<TArgs...>
{
public:
    using Method = void (TTarget::*)(TArgs...);

    MemberDelegate(TTarget& target, Method method) noexcept
        : target(target)
        , method(method)
    {
    }

    void Invoke(TArgs... args) override { (target.*method)(args...); }

    Boolean Equals(const Object* object) const override
    {
        const MemberDelegate* other = dynamic_cast<const MemberDelegate*>(object);
        return other != nullptr && &other->target == &target && other->method == method;
    }

private:
    TTarget& target;
    const Method method;
};

/// Calls a free function.
template <class... TArgs>
class FunctionDelegate final : public Delegate<TArgs...>
{
public:
    using Function = void (*)(TArgs...);

    explicit FunctionDelegate(Function function) noexcept
        : function(function)
    {
    }

    void Invoke(TArgs... args) override { function(args...); }

    Boolean Equals(const Object* object) const override
    {
        const FunctionDelegate* other = dynamic_cast<const FunctionDelegate*>(object);
        return other != nullptr && other->function == function;
    }

private:
    const Function function;
};

/// Binds a member function; the target must outlive the delegate's last call.
template <class TTarget, class... TArgs>
SmartPointer<Delegate<TArgs...>> MakeDelegate(TTarget& target, void (TTarget::*method)(TArgs...))
{
    return SmartPointer<Delegate<TArgs...>>(new MemberDelegate<TTarget, TArgs...>(target, method));
}

/// Binds a free function.
template <class... TArgs>
SmartPointer<Delegate<TArgs...>> MakeDelegate(void (*function)(TArgs...))
{
    return SmartPointer<Delegate<TArgs...>>(new FunctionDelegate<TArgs...>(function));
}
} // namespace Nfx::System
