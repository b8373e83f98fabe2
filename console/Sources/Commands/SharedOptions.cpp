#include "Commands/SharedOptions.h"

#include "Inventory/ChangeRequest.h"
#include "Inventory/Network.h"

#include <stdexcept>

using Zent::Discovery::Inventory::ChangeRequest;
using Zent::Discovery::Inventory::Network;

namespace Zent::Discovery::Console
{
std::string SharedOptions::WrongWithMAC(const std::string& text)
{
    try
    {
        ChangeRequest::Rename(text, "any").Normal();
        return "";
    }
    catch (const std::invalid_argument& error)
    {
        return error.what();
    }
}

std::string SharedOptions::WrongWithIP(const std::string& text)
{
    return Network::ParseAddress(text) ? "" : '"' + text + "\" is no IPv4 address, such as 10.0.0.7";
}

void SharedOptions::AddSelection(Arguments& arguments,
                                 const Arguments::Reader& addOrder,
                                 const Arguments::Reader& addFilter,
                                 const std::string& columns,
                                 const std::string& rows)
{
    arguments.AddRepeated("--sort", "COLUMN[:desc]", addOrder, "sort by " + columns + "; may be repeated");
    arguments.AddRepeated("--filter", "COLUMN=PATTERN", addFilter,
                          "show only " + rows +
                              " whose column matches, with * and ? as wildcards; != inverts; may be repeated");
}
} // namespace Zent::Discovery::Console
