#include "Terminal/ProgramRights.h"

namespace Zent::Discovery::Console
{
void ProgramRights::KeepOnlyFor(const std::string& /*library*/)
{
    // A file gives no rights here.
}
} // namespace Zent::Discovery::Console
