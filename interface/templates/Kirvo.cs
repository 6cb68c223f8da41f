// Kirvo: image processing on packed DIBs, for .NET and Mono.
//
// The program needs Kirvo.dll on Windows, of its own width (32 or 64 bits), and libkirvo.so
// elsewhere: with Mono give the program Blur.exe the file Blur.exe.config, a copy of
// Kirvo.dll.config.
//
// Written by script/bindings from interface/kirvo.txt and kirvo.h: changes belong there.

using System;
using System.Runtime.InteropServices;

namespace KirvoImaging
{
    /// <summary>What a call answers: 0 for success, below 0 for an error.</summary>
    public enum KirvoStatus
    {
@{ statuses }@
    }
@{ structures }@

    /// <summary>The functions of the library. Images and other blocks are handles, which the caller
    /// frees with GlobalFree, or owns with a KirvoBlock.</summary>
    public static class Kirvo
    {
        const string Library = "Kirvo.dll";

@{ constants }@
@{ functions }@

        // Conveniences of this file

        /// <summary>Throws KirvoException unless the status is KIRVO_OK.</summary>
        public static void Check(KirvoStatus status)
        {
            if (status != KirvoStatus.KIRVO_OK)
                throw new KirvoException(status);
        }

        /// <summary>The next long operation reports its progress to a function: 0 percent, then
        /// steps of at least 5, and 100 at the end; null ends that. The function must not throw. A
        /// program with a window of its own may instead have WM_COMMAND sent there: KirvoSetProcess.
        /// Away from Windows this sets the window host.</summary>
        public static void Watch(Action<int> progress)
        {
            KirvoWatcher.Watch(progress);
        }

#if NET5_0_OR_GREATER
        static Kirvo()
        {
            KirvoLibraries.Find();
        }
#endif
    }

#if NET5_0_OR_GREATER
    /// <summary>Where the libraries have other names, away from Windows.</summary>
    static class KirvoLibraries
    {
        static KirvoLibraries()
        {
            if (OperatingSystem.IsWindows())
                return;
            try
            {
                NativeLibrary.SetDllImportResolver(typeof(KirvoLibraries).Assembly, Load);
            }
            catch (InvalidOperationException)
            {
                // The program has a resolver of its own, which finds these libraries, too.
            }
        }

        /// <summary>Called before their first function.</summary>
        internal static void Find()
        {
        }

        /// <summary>Other libraries of the program are found as ever.</summary>
        static IntPtr Load(string name, System.Reflection.Assembly assembly, DllImportSearchPath? path)
        {
            switch (name)
            {
                case "Kirvo.dll":
                case "kernel32.dll":
                case "gdi32.dll":
                    return NativeLibrary.Load("libkirvo.so", assembly, path);
                case "KirvoFiles.dll":
                    return NativeLibrary.Load("libkirvofiles.so", assembly, path);
                default:
                    return IntPtr.Zero;
            }
        }
    }
#endif

    /// <summary>A status code other than KIRVO_OK.</summary>
    public sealed class KirvoException : Exception
    {
        /// <summary>The status code.</summary>
        public readonly KirvoStatus Status;

        /// <summary>An exception for a status code.</summary>
        /// <param name="status">the status code</param>
        public KirvoException(KirvoStatus status) : base(status.ToString())
        {
            Status = status;
        }

        /// <summary>An exception for a status code, in words.</summary>
        /// <param name="status">the status code</param>
        /// <param name="message">what went wrong</param>
        public KirvoException(KirvoStatus status, string message) : base(message)
        {
            Status = status;
        }
    }

    /// <summary>Owns an image or another block, and frees it in the end. It stands for its handle in
    /// every call.</summary>
    public sealed class KirvoBlock : SafeHandle
    {
        /// <summary>Takes a handle over.</summary>
        /// <param name="block">the handle, may be zero</param>
        public KirvoBlock(IntPtr block) : base(IntPtr.Zero, true)
        {
            SetHandle(block);
        }

        /// <summary>Whether there is no block.</summary>
        public override bool IsInvalid
        {
            get { return handle == IntPtr.Zero; }
        }

        /// <summary>The handle, which stays owned.</summary>
        /// <param name="block">its owner</param>
        public static implicit operator IntPtr(KirvoBlock block)
        {
            return block.DangerousGetHandle();
        }

        /// <summary>Frees the block.</summary>
        /// <returns>whether it was freed</returns>
        protected override bool ReleaseHandle()
        {
            return Kirvo.GlobalFree(handle) == IntPtr.Zero;
        }
    }

    /// <summary>Receives progress messages: in a hidden window, or as the window host.</summary>
    static class KirvoWatcher
    {
        [UnmanagedFunctionPointer(CallingConvention.Winapi)]
        delegate IntPtr WindowFunction(IntPtr window, uint message, UIntPtr command, IntPtr percent);

        [DllImport("user32.dll", ExactSpelling = true, CharSet = CharSet.Unicode)]
        static extern IntPtr CreateWindowExW(uint extendedStyle, string className, string title,
            uint style, int x, int y, int width, int height, IntPtr parent, IntPtr menu,
            IntPtr instance, IntPtr parameter);

        [DllImport("user32.dll", ExactSpelling = true)]
        static extern IntPtr SetWindowLongW(IntPtr window, int index, WindowFunction function);

        [DllImport("user32.dll", ExactSpelling = true)]
        static extern IntPtr SetWindowLongPtrW(IntPtr window, int index, WindowFunction function);

        [DllImport("user32.dll", ExactSpelling = true)]
        static extern IntPtr DefWindowProcW(IntPtr window, uint message, UIntPtr first,
            IntPtr second);

        const uint Command = 1;
        static readonly IntPtr MessagesOnly = new IntPtr(-3);
        const int WindowFunctionIndex = -4;

        static Action<int> watcher;

        // On Windows each thread has a window, so that no other has to fetch its messages.
        [ThreadStatic]
        static IntPtr window;

        // The library keeps addresses of these, which the collector does not see.
        static WindowFunction windowFunction;
        static KirvoWindowHost host;

        internal static void Watch(Action<int> progress)
        {
            watcher = progress;
            if (window == IntPtr.Zero)
                window = OnWindows ? OpenWindow() : OpenHost();
            Kirvo.KirvoSetProcess(window, Command, progress != null ? 1 : 0);
        }

        static bool OnWindows
        {
            get { return Environment.OSVersion.Platform == PlatformID.Win32NT; }
        }

        static IntPtr OpenWindow()
        {
            if (windowFunction == null)
                windowFunction = (receiver, message, first, second) =>
                    message == Kirvo.WM_COMMAND ? Receive(first, second)
                                                : DefWindowProcW(receiver, message, first, second);
            IntPtr hidden = CreateWindowExW(0, "STATIC", null, 0, 0, 0, 0, 0, MessagesOnly,
                IntPtr.Zero, IntPtr.Zero, IntPtr.Zero);
            if (IntPtr.Size == 4)
                SetWindowLongW(hidden, WindowFunctionIndex, windowFunction);
            else
                SetWindowLongPtrW(hidden, WindowFunctionIndex, windowFunction);
            return hidden;
        }

        static IntPtr OpenHost()
        {
            if (host == null)
                host = new KirvoWindowHost
                {
                    SendMessageA = (receiver, message, first, second) => Receive(first, second)
                };
            Kirvo.KirvoSetWindowHost(host);
            return new IntPtr(1);
        }

        static IntPtr Receive(UIntPtr command, IntPtr percent)
        {
            if (command == new UIntPtr(Command) && watcher != null)
                watcher(percent.ToInt32());
            return IntPtr.Zero;
        }
    }
}
