#pragma once

#include "Os/IDirectory.h"

namespace Tests
{
/// The platform's folders, whose creation fails as Faults says.
class DirectoryFaulty final : public Nfx::Os::IDirectory
{
public:
    explicit DirectoryFaulty(Nfx::Os::IDirectory& real)
        : real(real)
    {
    }

    bool Exists(const Nfx::System::String& path) override { return real.Exists(path); }

    Nfx::Os::FileResult Create(const Nfx::System::String& path) override;

    Nfx::Os::FileResult GetFullPath(const Nfx::System::String& path, Nfx::System::String& fullPath) override
    {
        return real.GetFullPath(path, fullPath);
    }

    bool IsSeparator(char character) override { return real.IsSeparator(character); }

    std::size_t RootLength(std::string_view path) override { return real.RootLength(path); }

private:
    Nfx::Os::IDirectory& real;
};
} // namespace Tests
