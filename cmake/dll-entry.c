#include <windows.h>

BOOL WINAPI DllMainCRTStartup(HINSTANCE module, DWORD reason, LPVOID reserved); /* the C runtime's own */
BOOL WINAPI NfxDllEntry(HINSTANCE module, DWORD reason, LPVOID reserved);

/* A process that ends has lost all its threads but one, wherever they were: perhaps within the lock that each throw of
   an exception takes on 32-bit Windows. The runtime's farewell would wait for that lock without end. It has nothing to
   say that matters: what it would give back goes with the process. */
BOOL WINAPI NfxDllEntry(HINSTANCE module, DWORD reason, LPVOID reserved)
{
    const BOOL isProcessEnding = reason == DLL_PROCESS_DETACH && reserved != NULL;
    return isProcessEnding || DllMainCRTStartup(module, reason, reserved);
}
