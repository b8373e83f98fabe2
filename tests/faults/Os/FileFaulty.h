#pragma once

#include "Os/IFile.h"

namespace Tests
{
/// The platform's files, which fail as Faults says.
class FileFaulty final : public Nfx::Os::IFile
{
public:
    explicit FileFaulty(Nfx::Os::IFile& real)
        : real(real)
    {
    }

    Nfx::Os::FileResult OpenToAppend(const Nfx::System::String& path, Handle& file) override;
    Nfx::Os::FileResult Write(Handle file, const char* bytes, std::size_t size, std::size_t& written) override;
    Nfx::Os::FileResult Query(Handle file, Properties& properties) override;
    void Close(Handle file) override;
    bool Exists(const Nfx::System::String& path) override;
    Nfx::Os::FileResult Rename(const Nfx::System::String& path, const Nfx::System::String& newPath) override;
    std::string_view LineEnd() override;
    Nfx::System::String Describe(std::int32_t nativeError) override;

private:
    Nfx::Os::IFile& real;
};
} // namespace Tests
