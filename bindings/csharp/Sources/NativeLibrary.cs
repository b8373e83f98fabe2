using System;
using System.IO;
using System.Runtime.InteropServices;
using System.Text;

namespace Zent.Discovery
{
    /// <summary>
    /// A loaded library. Its functions are found at run time, so that a host chooses the file, and hears of a missing
    /// function at once instead of at the first call.
    /// </summary>
    internal abstract class NativeLibrary
    {
        private readonly string product;
        private readonly string name;

        /// <param name="product">The library's name without what systems add to it.</param>
        /// <param name="path">The file; null for the environment variable's, or where such files lie.</param>
        /// <param name="variable">The environment variable.</param>
        protected NativeLibrary(string product, string path, string variable)
        {
            this.product = product;
            if (string.IsNullOrEmpty(path))
            {
                path = Environment.GetEnvironmentVariable(variable);
            }
            name = string.IsNullOrEmpty(path) ? DefaultName(product) : Path.GetFullPath(path);
            Handle = SystemLoader.Load(name, out string reason);
            if (Handle == IntPtr.Zero)
            {
                throw new DllNotFoundException(
                    "cannot load the library " + name + ": " + reason + "; give its path as the argument libraryPath " +
                    "or in the environment variable " + variable);
            }
        }

        /// <summary>The same for every load of one file, which has one state.</summary>
        public IntPtr Handle { get; }

        /// <summary>Copies a text that ends with NUL; bytes that are not UTF-8 become U+FFFD.</summary>
        public static string Text(IntPtr text)
        {
            return Encoding.UTF8.GetString(TextBytes(text));
        }

        /// <summary>Copies a text that ends with NUL, without that.</summary>
        public static byte[] TextBytes(IntPtr text)
        {
            int length = 0;
            while (Marshal.ReadByte(text, length) != 0)
            {
                ++length;
            }
            var bytes = new byte[length];
            Marshal.Copy(text, bytes, 0, length);
            return bytes;
        }

        /// <summary>A text for the library.</summary>
        public static byte[] Bytes(string text, string parameter)
        {
            if (text == null)
            {
                throw new ArgumentNullException(parameter);
            }
            if (text.IndexOf('\0') >= 0)
            {
                throw new ArgumentException("a text must not contain NUL", parameter);
            }
            return Encoding.UTF8.GetBytes(text + "\0");
        }

        /// <summary>Where NuGet puts the library for a program, else its name for the system.</summary>
        private static string DefaultName(string product)
        {
            string folder = AppDomain.CurrentDomain.BaseDirectory;
            string file = SystemLoader.IsWindows ? product + ".dll" : "lib" + product + ".so";
            string platform = (SystemLoader.IsWindows ? "win-" : "linux-") + (IntPtr.Size == 4 ? "x86" : "x64");
            foreach (string path in new[] { Path.Combine(folder, file),
                                            Path.Combine(folder, "runtimes", platform, "native", file) })
            {
                if (File.Exists(path))
                {
                    return path;
                }
            }
            return SystemLoader.IsWindows ? file : file + ".1"; // its binary interface
        }

        protected void Bind<T>(out T function, string functionName, int argumentBytes)
        {
            IntPtr address = SystemLoader.Find(Handle, functionName, argumentBytes);
            if (address == IntPtr.Zero)
            {
                throw new EntryPointNotFoundException(
                    name + " lacks the function " + functionName + ": it is not " + product);
            }
            function = Marshal.GetDelegateForFunctionPointer<T>(address);
        }
    }
}
