#pragma once

#include <string>
#include <vector>

namespace Zent::Discovery::Console
{
/// Makes zip archives in memory.
class ZipArchive final
{
public:
    struct File
    {
        std::string Name; // with / between folders
        std::string Content;
    };

    ZipArchive() = delete;

    /// The bytes of an archive of these files.
    /// @throws std::runtime_error
    static std::string Of(const std::vector<File>& files);
};
} // namespace Zent::Discovery::Console
