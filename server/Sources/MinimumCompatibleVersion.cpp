#include "Server/MinimumCompatibleVersion.h"

#include "system/Guarded.h"
#include "system/Immortal.h"

#include <optional>

namespace Zent::Discovery::Server
{
using Nfx::System::Guarded;
using Nfx::System::Immortal;
using Nfx::System::Version;

namespace
{
using Minimum = std::optional<Version>; // empty until it is set

Guarded<Minimum>& TheMinimum()
{
    static const Immortal<Guarded<Minimum>> minimum;
    return minimum.Get();
}
} // namespace

Version MinimumCompatibleVersion::Get()
{
    return TheMinimum().Use([](const Minimum& minimum) { return minimum.value_or(Version()); });
}

void MinimumCompatibleVersion::Set(const Version& version)
{
    TheMinimum().Use([&](Minimum& minimum) { minimum = version; });
}

bool MinimumCompatibleVersion::IsSet()
{
    return TheMinimum().Use([](const Minimum& minimum) { return minimum.has_value(); });
}
} // namespace Zent::Discovery::Server
