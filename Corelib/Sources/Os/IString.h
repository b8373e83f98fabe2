#pragma once

namespace Nfx::System
{
class String;
}

namespace Nfx::Os
{
/// The encodings of the platform.
class IString
{
public:
    IString(const IString&) = delete;
    IString& operator=(const IString&) = delete;

    /// Text from outside as UTF-8. On Windows what is not valid UTF-8 is taken for the ANSI code page; elsewhere bytes
    /// have no encoding and pass unchanged.
    virtual System::String ToUtf8(const System::String& text) = 0;

protected:
    IString() = default;
    ~IString() = default;
};
} // namespace Nfx::Os
