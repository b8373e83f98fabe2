#pragma once

#include "system/Exceptions.h"

#include <new>
#include <stdexcept>
#include <string>
#include <utility>

namespace Zent::Discovery::Inventory
{
/// Runs an action of the framework for callers who know the standard library's exceptions alone.
/// @throws std::invalid_argument with the text of what the action has thrown; std::bad_alloc.
template <class TAction>
auto WithStandardErrors(TAction&& action)
{
    try
    {
        return std::forward<TAction>(action)();
    }
    catch (const Nfx::System::OutOfMemoryException&)
    {
        throw std::bad_alloc();
    }
    catch (const Nfx::System::Exception& exception)
    {
        throw std::invalid_argument(std::string(exception.GetMessage().View()));
    }
}
} // namespace Zent::Discovery::Inventory
