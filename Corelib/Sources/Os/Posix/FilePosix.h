#pragma once

#include "Os/IFile.h"

namespace Nfx::Os
{
class FilePosix final : public IFile
{
public:
    FileResult OpenToAppend(const System::String& path, Handle& file) override;
    FileResult Write(Handle file, const char* bytes, std::size_t size, std::size_t& written) override;
    FileResult Query(Handle file, Properties& properties) override;
    void Close(Handle file) override;
    bool Exists(const System::String& path) override;
    FileResult Rename(const System::String& path, const System::String& newPath) override;
    std::string_view LineEnd() override;
    System::String Describe(std::int32_t nativeError) override;
};
} // namespace Nfx::Os
