#include "system/Exception.h"

#include "system/Boolean.h"
#include "system/ErrorCodes.h"
#include "system/Type.h"

#include <typeinfo>

namespace Nfx::System
{
Exception::Exception(const char* sourceFile, std::int32_t line) noexcept
    : sourceFile(sourceFile)
    , sourceLine(line)
{
}

Exception::Exception(const String& message, const char* sourceFile, std::int32_t line)
    : message(message)
    , sourceFile(sourceFile)
    , sourceLine(line)
{
}

Exception::Exception(const Error& error, const char* sourceFile, std::int32_t line)
    : Exception(error, String(), sourceFile, line)
{
}

Exception::Exception(const Error& error, const String& message, const char* sourceFile, std::int32_t line)
    : message(message)
    , sourceFile(sourceFile)
    , sourceLine(line)
    , error(error)
    , hasError(true)
{
}

String Exception::GetMessage() const
{
    return message.IsEmpty() ? GetDefaultMessage() : message;
}

Error Exception::GetError() const
{
    return hasError ? error : GetDefaultError();
}

String Exception::GetSourceFile() const
{
    return sourceFile;
}

Int32 Exception::GetSourceLine() const
{
    return sourceLine;
}

Boolean Exception::Equals(const Object* object) const
{
    const Exception* other = dynamic_cast<const Exception*>(object);
    return other != nullptr && typeid(*other) == typeid(*this) && other->GetError().Code() == GetError().Code() &&
           other->GetMessage() == GetMessage();
}

String Exception::ToString() const
{
    return GetType().ToString() + ": " + GetMessage() + recordedText;
}

const String& Exception::GetDefaultMessage() const
{
    static const Immortal<String> text("Exception of type '" + Type::NameOf(typeid(Exception)) + "' was throw.");
    return text.Get();
}

const Error& Exception::GetDefaultError() const
{
    static const Immortal<Error> defaultError(ErrorCodes::Unknown);
    return defaultError.Get();
}

void Exception::RecordText(const String& text)
{
    recordedText = text;
}
} // namespace Nfx::System
