#include "ExceptionGuard.h"

#include "Discovery/ComponentLog.h"

namespace Zent::Discovery::ExtC
{
using Nfx::System::Exception;

std::int32_t ExceptionGuard::Report(const Exception& exception) noexcept
{
    // Without memory there is no line; the code still says what happened.
    Attempt(
        [&] { ComponentLog::Of<"DiscoveryServerExtCFacade">().Write("Exception caught in ExtC layer.", exception); });
    return exception.GetError().Code();
}
} // namespace Zent::Discovery::ExtC
