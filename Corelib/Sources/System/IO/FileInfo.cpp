#include "system/IO/FileInfo.h"

#include "Os/IFile.h"
#include "Os/IOs.h"
#include "System/IO/FileError.h"
#include "system/IO/Path.h"

namespace Nfx::System::IO
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/IO/FileInfo";
} // namespace

FileInfo::FileInfo(const String& path)
    : fullName(Path::GetFullPath(path))
{
}

bool FileInfo::Exists() const
{
    return Os::Platform().File().Exists(fullName);
}

void FileInfo::MoveTo(const String& newPath) const
{
    const String newFullName = Path::GetFullPath(newPath);
    const Os::FileResult result = Os::Platform().File().Rename(fullName, newFullName);
    if (!result.Succeeded())
    {
        ThrowFileError(result, "cannot rename \"" + fullName + "\" to \"" + newFullName + "\"", SourceName, __LINE__);
    }
}

String FileInfo::ToString() const
{
    return fullName;
}
} // namespace Nfx::System::IO
