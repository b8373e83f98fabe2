#pragma once

#include "support/ExtCLoader.h"

#include <cstdlib>

namespace Tests
{
/// The library that the build names for this program. Without it the program ends.
inline const ExtCFunctions& Server()
{
    static const ExtCFunctions functions = [] {
        ExtCFunctions loaded{};
        if (LoadExtC(EXTC_LIBRARY, &loaded) == 0)
        {
            std::exit(2);
        }
        return loaded;
    }();
    return functions;
}
} // namespace Tests
