#pragma once

#include <cstddef>
#include <string>

namespace Zent::Discovery::Console
{
/// A library loaded at run time. It is never unloaded: the program ends right after its use, and a thread that the
/// library could not stop would lose the code it runs.
class SharedLibrary final
{
public:
    /// path is UTF-8.
    /// @throws std::runtime_error with the system's reason and what to do when the library cannot be loaded.
    explicit SharedLibrary(const std::string& path);

    /// The address of an exported function with arguments of that many bytes, which are part of its name on Windows.
    /// @throws std::runtime_error with what to do when the library does not export it.
    void* Find(const std::string& name, std::size_t argumentBytes) const;

private:
    std::string path;
    void* handle;
};
} // namespace Zent::Discovery::Console
