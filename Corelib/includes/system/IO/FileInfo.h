#pragma once

#include "system/Object.h"
#include "system/String.h"

namespace Nfx::System::IO
{
/// A file named by its path, whether it exists or not.
class FileInfo final : public Object
{
public:
    explicit FileInfo(const String& path);

    bool Exists() const;

    /// Renames the file; a file that has the new path already is replaced. An open file stays open. This object goes
    /// on naming the old path.
    /// @throws IOException, DirectoryNotFoundException or FileNotFoundException, with paths and reason in the message.
    void MoveTo(const String& newPath) const;

    /// The path.
    String ToString() const override;

private:
    String fullName;
};
} // namespace Nfx::System::IO
