#include "SharedLibrary.h"

#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <windows.h>

namespace Zent::Discovery::Console
{
SharedLibrary::SharedLibrary(const std::string& path)
    : path(path)
    // A name without a folder would make the loader search its own folders instead of the current one.
    , handle(LoadLibraryW(std::filesystem::absolute(std::u8string(path.begin(), path.end())).c_str()))
{
    if (handle == nullptr)
    {
        const std::error_code reason(static_cast<int>(GetLastError()), std::system_category());
        throw std::runtime_error("cannot load the library: " + path + ": " + reason.message() +
                                 "; --library names another one");
    }
}

void* SharedLibrary::Find(const std::string& name, std::size_t argumentBytes) const
{
    constexpr bool isDecorated = sizeof(void*) == 4;
    const std::string exportName = isDecorated ? "_" + name + "@" + std::to_string(argumentBytes) : name;
    void* const address = reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle), exportName.c_str()));
    if (address == nullptr)
    {
        throw std::runtime_error("the library " + path + " lacks the function " + exportName +
                                 "; --library names another one");
    }
    return address;
}
} // namespace Zent::Discovery::Console
