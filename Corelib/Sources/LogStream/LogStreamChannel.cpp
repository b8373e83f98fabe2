#include "system/LogStreams/LogStreamChannel.h"

#include "LogStream/PrintableText.h"
#include "system/Boolean.h"
#include "system/Int32.h"

namespace Nfx::System::LogStreams
{
namespace
{
String ColumnTextOf(const String& name)
{
    constexpr std::size_t ColumnWidth = 40;
    std::string column;
    AppendPrintable(column, name.View());
    if (column.size() < ColumnWidth)
    {
        column.resize(ColumnWidth, ' ');
    }
    return String(std::move(column));
}
} // namespace

LogStreamChannel::LogStreamChannel(const String& name)
    : name(name)
    , columnText(ColumnTextOf(name))
{
}

Boolean LogStreamChannel::Equals(const Object* object) const
{
    const LogStreamChannel* other = dynamic_cast<const LogStreamChannel*>(object);
    return other != nullptr && other->name == name;
}

Int32 LogStreamChannel::GetHashCode() const
{
    return name.GetHashCode();
}

String LogStreamChannel::ToString() const
{
    return name;
}
} // namespace Nfx::System::LogStreams
