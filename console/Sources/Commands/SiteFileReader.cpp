#include "Commands/SiteFileReader.h"

#include "Programs/WrongArgument.h"
#include "Text/TextFile.h"

#include <exception>
#include <string>

using Zent::Discovery::Inventory::SiteFile;

namespace Zent::Discovery::Console
{
SiteFile SiteFileReader::Read(const std::string& path)
{
    try
    {
        return SiteFile::Parse(TextFile::Read(path), TextFile::NameOf(path));
    }
    catch (const std::exception& error) // the file cannot be read, or holds something else
    {
        throw Programs::WrongArgument(std::string(error.what()) + " (bad-file)");
    }
}
} // namespace Zent::Discovery::Console
