#include "Os/FileFaulty.h"

#include "Os/Faults.h"
#include "system/String.h"

namespace Tests
{
using Nfx::Os::FileFailure;
using Nfx::Os::FileResult;
using Nfx::System::String;

FileResult FileFaulty::OpenToAppend(const String& path, Handle& file)
{
    FileResult result{FileFailure::Other, 0};
    if (Faults::Strikes(Call::OpenFile, result.NativeError))
    {
        return result;
    }
    result = real.OpenToAppend(path, file);
    Faults::CountOpened(result.Succeeded());
    return result;
}

FileResult FileFaulty::Write(Handle file, const char* bytes, std::size_t size, std::size_t& written)
{
    FileResult result{FileFailure::Other, 0};
    if (Faults::Strikes(Call::WriteFile, result.NativeError))
    {
        written = 0;
        return result;
    }
    return real.Write(file, bytes, size, written);
}

FileResult FileFaulty::Query(Handle file, Properties& properties)
{
    return real.Query(file, properties);
}

void FileFaulty::Close(Handle file)
{
    Faults::CountClosed();
    real.Close(file);
}

bool FileFaulty::Exists(const String& path)
{
    return real.Exists(path);
}

FileResult FileFaulty::Rename(const String& path, const String& newPath)
{
    FileResult result{FileFailure::Other, 0};
    return Faults::Strikes(Call::RenameFile, result.NativeError) ? result : real.Rename(path, newPath);
}

std::string_view FileFaulty::LineEnd()
{
    return real.LineEnd();
}

String FileFaulty::Describe(std::int32_t nativeError)
{
    return real.Describe(nativeError);
}
} // namespace Tests
