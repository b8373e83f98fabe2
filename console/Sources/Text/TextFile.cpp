#include "Text/TextFile.h"

#include "Programs/Interruption.h"
#include "Programs/Process.h"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace Zent::Discovery::Console
{
namespace
{
using namespace std::string_view_literals;

[[noreturn]] void Refuse(const std::string& path, const std::error_code& reason, const char* action = "read")
{
    throw std::runtime_error("cannot " + std::string(action) + " " + path + ": " + reason.message());
}

void Append(std::string& text, char32_t codePoint)
{
    if (codePoint < 0x80)
    {
        text += static_cast<char>(codePoint);
        return;
    }
    const int continuations = codePoint < 0x800 ? 1 : codePoint < 0x10000 ? 2 : 3;
    const unsigned mark = 0xFF00u >> (continuations + 1) & 0xFF;
    text += static_cast<char>(mark | codePoint >> 6 * continuations);
    for (int i = continuations - 1; i >= 0; --i)
    {
        text += static_cast<char>(0x80 | (codePoint >> 6 * i & 0x3F));
    }
}

/// Of little-endian UTF-16; half pairs become U+FFFD.
std::string Utf8(std::string_view bytes)
{
    const auto unitAt = [bytes](std::size_t at) {
        return at + 1 < bytes.size() ? static_cast<char32_t>(static_cast<unsigned char>(bytes[at]) |
                                                             static_cast<unsigned char>(bytes[at + 1]) << 8)
                                     : 0;
    };
    std::string text;
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2)
    {
        const char32_t unit = unitAt(at);
        const char32_t next = unitAt(at + 2);
        if (unit >= 0xD800 && unit < 0xDC00 && next >= 0xDC00 && next < 0xE000)
        {
            Append(text, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
            at += 2;
        }
        else
        {
            Append(text, unit >= 0xD800 && unit < 0xE000 ? 0xFFFD : unit);
        }
    }
    return text;
}

/// The bytes of the file.
std::string Content(const std::string& path)
{
    if (path == TextFile::StandardInput)
    {
        const Programs::Interruption::AtOnce whileNobodyTypes;
        return Programs::Process::ReadAllInput();
    }
    const std::filesystem::path place(std::u8string(path.begin(), path.end()));
    std::error_code reason;
    if (std::filesystem::is_directory(place, reason))
    {
        Refuse(path, std::make_error_code(std::errc::is_a_directory));
    }
    errno = 0;
    std::ifstream stream(place, std::ios::binary);
    if (!stream.is_open())
    {
        Refuse(path, {errno == 0 ? ENOENT : errno, std::generic_category()});
    }
    std::ostringstream content;
    content << stream.rdbuf();
    if (stream.bad())
    {
        Refuse(path, std::make_error_code(std::errc::io_error));
    }
    return content.str();
}
} // namespace

std::string TextFile::NameOf(const std::string& path)
{
    return path == StandardInput ? "standard input" : path;
}

std::string TextFile::Read(const std::string& path)
{
    std::string text = Content(path);
    if (text.starts_with("\xFF\xFE"sv))
    {
        return Utf8(std::string_view(text).substr(2));
    }
    if (text.starts_with("\xEF\xBB\xBF"sv))
    {
        text.erase(0, 3);
    }
    return text;
}

void TextFile::Write(const std::string& path, const std::string& text)
{
    errno = 0;
    std::ofstream stream(std::filesystem::path(std::u8string(path.begin(), path.end())), std::ios::binary);
    stream << text << std::flush;
    if (!stream.good())
    {
        Refuse(path, {errno == 0 ? EIO : errno, std::generic_category()}, "write");
    }
}
} // namespace Zent::Discovery::Console
