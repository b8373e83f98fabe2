#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>

namespace Zent::Discovery::Programs
{
/// Files that only the user who runs the program may read, and that outlast a power cut. Any thread.
class PrivateFile final
{
public:
    PrivateFile() = delete;

    /// Appends the text to the file, which is made when it is not there, and returns once the disk has it.
    /// @throws std::system_error
    static void Append(const std::filesystem::path& path, std::string_view text);

    /// Makes an empty file with the owner, the group and the rights of another one, which it is to replace.
    /// @throws std::system_error when it is there, or this user may not give it away; then it may be left behind.
    static void CreateLike(const std::filesystem::path& path, const std::filesystem::path& other);
};

/// Keeps other processes out, for as long as it lives, that hold a lock of the same name.
class FileLock final
{
public:
    /// Waits for the lock without limit. The name is that of an empty file, which stays.
    /// @throws std::system_error when the file cannot be made.
    explicit FileLock(const std::filesystem::path& path);
    ~FileLock();

    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    std::intptr_t handle; // the system's
};
} // namespace Zent::Discovery::Programs
