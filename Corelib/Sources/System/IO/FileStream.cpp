#include "system/IO/FileStream.h"

#include "Os/IFile.h"
#include "Os/IOs.h"
#include "System/IO/FileError.h"
#include "system/String.h"

namespace Nfx::System::IO
{
namespace
{
const char SourceName[] = "Corelib/Sources/System/IO/FileStream";
} // namespace

FileStream::FileStream(const String& path)
{
    Os::IFile& files = Os::Platform().File();
    Os::IFile::Properties properties;
    Os::FileResult result = files.OpenToAppend(path, handle);
    if (result.Succeeded())
    {
        result = files.Query(handle, properties);
        if (!result.Succeeded())
        {
            files.Close(handle);
        }
    }
    if (!result.Succeeded())
    {
        ThrowFileError(result, "cannot open \"" + path + "\"", SourceName, __LINE__);
    }
    length = properties.Size;
    isRegular = properties.IsRegular;
    isOpen = true;
}

FileStream::~FileStream()
{
    Close();
}

std::size_t FileStream::Write(std::string_view bytes)
{
    std::size_t total = 0;
    while (isOpen && total < bytes.size())
    {
        const std::string_view rest = bytes.substr(total);
        std::size_t written = 0;
        const Os::FileResult result = Os::Platform().File().Write(handle, rest.data(), rest.size(), written);
        nativeError = result.NativeError;
        isAtSizeLimit = result.Failure == Os::FileFailure::TooLarge;
        if (!result.Succeeded() || written == 0) // nothing taken without a failure: the next call would end no better
        {
            break;
        }
        total += written;
        length += static_cast<std::int64_t>(written);
    }
    return total;
}

String FileStream::GetFailureText() const
{
    return isOpen ? Os::Platform().File().Describe(nativeError) : String("the file is closed");
}

void FileStream::Close()
{
    if (isOpen)
    {
        isOpen = false;
        Os::Platform().File().Close(handle);
    }
}
} // namespace Nfx::System::IO
