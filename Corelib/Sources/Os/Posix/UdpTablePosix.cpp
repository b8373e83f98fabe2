#include "Os/Posix/UdpTablePosix.h"

#include <cstdio>

namespace Nfx::Os
{
bool UdpTablePosix::Has(const char* path, std::int32_t port) noexcept
{
    std::FILE* const table = std::fopen(path, "re");
    if (table == nullptr)
    {
        return false;
    }
    bool isFound = false;
    char line[512]; // a line has less than 200 characters
    while (!isFound && std::fgets(line, sizeof line, table) != nullptr)
    {
        unsigned bound = 0; // the first line has titles where the others have numbers
        isFound = std::sscanf(line, "%*u: %*[0-9A-Fa-f]:%x", &bound) == 1 && bound == static_cast<unsigned>(port);
    }
    std::fclose(table);
    return isFound;
}
} // namespace Nfx::Os
