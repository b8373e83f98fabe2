#pragma once

#include <string_view>

namespace Zent::Discovery::Page
{
/// The files of the folder assets, which are part of the program. Any thread.
class Assets final
{
public:
    struct Asset
    {
        std::string_view Name;
        std::string_view Type; // of its content, as HTTP names it
        std::string_view Bytes;
    };

    Assets() = delete;

    /// Null when there is none of that name.
    static const Asset* Find(std::string_view name);
};
} // namespace Zent::Discovery::Page
