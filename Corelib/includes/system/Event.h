#pragma once

#include "system/Collections/Generic/List.h"
#include "system/DelegateImpl.h"
#include "system/EventArgs.h"
#include "system/Threading/Lock.h"
#include "system/Threading/Monitor.h"

namespace Nfx::System
{
/// A list of handlers that are called, in the order in which they were added, each time the event is raised.
/// Any thread may add, remove and raise at any time: raising works on a snapshot, outside the lock, so a handler that
/// was just removed may still be called once.
template <class TEventArgs>
class Event final : public Object
{
public:
    using Handler = SmartPointer<EventHandler<TEventArgs>>;

    /// Adds a handler; one that is added twice is called twice.
    /// @throws ArgumentNullException when the handler is null.
    void Add(const Handler& handler)
    {
        if (handler == nullptr)
        {
            throw ArgumentNullException("Corelib/includes/system/Event", __LINE__);
        }
        const Threading::Lock lock(handlersLock);
        Change().Add(handler);
    }

    /// Removes the first handler that equals the given one; false when there is none.
    bool Remove(const Handler& handler)
    {
        const Threading::Lock lock(handlersLock);
        for (std::int32_t index = 0; index < handlers->Count(); ++index)
        {
            if ((*handlers)[index].Equals(&handler))
            {
                Change().RemoveAt(index);
                return true;
            }
        }
        return false;
    }

    /// Removes all handlers.
    void Clear()
    {
        const Threading::Lock lock(handlersLock);
        Change().Clear();
    }

    Int32 Count() const
    {
        const Threading::Lock lock(handlersLock);
        return handlers->Count();
    }

    /// The handlers of this moment, in the order in which they were added.
    Collections::Generic::List<Handler> Handlers() const { return *Snapshot(); }

    /// Calls every handler on this thread; what a handler throws ends the round and goes to the caller.
    void Raise(Object* sender, const TEventArgs& args) const
    {
        const SmartPointer<const HandlerList> current = Snapshot();
        for (const Handler& handler : *current)
        {
            handler->Invoke(sender, args);
        }
    }

private:
    using HandlerList = Collections::Generic::List<Handler>;

    SmartPointer<const HandlerList> Snapshot() const
    {
        const Threading::Lock lock(handlersLock);
        return handlers;
    }

    /// A new list in place of the one that somebody may be going through.
    HandlerList& Change() NFX_REQUIRES(handlersLock)
    {
        handlers = SmartPointer<HandlerList>::Create(*handlers);
        return *handlers;
    }

    mutable Threading::Monitor handlersLock;
    SmartPointer<HandlerList> handlers NFX_GUARDED_BY(handlersLock) = SmartPointer<HandlerList>::Create();
};
} // namespace Nfx::System
