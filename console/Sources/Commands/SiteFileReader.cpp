#include "Commands/SiteFileReader.h"

#include "Programs/WrongArgument.h"
#include "Text/TextFile.h"

#include <stdexcept>

using Zent::Discovery::Inventory::SiteFile;

namespace Zent::Discovery::Console
{
SiteFile SiteFileReader::Read(const std::string& path)
{
    const std::string text = TextFile::Read(path);
    try
    {
        return SiteFile::Parse(text, TextFile::NameOf(path));
    }
    catch (const std::invalid_argument& error)
    {
        throw Programs::WrongArgument(error.what());
    }
}
} // namespace Zent::Discovery::Console
