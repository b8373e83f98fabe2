using System;
using System.Runtime.InteropServices;

namespace Zent.Discovery
{
    // The functions of the C interface by their shapes. On 32-bit Windows they are __stdcall; elsewhere there is one
    // convention, whatever is written here.

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate int PlainFunction();

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate int TextFunction(byte[] text);

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate int TwoTextsFunction(byte[] first, byte[] second);

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate int InitializeFunction(byte[] logPath, int logLevel);

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate IntPtr GetErrorMessageFunction(int errorCode);

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate int SetCallbackFunction(HostCallback callback);

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate void HostCallback(IntPtr hostJson);
}
