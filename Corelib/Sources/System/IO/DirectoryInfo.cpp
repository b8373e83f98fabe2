#include "system/IO/DirectoryInfo.h"

#include "Os/IDirectory.h"
#include "Os/IOs.h"
#include "System/IO/FileError.h"
#include "system/IO/Path.h"

namespace Nfx::System::IO
{
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
    if (fullName.IsEmpty() || Exists())
    {
        return;
    }
    DirectoryInfo(Path::GetDirectoryName(fullName)).Create();
    const Os::FileResult result = Os::Platform().Directory().Create(fullName);
    if (!result.Succeeded() && !Exists()) // another process may have been faster
    {
        ThrowFileError(result, "cannot create the folder \"" + fullName + "\"",
                       "Corelib/Sources/System/IO/DirectoryInfo", __LINE__);
    }
}

String DirectoryInfo::ToString() const
{
    return fullName;
}
} // namespace Nfx::System::IO
