using System;
using System.ComponentModel;
using System.Runtime.InteropServices;

namespace Zent.Discovery
{
    /// <summary>The system's own way to libraries and their functions.</summary>
    internal static class SystemLoader
    {
        private const int BindNow = 2; // RTLD_NOW

        public static readonly bool IsWindows = Environment.OSVersion.Platform == PlatformID.Win32NT;

        /// <summary>Zero when it cannot be loaded, with the reason. A loaded library stays.</summary>
        public static IntPtr Load(string name, out string reason)
        {
            IntPtr library = IsWindows ? LoadLibrary(name) : DlOpen(name, BindNow);
            reason = library != IntPtr.Zero ? null
                : IsWindows ? new Win32Exception(Marshal.GetLastWin32Error()).Message
                : Marshal.PtrToStringAnsi(DlError());
            return library;
        }

        /// <summary>Zero when the library lacks the function. The bytes are those of its arguments.</summary>
        public static IntPtr Find(IntPtr library, string function, int argumentBytes)
        {
            if (!IsWindows)
            {
                return DlSym(library, function);
            }
            bool isDecorated = IntPtr.Size == 4;
            return GetProcAddress(library, isDecorated ? "_" + function + "@" + argumentBytes : function);
        }

        /// <summary>Frees memory that the library has handed over.</summary>
        public static void Free(IntPtr memory)
        {
            if (IsWindows)
            {
                Marshal.FreeCoTaskMem(memory);
            }
            else
            {
                CFree(memory);
            }
        }

        [DllImport("kernel32", EntryPoint = "LoadLibraryW", CharSet = CharSet.Unicode, SetLastError = true)]
        private static extern IntPtr LoadLibrary(string name);

        [DllImport("kernel32", CharSet = CharSet.Ansi, BestFitMapping = false)]
        private static extern IntPtr GetProcAddress(IntPtr library, string name);

        [DllImport("libdl.so.2", EntryPoint = "dlopen")]
        private static extern IntPtr DlOpen(string name, int flags);

        [DllImport("libdl.so.2", EntryPoint = "dlsym")]
        private static extern IntPtr DlSym(IntPtr library, string name);

        [DllImport("libdl.so.2", EntryPoint = "dlerror")]
        private static extern IntPtr DlError();

        [DllImport("libc", EntryPoint = "free")]
        private static extern void CFree(IntPtr memory);
    }
}
