#pragma once

#include "Device.h"
#include "DeviceTable.h"

#include <iosfwd>
#include <string>
#include <string_view>

namespace Zent::Discovery::Console
{
/// What the user sees: devices as a table or as JSON documents on one stream, complaints on another.
class Output final
{
public:
    /// json selects one document per line. The streams must outlive the object.
    Output(std::ostream& out, std::ostream& errors, bool json);

    void Show(const DeviceTable& table);
    void Show(const Device& device);

    /// Shows a message at the moment it comes.
    /// False when the stream takes no more, because its reader has gone.
    bool ShowNow(const Device& device);

    /// Reports what went wrong. The text may hold text from outside.
    void Complain(std::string_view text);

private:
    void PrintDocument(const Device& device);

    std::ostream& out;
    std::ostream& errors;
    const bool json;
    bool hasTitles = false;
};
} // namespace Zent::Discovery::Console
