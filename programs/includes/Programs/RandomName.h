#pragma once

#include <string>

namespace Zent::Discovery::Programs
{
/// Names for what no other program, and no other start of this one, may be taken for. Any thread.
class RandomName final
{
public:
    RandomName() = delete;

    /// 16 hexadecimal digits.
    static std::string Make();
};
} // namespace Zent::Discovery::Programs
