#include "system/IO/DirectoryInfo.h"

#include "Os/IDirectory.h"
#include "Os/IOs.h"
#include "System/IO/FileError.h"
#include "system/IO/Path.h"

#include <string_view>

namespace Nfx::System::IO
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/IO/DirectoryInfo";

Os::FileResult CreateOne(const String& path)
{
    Os::IDirectory& directory = Os::Platform().Directory();
    if (directory.Exists(path))
    {
        return {};
    }
    const Os::FileResult result = directory.Create(path);
    return directory.Exists(path) ? Os::FileResult{} : result; // another process may have been faster
}

void ThrowUnlessDone(const Os::FileResult& result, const String& path)
{
    if (!result.Succeeded())
    {
        ThrowFileError(result, "cannot create the folder " + path.Quoted(), SourceName, __LINE__);
    }
}
} // namespace

DirectoryInfo::DirectoryInfo(const String& path)
    : fullName(Path::GetFullPath(path))
{
}

bool DirectoryInfo::Exists() const
{
    return Os::Platform().Directory().Exists(fullName);
}

void DirectoryInfo::Create() const
{
    if (fullName.IsEmpty())
    {
        return;
    }
    const Os::FileResult result = CreateOne(fullName);
    if (result.Failure != Os::FileFailure::DirectoryNotFound)
    {
        ThrowUnlessDone(result, fullName);
        return;
    }
    // Down from the top, so that the work stays linear whatever path a host comes with.
    const std::string_view path = fullName.View();
    Os::IDirectory& directory = Os::Platform().Directory();
    for (std::size_t end = directory.RootLength(path); end < path.size();)
    {
        ++end;
        while (end < path.size() && !directory.IsSeparator(path[end]))
        {
            ++end;
        }
        const String folder(path.substr(0, end));
        ThrowUnlessDone(CreateOne(folder), folder);
    }
}

String DirectoryInfo::ToString() const
{
    return fullName;
}
} // namespace Nfx::System::IO
