#include "Terminal/Keyboard.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Zent::Discovery::Console;

namespace
{
TEST(KeyboardTest, KeysAreReadHoweverTheirBytesComeAndAllElseIsDropped)
{
    using Key = Keyboard::Key;
    std::vector<Key> keys;
    std::string text;
    for (const char* part : {"\x1B", "[A", "x\x1B[5", "~\x1B[15~", "\x1BOFj", "q"})
    {
        text += part;
        while (const std::optional<Key> key = Keyboard::Take(text))
        {
            keys.push_back(*key);
        }
    }
    EXPECT_EQ(keys, (std::vector<Key>{Key::Up, Key::PageUp, Key::End, Key::Down, Key::Quit}));
    EXPECT_EQ(text, "");
}
} // namespace
