#include "LogStream/PrintableText.h"

#include <algorithm>

namespace Nfx::System::LogStreams
{
namespace
{
bool IsControl(char character)
{
    const unsigned char byte = static_cast<unsigned char>(character);
    return byte < 32 || byte == 127;
}
} // namespace

void AppendPrintable(std::string& target, std::string_view text)
{
    static constexpr char Digits[] = "0123456789ABCDEF";
    auto rest = text.begin();
    for (auto control = std::find_if(rest, text.end(), IsControl); control != text.end();
         control = std::find_if(rest, text.end(), IsControl))
    {
        const unsigned char byte = static_cast<unsigned char>(*control);
        target.append(rest, control);
        target.append("\\x");
        target.push_back(Digits[byte >> 4]);
        target.push_back(Digits[byte & 15]);
        rest = control + 1;
    }
    target.append(rest, text.end());
}
} // namespace Nfx::System::LogStreams
