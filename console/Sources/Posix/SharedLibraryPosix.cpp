#include "SharedLibrary.h"

#include <dlfcn.h>
#include <filesystem>
#include <stdexcept>

namespace Zent::Discovery::Console
{
SharedLibrary::SharedLibrary(const std::string& path)
    : path(path)
    // A name without a folder would make the loader search its own folders instead of the current one.
    , handle(dlopen(std::filesystem::absolute(path).c_str(), RTLD_NOW | RTLD_LOCAL))
{
    if (handle == nullptr)
    {
        // NOLINTNEXTLINE(concurrency-mt-unsafe): the text is the calling thread's own
        throw std::runtime_error("cannot load the library: " + std::string(dlerror()) +
                                 "; --library names another one");
    }
}

void* SharedLibrary::Find(const std::string& name, std::size_t /*argumentBytes*/) const
{
    void* const address = dlsym(handle, name.c_str());
    if (address == nullptr)
    {
        throw std::runtime_error("the library " + path + " lacks the function " + name +
                                 "; --library names another one");
    }
    return address;
}
} // namespace Zent::Discovery::Console
