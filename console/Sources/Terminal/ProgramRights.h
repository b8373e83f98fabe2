#pragma once

#include <string>

namespace Zent::Discovery::Console
{
/// Rights that a program's file gives to whoever starts it.
class ProgramRights final
{
public:
    ProgramRights() = delete;

    /// Keeps them only where the library that the program loads is the installed one, which none but the administrator
    /// can replace. Before other threads start.
    /// @throws std::runtime_error when the system does not take them back.
    static void KeepOnlyFor(const std::string& library);
};
} // namespace Zent::Discovery::Console
