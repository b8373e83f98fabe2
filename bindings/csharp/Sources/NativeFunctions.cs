using System;
using System.Runtime.InteropServices;

namespace Zent.Discovery
{
    // The functions of the C interfaces by their shapes. On 32-bit Windows they are __stdcall; elsewhere there is one
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

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate int CreateFunction(byte[] options, out IntPtr inventory);

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate void FreeFunction(IntPtr inventory);

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate int FeedFunction(IntPtr inventory, int message, byte[] document, long now);

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate int AdvanceTimeFunction(IntPtr inventory, long now);

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate int NextWishFunction(IntPtr inventory, out Wish wish);

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate int WishTextFunction(IntPtr inventory, out IntPtr text, out long change);

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate int AnswerWishFunction(IntPtr inventory, long id, long value);

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate int StartChangeFunction(IntPtr inventory, byte[] request, byte[] options, long now, out long id);

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate int KeptChangesFunction(IntPtr inventory, byte[] macAddress, out IntPtr json);

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate int GetTextFunction(IntPtr inventory, out IntPtr text);

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate int NextTimeFunction(IntPtr inventory, out long time);

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate int StartSearchFunction(IntPtr inventory, byte[] options, long now);

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate int SearchStateFunction(IntPtr inventory, out int isOver, out IntPtr report);

    [UnmanagedFunctionPointer(CallingConvention.StdCall)]
    internal delegate IntPtr GetLastErrorFunction();

    internal enum MessageKind
    {
        Signature = 0,
        Hello = 1,
        Bye = 2
    }

    internal enum WishKind
    {
        None = 0,
        AskAll = 1,
        AskMac = 2,
        AskIP = 3,
        Rename = 6,
        RenameAt = 7,
        Configure = 8
    }

    [StructLayout(LayoutKind.Sequential)]
    internal struct Wish
    {
        public WishKind Kind;
        public IntPtr Address;
        public long Id;
    }
}
