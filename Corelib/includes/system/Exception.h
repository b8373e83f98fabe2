#pragma once

#include "system/Error.h"
#include "system/Immortal.h"
#include "system/Int32.h"
#include "system/Object.h"
#include "system/String.h"

namespace Nfx::System
{
/// Root of everything that this library throws: an error code, a message and the place of the throw.
class Exception : public Object
{
public:
    /// The class's default message and error; sourceFile is a literal relative to the source tree. Needs no memory, and
    /// neither does GetError.
    Exception(const char* sourceFile, std::int32_t line) noexcept;

    Exception(const String& message, const char* sourceFile, std::int32_t line);

    /// The message stays empty: the class's default message stands in its place.
    Exception(const Error& error, const char* sourceFile, std::int32_t line);

    Exception(const Error& error, const String& message, const char* sourceFile, std::int32_t line);

    /// The message, or the class's default message when none was given.
    String GetMessage() const;

    /// The error, or the class's default error when none was given.
    Error GetError() const;

    /// Where it was thrown, relative to the source tree.
    String GetSourceFile() const;

    Int32 GetSourceLine() const;

    /// True for the same class with the same error and message.
    Boolean Equals(const Object* object) const override;

    /// The class name, ": ", the message and what else was recorded.
    String ToString() const override;

    virtual const String& GetDefaultMessage() const;
    virtual const Error& GetDefaultError() const;

protected:
    /// Text that ToString adds behind the message.
    void RecordText(const String& text);

private:
    String message;
    String recordedText;
    const char* sourceFile; // a literal, so that a throw for lack of memory needs none
    Int32 sourceLine;
    Int32 nativeError; // reserved for a platform's own number; 0 in every exception of this library
    String stackText;  // reserved; empty
    Error error;
    bool hasError = false;
};
} // namespace Nfx::System

/// Defines an exception class by its base, its default message and its default error.
/// The defaults are built on first use and never destroyed: threads may still throw while a process exits.
#define NFX_EXCEPTION(NAME, BASE, MESSAGE, CODE)                                                                       \
    class NAME : public BASE                                                                                           \
    {                                                                                                                  \
    public:                                                                                                            \
        using BASE::BASE;                                                                                              \
                                                                                                                       \
        const ::Nfx::System::String& GetDefaultMessage() const override                                                \
        {                                                                                                              \
            static const ::Nfx::System::Immortal<::Nfx::System::String> text(MESSAGE);                                 \
            return text.Get();                                                                                         \
        }                                                                                                              \
                                                                                                                       \
        const ::Nfx::System::Error& GetDefaultError() const override                                                   \
        {                                                                                                              \
            static const ::Nfx::System::Immortal<::Nfx::System::Error> error(CODE);                                    \
            return error.Get();                                                                                        \
        }                                                                                                              \
    }
