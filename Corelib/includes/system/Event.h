#pragma once

#include "system/Collections/Generic/List.h"
#include "system/DelegateImpl.h"
#include "system/EventArgs.h"
#include "system/Threading/Lock.h"
#include "system/Threading/Monitor.h"

namespace Nfx::System
{
/// A list of handlers that are called, in the order in which they were added, each time the event is raised.
///
/// Any thread may add, remove and raise at any time, and so may a handler that is being called: handlers run outside
/// the lock. A raise calls the handlers that the event had when it began, but none whose removal has returned before
/// its turn. Only Add and Handlers need memory.
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
        handlers.Add(handler);
    }

    /// Removes the first handler that equals the given one; false when there is none.
    bool Remove(const EventHandler<TEventArgs>& handler)
    {
        const Threading::Lock lock(handlersLock);
        for (Handler& added : handlers)
        {
            if (added != nullptr && added->Equals(&handler))
            {
                added = nullptr;
                CloseGaps();
                return true;
            }
        }
        return false;
    }

    /// Removes all handlers.
    void Clear()
    {
        const Threading::Lock lock(handlersLock);
        for (Handler& added : handlers)
        {
            added = nullptr;
        }
        CloseGaps();
    }

    /// The handlers of this moment, in the order in which they were added.
    Collections::Generic::List<Handler> Handlers() const
    {
        const Threading::Lock lock(handlersLock);
        Collections::Generic::List<Handler> present = handlers;
        present.RemoveAll(&IsGap);
        return present;
    }

    /// Calls every handler on this thread; what a handler throws ends the round and goes to the caller.
    void Raise(Object* sender, const TEventArgs& args)
    {
        const Round round(*this);
        for (std::int32_t index = 0; index < round.Count(); ++index)
        {
            const Handler handler = At(index);
            if (handler != nullptr)
            {
                handler->Invoke(sender, args);
            }
        }
    }

private:
    /// Keeps the places of the handlers while a raise goes through them.
    class Round final
    {
    public:
        explicit Round(Event& event)
            : event(event)
        {
            const Threading::Lock lock(event.handlersLock);
            ++event.rounds;
            count = event.handlers.Count();
        }

        ~Round()
        {
            const Threading::Lock lock(event.handlersLock);
            --event.rounds;
            event.CloseGaps();
        }

        Round(const Round&) = delete;
        Round& operator=(const Round&) = delete;

        std::int32_t Count() const noexcept { return count; }

    private:
        Event& event;
        std::int32_t count;
    };

    static bool IsGap(const Handler& handler) { return handler == nullptr; }

    Handler At(std::int32_t index) const
    {
        const Threading::Lock lock(handlersLock);
        return handlers[index];
    }

    /// Takes the places of removed handlers away, unless a round counts on them.
    void CloseGaps() NFX_REQUIRES(handlersLock)
    {
        if (rounds == 0)
        {
            handlers.RemoveAll(&IsGap);
        }
    }

    mutable Threading::Monitor handlersLock;
    Collections::Generic::List<Handler> handlers NFX_GUARDED_BY(handlersLock); // null where one was removed in a round
    std::int32_t rounds NFX_GUARDED_BY(handlersLock) = 0;                      // raises under way
};
} // namespace Nfx::System
