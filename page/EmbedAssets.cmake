# cmake -DFOLDER=<folder> -DOUTPUT=<file> -DNAMES=<name>,<name>... -P EmbedAssets.cmake: makes a source with the files.

set(type_html "text/html; charset=utf-8")
set(type_css "text/css; charset=utf-8")
set(type_js "text/javascript; charset=utf-8")
set(type_svg "image/svg+xml")

set(arrays "")
set(rows "")
string(REPLACE "," ";" names "${NAMES}")
foreach(name IN LISTS names)
  string(MAKE_C_IDENTIFIER "${name}" identifier)
  string(REGEX REPLACE "^.*\\." "" suffix "${name}")
  file(READ "${FOLDER}/${name}" bytes HEX)
  string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
  string(APPEND arrays "constexpr char Bytes_${identifier}[] = {${bytes}};\n")
  string(APPEND rows "    {\"${name}\", \"${type_${suffix}}\", {Bytes_${identifier}, sizeof(Bytes_${identifier})}},\n")
endforeach()

file(WRITE "${OUTPUT}" "#include \"Assets.h\"

#include <algorithm>
#include <iterator>

namespace Zent::Discovery::Page
{
namespace
{
${arrays}
constexpr Assets::Asset Files[] = {
${rows}};
} // namespace

const Assets::Asset* Assets::Find(std::string_view name)
{
    const auto* const found = std::ranges::find(Files, name, &Asset::Name);
    return found == std::end(Files) ? nullptr : found;
}
} // namespace Zent::Discovery::Page
")
