#include "Programs/JournalFile.h"

#include "Programs/PrivateFile.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <utility>

using Zent::Discovery::Inventory::Journal;

namespace Zent::Discovery::Programs
{
namespace
{
using Complain = std::function<void(const std::string& text)>;

std::filesystem::path PathOf(const std::string& text)
{
    return {std::u8string(text.begin(), text.end())};
}

std::filesystem::path LockOf(const std::string& path)
{
    return PathOf(path + ".lock");
}

/// Keeps writers out. Where no lock can be made, nobody can write either.
std::unique_ptr<const FileLock> LockToRead(const std::string& path)
{
    try
    {
        return std::make_unique<const FileLock>(LockOf(path));
    }
    catch (const std::system_error&)
    {
        return nullptr;
    }
}

std::string Content(const std::string& path)
{
    const std::filesystem::path place = PathOf(path);
    errno = 0;
    std::ifstream stream(place, std::ios::binary);
    std::ostringstream content;
    content << stream.rdbuf();
    if (!stream.is_open() || stream.bad() || std::filesystem::is_directory(place))
    {
        throw std::system_error(errno == 0 ? EIO : errno, std::generic_category());
    }
    return content.str();
}

Journal Parse(const std::string& text, const std::string& path, const Complain& complain)
{
    Journal journal;
    int number = 1;
    for (std::size_t start = 0; start < text.size(); ++number)
    {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        try
        {
            journal.Feed(std::string_view(text).substr(start, end - start));
        }
        catch (const std::invalid_argument& error)
        {
            complain(path + ": line " + std::to_string(number) + " is broken and left out: " + error.what());
        }
        start = end + 1;
    }
    return journal;
}

/// With the lock held.
void Shorten(const std::string& path)
{
    const std::filesystem::path next = PathOf(path + ".new");
    std::filesystem::remove(next);
    PrivateFile::CreateLike(next, PathOf(path)); // which may be another user's
    std::string text;
    for (const std::string& line : Parse(Content(path), path, [](const std::string& /*text*/) {}).Lines())
    {
        text += line + "\n";
    }
    PrivateFile::Append(next, text);
    std::filesystem::rename(next, PathOf(path));
}

/// With the lock held. A file that cannot be shortened now goes on as it is: nothing in it is lost.
void ShortenWhenTooLarge(const std::string& path)
{
    try
    {
        if (std::filesystem::file_size(PathOf(path)) > JournalFile::MaximumBytes)
        {
            Shorten(path);
        }
    }
    catch (const std::system_error&)
    {
        std::error_code ignored;
        std::filesystem::remove(PathOf(path + ".new"), ignored);
    }
}

/// Whether the file ends within a line, as after a power cut.
bool IsCutOff(const std::filesystem::path& path)
{
    std::ifstream stream(path, std::ios::binary | std::ios::ate);
    if (!stream.is_open() || stream.tellg() <= 0)
    {
        return false;
    }
    stream.seekg(-1, std::ios::end);
    return stream.get() != '\n';
}
} // namespace

JournalFile::JournalFile(std::string path)
    : path(std::move(path))
{
}

Journal JournalFile::Read(const Complain& complain) const
{
    try
    {
        if (!std::filesystem::exists(PathOf(path)))
        {
            return {};
        }
        std::unique_ptr<const FileLock> lock = LockToRead(path);
        const std::string text = Content(path);
        lock.reset();
        return Parse(text, path, complain);
    }
    catch (const std::system_error& error)
    {
        throw std::runtime_error("cannot read the journal " + path + ": " + error.code().message());
    }
}

void JournalFile::Append(const std::string& line) const
{
    try
    {
        const std::filesystem::path place = PathOf(path);
        if (place.has_parent_path())
        {
            std::filesystem::create_directories(place.parent_path());
        }
        const FileLock lock(LockOf(path));
        PrivateFile::Append(place, (IsCutOff(place) ? "\n" : "") + line + "\n");
        ShortenWhenTooLarge(path);
    }
    catch (const std::system_error& error)
    {
        throw std::runtime_error("cannot write the journal " + path + ": " + error.code().message());
    }
}
} // namespace Zent::Discovery::Programs
