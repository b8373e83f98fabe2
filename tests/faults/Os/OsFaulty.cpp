#include "Os/OsFaulty.h"

namespace Nfx::Os
{
IOs& Platform()
{
    static Tests::OsFaulty& platform = *new Tests::OsFaulty(RealPlatform());
    return platform;
}
} // namespace Nfx::Os
