#pragma once

#include "Signature.h"

#include <string>
#include <vector>

namespace Benchmarks
{
/// Datagrams of the largest size, each of which costs some way of reading it the most.
class LargeDatagrams final
{
public:
    LargeDatagrams() = delete;

    struct Content
    {
        const char* Name;
        std::string Text;
    };

    static std::vector<Content> All();

    /// A signature as large as fits.
    static Signature Valid();
};
} // namespace Benchmarks
