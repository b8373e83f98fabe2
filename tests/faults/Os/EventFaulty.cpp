#include "Os/EventFaulty.h"

#include "Os/Faults.h"

namespace Tests
{
using Nfx::Os::CreateStatus;
using Nfx::Os::ObjectHandle;

bool EventFaulty::Close(ObjectHandle event)
{
    Faults::CountClosed();
    return real.Close(event);
}

bool EventFaulty::Create(
    ObjectHandle& event, bool signalled, bool manualReset, std::string_view name, CreateStatus& status)
{
    if (Faults::Strikes(Call::CreateEvent))
    {
        status = CreateStatus::Failed;
        return false;
    }
    const bool isCreated = real.Create(event, signalled, manualReset, name, status);
    Faults::CountOpened(isCreated);
    return isCreated;
}

bool EventFaulty::Open(ObjectHandle& event, std::string_view name)
{
    const bool isOpened = real.Open(event, name);
    Faults::CountOpened(isOpened);
    return isOpened;
}
} // namespace Tests
