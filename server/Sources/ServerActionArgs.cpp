#include "Server/ServerActionArgs.h"

namespace Zent::Discovery::Server
{
using Nfx::System::ArgumentNullException;
using Nfx::System::SmartPointer;

ServerActionArgs::ServerActionArgs(const SmartPointer<ServerAction>& action, std::int64_t datagramSize)
    : action(action)
    , datagramSize(datagramSize)
{
    if (action.IsNull())
    {
        throw ArgumentNullException("Sources/ServerActionArgs", __LINE__);
    }
}
} // namespace Zent::Discovery::Server
