#include "System/IO/FileError.h"

#include "Os/IFile.h"
#include "Os/IOs.h"
#include "system/Exceptions.h"
#include "system/String.h"

namespace Nfx::System::IO
{
void ThrowFileError(const Os::FileResult& result, const String& action, const char* sourceFile, std::int32_t line)
{
    const String message = action + ": " + Os::Platform().File().Describe(result.NativeError);
    switch (result.Failure)
    {
    case Os::FileFailure::FileNotFound:
        throw FileNotFoundException(message, sourceFile, line);
    case Os::FileFailure::DirectoryNotFound:
        throw DirectoryNotFoundException(message, sourceFile, line);
    default:
        throw IOException(message, sourceFile, line);
    }
}
} // namespace Nfx::System::IO
