#include "Terminal/LineInput.h"

#include <windows.h>

namespace Zent::Discovery::Console
{
bool LineInput::IsSomebodyThere()
{
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode) &&
           GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode);
}

void LineInput::DropTyped()
{
    FlushConsoleInputBuffer(GetStdHandle(STD_INPUT_HANDLE)); // does nothing to what is no console
}

bool LineInput::HasHungUp()
{
    return !IsSomebodyThere();
}
} // namespace Zent::Discovery::Console
