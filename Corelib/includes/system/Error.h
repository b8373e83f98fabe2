#pragma once

#include "system/IComparable.h"
#include "system/IConvertible.h"
#include "system/ValueType.h"

#include <cstdint>

namespace Nfx::System
{
/// A failure code that has a text: no Error holds a code without a row in the ErrorTable.
class Error final : public ValueType, public IComparable, public IConvertible
{
public:
    /// Code 0, "None".
    Error() noexcept = default;

    /// @throws Exception with ErrorCodes::InvalidParameterValue when the code has no row.
    Error(std::int32_t code);

    /// Copies another error.
    /// @throws Exception with ErrorCodes::ParameterIsNull when there is no source.
    explicit Error(const Error* source);

    Error(const Error& source) noexcept = default;
    Error& operator=(const Error& source) noexcept = default;

    std::int32_t Code() const noexcept { return code; }

    /// True for another Error of the same code.
    Boolean Equals(const Object* object) const override;

    /// The code.
    Int32 GetHashCode() const override;

    /// The text of the code.
    String ToString() const override;

    /// Signed order of the codes.
    Int32 CompareTo(const Object* object) const override;

    TypeCode GetTypeCode() const override;
    Int32 ToInt32() const override;

private:
    std::int32_t code = 0;
    [[maybe_unused]] bool flag = false; // cleared by every constructor; nothing sets it
};
} // namespace Nfx::System
