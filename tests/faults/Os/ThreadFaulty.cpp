#include "Os/ThreadFaulty.h"

#include "Os/Faults.h"

namespace Tests
{
using Nfx::Os::ThreadRecord;

bool ThreadFaulty::Close(ThreadRecord* thread)
{
    Faults::CountClosed();
    return real.Close(thread);
}

ThreadRecord* ThreadFaulty::Create(Nfx::Os::ThreadRoutine start,
                                   void* parameter,
                                   std::uint64_t& threadId,
                                   std::uint32_t stackSize)
{
    if (Faults::Strikes(Call::CreateThread))
    {
        return nullptr;
    }
    ThreadRecord* const thread = real.Create(start, parameter, threadId, stackSize);
    Faults::CountOpened(thread != nullptr);
    Faults::Strikes(Call::AfterCreateThread);
    return thread;
}
} // namespace Tests
