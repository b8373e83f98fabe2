#pragma once

#include "Os/IDirectory.h"

namespace Nfx::Os
{
class DirectoryPosix final : public IDirectory
{
public:
    bool Exists(const System::String& path) override;
    FileResult Create(const System::String& path) override;
    FileResult GetFullPath(const System::String& path, System::String& fullPath) override;
    bool IsSeparator(char character) override;
    std::size_t RootLength(std::string_view path) override;
};
} // namespace Nfx::Os
