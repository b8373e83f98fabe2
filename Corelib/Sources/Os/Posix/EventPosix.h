#pragma once

#include "Os/IEvent.h"

namespace Nfx::Os
{
class EventPosix final : public IEvent
{
public:
    bool Close(ObjectHandle event) override;
    bool Create(
        ObjectHandle& event, bool signalled, bool manualReset, std::string_view name, CreateStatus& status) override;
    bool Open(ObjectHandle& event, std::string_view name) override;
    bool Reset(ObjectHandle event) override;
    bool Set(ObjectHandle event) override;
    bool Wait(ObjectHandle event, std::int32_t timeout) override;
};
} // namespace Nfx::Os
