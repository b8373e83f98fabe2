#pragma once

#include "system/String.h"
#include "system/ValueType.h"

namespace Nfx::System::LogStreams
{
/// The name of the component that a log line comes from. Components keep their channel: it holds the text of the
/// channel column ready, so that a line only copies it.
class LogStreamChannel final : public ValueType
{
public:
    explicit LogStreamChannel(const String& name);

    const String& Name() const noexcept { return name; }

    /// The name as lines show it: control characters as \xHH, padded with blanks to 40 characters. A longer name is
    /// not cut: a line that is out of column can be read, a name that lost its end cannot.
    const String& ColumnText() const noexcept { return columnText; }

    /// True for a channel of the same name.
    Boolean Equals(const Object* object) const override;
    Int32 GetHashCode() const override;

    /// The name.
    String ToString() const override;

private:
    String name;
    String columnText;
};
} // namespace Nfx::System::LogStreams
