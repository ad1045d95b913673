using System;
using System.Runtime.InteropServices;

namespace Corvale
{
    /// <summary>A shared library, opened with local scope by the system's own loader, for good.</summary>
    internal sealed class Loader
    {
        private const int Now = 2; // RTLD_NOW as on Linux; RTLD_LOCAL is 0 there

        private readonly IntPtr library;

        public Loader(string path)
        {
            dlerror(); // Mono finds it at its first call, which would forget the reason
            library = dlopen(path, Now);
            if (library == IntPtr.Zero) throw new DllNotFoundException(Reason());
        }

        /// <summary>A function as a delegate of a type that has its name.</summary>
        public Delegate Find(Type type)
        {
            var symbol = dlsym(library, type.Name);
            if (symbol == IntPtr.Zero) throw new EntryPointNotFoundException(Reason());
            return Marshal.GetDelegateForFunctionPointer(symbol, type);
        }

        private static string Reason()
        {
            return Marshal.PtrToStringAnsi(dlerror()) ?? "the loader gave no reason";
        }

        [DllImport("libdl.so.2")] private static extern IntPtr dlopen(string path, int mode);
        [DllImport("libdl.so.2")] private static extern IntPtr dlsym(IntPtr library, string symbol);
        [DllImport("libdl.so.2")] private static extern IntPtr dlerror();
    }
}
