#include "Commands/SiteFileReader.h"

#include "Programs/WrongArgument.h"
#include "Text/TextFile.h"

#include <stdexcept>
#include <string>

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
        throw Programs::WrongArgument(std::string(error.what()) + " (bad-file)");
    }
}
} // namespace Zent::Discovery::Console
