#include "ExceptionGuard.h"

#include "Discovery/DiscoveryLogger.h"
#include "system/LogStreams/LogStreamChannel.h"

namespace Zent::Discovery::ExtC
{
using Nfx::System::Exception;
using Nfx::System::OutOfMemoryException;
using Nfx::System::LogStreams::LogStreamChannel;

std::int32_t ExceptionGuard::Report(const Exception& exception) noexcept
{
    try
    {
        DiscoveryLogger::GetInstance().Log(LogStreamChannel("DiscoveryServerExtCFacade"),
                                           "Exception caught in ExtC layer.", exception);
    }
    catch (const std::bad_alloc&)
    {
        // Without memory there is no line; the code still says what happened.
    }
    catch (const OutOfMemoryException&)
    {
        // Nor without the locks of a log that was never opened.
    }
    return exception.GetError().Code();
}
} // namespace Zent::Discovery::ExtC
