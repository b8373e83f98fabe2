#pragma once

#include <stdexcept>

namespace Zent::Discovery::Programs
{
/// The user has asked for something that cannot be; what names it and what can be.
class WrongArgument final : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};
} // namespace Zent::Discovery::Programs
