#pragma once

#include "DiscoverySession.h"

namespace Tests
{
/// The functions of the library that the program is linked to.
inline const Zent::Discovery::DiscoveryFunctions& Server()
{
    return Zent::Discovery::DiscoveryFunctions::Linked();
}
} // namespace Tests
