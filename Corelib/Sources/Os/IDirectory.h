#pragma once

#include "Os/FileResult.h"

#include <cstddef>
#include <string_view>

namespace Nfx::System
{
class String;
}

namespace Nfx::Os
{
/// The folders of the platform and the form of its paths.
class IDirectory
{
public:
    IDirectory(const IDirectory&) = delete;
    IDirectory& operator=(const IDirectory&) = delete;

    /// True for a folder, not for another thing of that name.
    virtual bool Exists(const System::String& path) = 0;

    /// Creates one folder in a folder that exists.
    virtual FileResult Create(const System::String& path) = 0;

    /// The absolute form of a path that is not empty.
    virtual FileResult GetFullPath(const System::String& path, System::String& fullPath) = 0;

    virtual bool IsSeparator(char character) = 0;

    /// The length of the part that no name can be taken from: "/", "C:\", "\\server\share\"; 0 for a relative path.
    virtual std::size_t RootLength(std::string_view path) = 0;

protected:
    IDirectory() = default;
    ~IDirectory() = default;
};
} // namespace Nfx::Os
