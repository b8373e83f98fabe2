#include "Terminal/Keyboard.h"

#include <string_view>

namespace Zent::Discovery::Console
{
namespace
{
struct Sequence
{
    std::string_view Text;
    Keyboard::Key Key;
};

constexpr Sequence Sequences[] = {
    {"\x1B[A", Keyboard::Key::Up},      {"\x1BOA", Keyboard::Key::Up},   {"k", Keyboard::Key::Up},
    {"\x1B[B", Keyboard::Key::Down},    {"\x1BOB", Keyboard::Key::Down}, {"j", Keyboard::Key::Down},
    {"\x1B[5~", Keyboard::Key::PageUp}, {"b", Keyboard::Key::PageUp},    {"\x1B[6~", Keyboard::Key::PageDown},
    {" ", Keyboard::Key::PageDown},     {"\x1B[H", Keyboard::Key::Home}, {"\x1BOH", Keyboard::Key::Home},
    {"\x1B[1~", Keyboard::Key::Home},   {"g", Keyboard::Key::Home},      {"\x1B[F", Keyboard::Key::End},
    {"\x1BOF", Keyboard::Key::End},     {"\x1B[4~", Keyboard::Key::End}, {"G", Keyboard::Key::End},
    {"q", Keyboard::Key::Quit},
};
} // namespace

std::optional<Keyboard::Key> Keyboard::Take(std::string& text)
{
    while (!text.empty())
    {
        bool isBeginning = false;
        for (const Sequence& each : Sequences)
        {
            if (text.starts_with(each.Text))
            {
                text.erase(0, each.Text.size());
                return each.Key;
            }
            isBeginning = isBeginning || each.Text.starts_with(text);
        }
        if (isBeginning)
        {
            return std::nullopt;
        }
        text.erase(0, 1);
    }
    return std::nullopt;
}
} // namespace Zent::Discovery::Console
