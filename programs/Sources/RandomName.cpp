#include "Programs/RandomName.h"

#include <array>
#include <cstdio>
#include <random>

namespace Zent::Discovery::Programs
{
std::string RandomName::Make()
{
    std::random_device random;
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "%08x%08x", random(), random());
    return text.data();
}
} // namespace Zent::Discovery::Programs
