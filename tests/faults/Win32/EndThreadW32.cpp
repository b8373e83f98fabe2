#include "EndThread.h"

#include "Os/Win32/PlatformW32.h"

void Tests::EndThread()
{
    ExitThread(0);
}
