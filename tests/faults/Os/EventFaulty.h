#pragma once

#include "Os/IEvent.h"

namespace Tests
{
/// The platform's events, whose creation fails as Faults says.
class EventFaulty final : public Nfx::Os::IEvent
{
public:
    explicit EventFaulty(Nfx::Os::IEvent& real)
        : real(real)
    {
    }

    bool Close(Nfx::Os::ObjectHandle event) override;
    bool Create(Nfx::Os::ObjectHandle& event,
                bool signalled,
                bool manualReset,
                std::string_view name,
                Nfx::Os::CreateStatus& status) override;
    bool Open(Nfx::Os::ObjectHandle& event, std::string_view name) override;

    bool Reset(Nfx::Os::ObjectHandle event) override { return real.Reset(event); }

    bool Set(Nfx::Os::ObjectHandle event) override { return real.Set(event); }

    bool Wait(Nfx::Os::ObjectHandle event, std::int32_t timeout) override { return real.Wait(event, timeout); }

private:
    Nfx::Os::IEvent& real;
};
} // namespace Tests
