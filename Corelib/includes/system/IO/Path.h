#pragma once

namespace Nfx::System
{
class String;
}

namespace Nfx::System::IO
{
/// Operations on the texts of paths. On Windows paths are UTF-8, and '\\' as well as '/' separates folders.
class Path final
{
public:
    Path() = delete;

    /// The absolute form of a path; one that is not UTF-8 is taken for the platform's own code page and converted.
    /// Empty for an empty path.
    /// @throws IOException when the current folder, which a relative path starts from, is gone.
    static String GetFullPath(const String& path);

    /// What stands before the last separator, or the root itself for something right below it; empty for a bare name
    /// and for a root.
    static String GetDirectoryName(const String& path);

    /// What stands behind the last separator, or behind the root.
    static String GetFileName(const String& path);
};
} // namespace Nfx::System::IO
