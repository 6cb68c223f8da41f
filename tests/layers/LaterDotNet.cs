// What the classes take of .NET 5 and later, by stand-ins for Mono, and what they do there: LaterDotNet
//
// Mono finds the libraries by its own means: here is seen which names the resolver would answer, and
// that it is set before the first call, whichever class is used first.

using System;
using System.Collections.Generic;
using System.Reflection;
using KirvoImaging;

namespace System
{
    public static class OperatingSystem
    {
        public static bool IsWindows()
        {
            return false;
        }
    }
}

namespace System.Runtime.CompilerServices
{
    public static class Unsafe
    {
        public static ref T NullRef<T>()
        {
            return ref new T[1][0];
        }

        public static ref T AddByteOffset<T>(ref T place, IntPtr offset)
        {
            return ref place;
        }
    }
}

namespace System.Runtime.InteropServices
{
    public delegate IntPtr DllImportResolver(string name, Assembly assembly, DllImportSearchPath? path);

    public static class NativeLibrary
    {
        public static DllImportResolver Resolver;
        public static readonly List<string> Loaded = new List<string>();

        public static void SetDllImportResolver(Assembly assembly, DllImportResolver resolver)
        {
            if (Resolver != null)
                throw new InvalidOperationException();
            Resolver = resolver;
        }

        public static IntPtr Load(string name, Assembly assembly, DllImportSearchPath? path)
        {
            Loaded.Add(name);
            return new IntPtr(1);
        }
    }

    public static class MemoryMarshal
    {
        public static Span<T> CreateSpan<T>(ref T first, int length)
        {
            return new Span<T>(new T[length]);
        }
    }
}

static class LaterDotNet
{
    static int Main(string[] arguments)
    {
        Use(arguments[0]); // in a method of its own: its classes are not looked at before
        var answers = new List<string>();
        foreach (string name in new[] { "Kirvo.dll", "KirvoFiles.dll", "kernel32.dll", "libc" })
            answers.Add(System.Runtime.InteropServices.NativeLibrary.Resolver(name, null, null).ToString());
        string loaded = string.Join(" ", System.Runtime.InteropServices.NativeLibrary.Loaded);
        Console.WriteLine("{0}: {1}", string.Join(" ", answers), loaded);
        return string.Join(" ", answers) == "1 1 1 0" &&
               loaded == "libkirvo.so libkirvofiles.so libkirvo.so" ? 0 : 1;
    }

    static void Use(string first)
    {
        if (first == "image")
            try
            {
                KirvoImage.Open("no such picture.jpg");
            }
            catch (KirvoException)
            {
            }
        else if (first == "files")
            KirvoFiles.KirvoFilesAbilities(1);
        Kirvo.GetVerKirvoDll();
        int rows = 0;
        new KirvoImage(5, 3).ForEachRow((y, row) => rows += row.Length == 15 ? 1 : 0);
        if (rows != 3)
            throw new InvalidOperationException("ForEachRow");
    }
}
