#pragma once

#include "system/IO/Stream.h"

#include <cstdint>

namespace Nfx::System::IO
{
/// A file opened for appending; created when it is missing, never truncated. Others may read, rename and delete it
/// while it is open. What has been written survives the end of the process. One thread at a time.
class FileStream final : public Stream
{
public:
    /// @throws IOException, DirectoryNotFoundException or FileNotFoundException, with path and reason in the message.
    explicit FileStream(const String& path);
    ~FileStream() override;
    FileStream(const FileStream&) = delete;
    FileStream& operator=(const FileStream&) = delete;

    /// Hands all bytes to the operating system by one call, and by more only for what the first did not take.
    std::size_t Write(std::string_view bytes) override;

    String GetFailureText() const override;
    void Close() override;

    /// Bytes: the size when the file was opened and what was written since.
    std::int64_t Length() const noexcept { return length; }

    /// False for a device, a pipe or the like.
    bool IsRegular() const noexcept { return isRegular; }

    /// True when the last write failed because the file has reached a limit of the process or the file system.
    bool IsAtSizeLimit() const noexcept { return isAtSizeLimit; }

private:
    std::intptr_t handle = 0;
    std::int64_t length = 0;
    std::int32_t nativeError = 0;
    bool isRegular = false;
    bool isAtSizeLimit = false;
    bool isOpen = false;
};
} // namespace Nfx::System::IO
