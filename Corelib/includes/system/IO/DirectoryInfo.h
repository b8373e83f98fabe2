#pragma once

#include "system/Object.h"
#include "system/String.h"

namespace Nfx::System::IO
{
/// A folder named by its path, whether it exists or not.
class DirectoryInfo final : public Object
{
public:
    explicit DirectoryInfo(const String& path);

    bool Exists() const;

    /// Creates the folder and every missing one above it; does nothing when it exists already.
    /// @throws IOException or DirectoryNotFoundException, with path and reason in the message.
    void Create() const;

    /// The path.
    String ToString() const override;

private:
    String fullName;
};
} // namespace Nfx::System::IO
