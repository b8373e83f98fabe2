#pragma once

#include "Os/FileResult.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Nfx::System
{
class String;
}

namespace Nfx::Os
{
/// The files of the platform. Paths are UTF-8 on Windows and plain bytes elsewhere.
class IFile
{
public:
    IFile(const IFile&) = delete;
    IFile& operator=(const IFile&) = delete;

    using Handle = std::intptr_t;

    struct Properties
    {
        std::int64_t Size = 0;  // bytes
        bool IsRegular = false; // not a device, a pipe or the like
    };

    /// Opens a file for appending and creates it when it is missing. Others may read, write, rename and delete it
    /// meanwhile; child processes do not inherit it.
    virtual FileResult OpenToAppend(const System::String& path, Handle& file) = 0;

    /// Appends bytes by one call of the platform's; written says how many it took, 0 on failure. An interrupted call
    /// is repeated, and no signal reaches the process for a file that takes no more.
    virtual FileResult Write(Handle file, const char* bytes, std::size_t size, std::size_t& written) = 0;

    virtual FileResult Query(Handle file, Properties& properties) = 0;
    virtual void Close(Handle file) = 0;

    /// True for anything that has this name, be it a folder or a link that leads nowhere.
    virtual bool Exists(const System::String& path) = 0;

    /// Gives a file another name, replacing what has it; the file may be open.
    virtual FileResult Rename(const System::String& path, const System::String& newPath) = 0;

    /// What ends a line in the platform's text files.
    virtual std::string_view LineEnd() = 0;

    /// The platform's text for a native error number, without a final period.
    virtual System::String Describe(std::int32_t nativeError) = 0;

protected:
    IFile() = default;
    ~IFile() = default;
};
} // namespace Nfx::Os
