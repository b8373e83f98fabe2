#include "Os/Win32/FileFailureW32.h"

#include "Os/Win32/PlatformW32.h"

namespace Nfx::Os
{
FileResult LastFileFailureW32()
{
    const DWORD number = GetLastError();
    const std::int32_t nativeError = static_cast<std::int32_t>(number);
    switch (number)
    {
    case ERROR_FILE_NOT_FOUND:
        return {FileFailure::FileNotFound, nativeError};
    case ERROR_PATH_NOT_FOUND:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_INVALID_DRIVE:
        return {FileFailure::DirectoryNotFound, nativeError};
    case ERROR_FILE_TOO_LARGE:
        return {FileFailure::TooLarge, nativeError};
    default:
        return {FileFailure::Other, nativeError};
    }
}
} // namespace Nfx::Os
