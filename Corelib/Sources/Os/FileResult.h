#pragma once

#include <cstdint>

namespace Nfx::Os
{
/// What callers tell apart when a call on the file system fails.
enum class FileFailure
{
    None,
    FileNotFound,
    DirectoryNotFound,
    TooLarge, // the file has reached a limit of the process or of the file system; the disk need not be full
    Other
};

/// What came of a call on the file system.
struct FileResult
{
    FileFailure Failure = FileFailure::None;
    std::int32_t NativeError = 0; // the platform's own number; IFile::Describe has its text

    bool Succeeded() const noexcept { return Failure == FileFailure::None; }
};
} // namespace Nfx::Os
