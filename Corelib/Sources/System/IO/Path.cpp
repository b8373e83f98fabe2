#include "system/IO/Path.h"

#include "Os/IDirectory.h"
#include "Os/IOs.h"
#include "Os/IString.h"
#include "System/IO/FileError.h"
#include "system/String.h"

#include <string_view>

namespace Nfx::System::IO
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/IO/Path";

/// The length of a path without its last name, trailing separators included.
std::size_t LengthBeforeName(std::string_view path)
{
    Os::IDirectory& directories = Os::Platform().Directory();
    const std::size_t root = directories.RootLength(path);
    std::size_t length = path.size();
    while (length > root && !directories.IsSeparator(path[length - 1]))
    {
        --length;
    }
    return length;
}
} // namespace

String Path::GetFullPath(const String& path)
{
    if (path.IsEmpty())
    {
        return path;
    }
    const String converted = Os::Platform().String().ToUtf8(path);
    String fullPath;
    const Os::FileResult result = Os::Platform().Directory().GetFullPath(converted, fullPath);
    if (!result.Succeeded())
    {
        ThrowFileError(result, "cannot find the folder of \"" + converted + "\"", SourceName, __LINE__);
    }
    return fullPath;
}

String Path::GetDirectoryName(const String& path)
{
    Os::IDirectory& directories = Os::Platform().Directory();
    const std::string_view text = path.View();
    const std::size_t root = directories.RootLength(text);
    std::size_t length = LengthBeforeName(text);
    if (length == text.size() && length == root)
    {
        return String();
    }
    while (length > root && directories.IsSeparator(text[length - 1]))
    {
        --length;
    }
    return String(text.substr(0, length));
}

String Path::GetFileName(const String& path)
{
    return String(path.View().substr(LengthBeforeName(path.View())));
}
} // namespace Nfx::System::IO
