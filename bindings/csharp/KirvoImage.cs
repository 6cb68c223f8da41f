// Kirvo: pictures opened, changed and saved, for .NET and Mono. Compiled together with Kirvo.cs.
//
// Effects give a new picture and leave their own alone; a picture of a depth that an effect does not
// take becomes one of 24 bits first. What fails throws KirvoException. Threads take turns in the
// library.
//
// Written by script/bindings from interface/: changes belong there.

using System;
using System.Collections.Generic;
using System.IO;
using System.Runtime.ExceptionServices;
using System.Runtime.InteropServices;
using System.Text;
using System.Threading;

namespace KirvoImaging
{
    /// <summary>The part of a picture that an effect works on. A width or height below 0 goes as far as
    /// the picture.</summary>
    public struct KirvoArea
    {
        /// <summary>The left column.</summary>
        public readonly int X;
        /// <summary>The top row.</summary>
        public readonly int Y;
        /// <summary>Columns.</summary>
        public readonly int Width;
        /// <summary>Rows.</summary>
        public readonly int Height;

        /// <summary>A part of a picture.</summary>
        /// <param name="x">the left column</param>
        /// <param name="y">the top row</param>
        /// <param name="width">columns</param>
        /// <param name="height">rows</param>
        public KirvoArea(int x, int y, int width = -1, int height = -1)
        {
            X = x;
            Y = y;
            Width = width;
            Height = height;
        }
    }

    /// <summary>A range of values.</summary>
    public struct KirvoRange
    {
        /// <summary>The lowest value.</summary>
        public readonly short Lower;
        /// <summary>The highest value.</summary>
        public readonly short Upper;
        /// <summary>0: anything passes; 1: what is inside; 2: what is outside.</summary>
        public readonly short Test;

        /// <summary>A range.</summary>
        /// <param name="lower">the lowest value</param>
        /// <param name="upper">the highest value</param>
        /// <param name="test">0: anything passes; 1: what is inside; 2: what is outside</param>
        public KirvoRange(short lower, short upper, short test = 1)
        {
            Lower = lower;
            Upper = upper;
            Test = test;
        }

        /// <summary>As KeepChannels takes it.</summary>
        /// <param name="range">the range</param>
        public static implicit operator uint(KirvoRange range)
        {
            return (byte)range.Lower | (uint)(byte)range.Upper << 8 | (uint)(byte)range.Test << 16;
        }
    }

    /// <summary>How often each of 256 values of each channel occurs.</summary>
    public sealed class KirvoHistogram
    {
        /// <summary>Of red.</summary>
        public readonly uint[] Red = new uint[256];
        /// <summary>Of green.</summary>
        public readonly uint[] Green = new uint[256];
        /// <summary>Of blue.</summary>
        public readonly uint[] Blue = new uint[256];
    }

    /// <summary>How a picture is opened.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public sealed class KirvoOpenOptions
    {
        readonly int size = Marshal.SizeOf(typeof(KirvoOpenOptions));
        /// <summary>KIRVO_FILES_NO_TURN to KIRVO_FILES_BACKGROUND of kirvo_files.h, added.</summary>
        public uint Flags;
        /// <summary>The colour below what is transparent.</summary>
        public uint Background;
        /// <summary>Which picture of the file, from 1; 0 for the usual one.</summary>
        public uint Frame;
    }

    /// <summary>How a picture is saved; what is 0 is as usual.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public sealed class KirvoSaveOptions
    {
        readonly int size = Marshal.SizeOf(typeof(KirvoSaveOptions));
        /// <summary>A KirvoFilesFormat; 0: as the name tells.</summary>
        public int Format;
        /// <summary>KIRVO_FILES_STRIP to KIRVO_FILES_FRESH of kirvo_files.h, added.</summary>
        public uint Flags;
        /// <summary>JPEG and WebP: 1 to 100.</summary>
        public uint Quality;
        /// <summary>JPEG: 1 to 5 in place of the quality.</summary>
        public uint Level;
        /// <summary>JPEG: 1, 2 or 4.</summary>
        public uint Subsample;
        /// <summary>JPEG and WebP: the most bytes.</summary>
        public uint SizeLimit;
        /// <summary>Bits of a pixel.</summary>
        public uint Bits;
        /// <summary>TIFF: a KirvoFilesCompression.</summary>
        public int Compression;
        readonly uint reserved = 0;

        internal KirvoSaveOptions Copy()
        {
            return (KirvoSaveOptions)MemberwiseClone();
        }

        /// <summary>Dots an inch across.</summary>
        public double DpiAcross;
        /// <summary>Dots an inch down.</summary>
        public double DpiDown;
    }

    /// <summary>The functions of KirvoFilesCalls. Names are UTF-8 on every system.</summary>
    static class KirvoFilesCalls
    {
        const string Library = "KirvoFiles.dll";

#if NET5_0_OR_GREATER
        static KirvoFilesCalls()
        {
            KirvoLibraries.Find();
        }
#endif

        [DllImport(Library, ExactSpelling = true)]
        static extern uint KirvoFilesStatusText(KirvoStatus status, byte[] text, uint capacity);
        [DllImport(Library, ExactSpelling = true)]
        static extern uint KirvoFilesText(IntPtr file, int kind, uint index, byte[] text,
            uint capacity);
        [DllImport(Library, ExactSpelling = true)]
        internal static extern KirvoStatus KirvoFilesOpen(byte[] name, KirvoOpenOptions options,
            out IntPtr dib, out IntPtr file);
        [DllImport(Library, ExactSpelling = true)]
        internal static extern KirvoStatus KirvoFilesOpenMemory(byte[] bytes, uint count,
            KirvoOpenOptions options, out IntPtr dib, out IntPtr file);
        [DllImport(Library, ExactSpelling = true)]
        internal static extern KirvoStatus KirvoFilesSave(byte[] name, IntPtr dib, IntPtr source,
            KirvoSaveOptions options, out IntPtr file);
        [DllImport(Library, ExactSpelling = true)]
        internal static extern KirvoStatus KirvoFilesSaveMemory(IntPtr dib, IntPtr source,
            KirvoSaveOptions options, out IntPtr block, out uint count, out IntPtr file);
        [DllImport(Library, ExactSpelling = true)]
        internal static extern int KirvoFilesFormatOf(byte[] name);
        [DllImport(Library, ExactSpelling = true)]
        internal static extern void KirvoFilesClose(IntPtr file);
        [DllImport(Library, ExactSpelling = true)]
        internal static extern int KirvoFilesNote(IntPtr file, uint index);

        internal static byte[] Name(string name)
        {
            if (name == null)
                throw new ArgumentNullException("name");
            if (name.IndexOf('\0') >= 0)
                throw new ArgumentException("a name has no null character", "name");
            return Encoding.UTF8.GetBytes(name + "\0");
        }

        internal static string Text(IntPtr file, int kind, uint index)
        {
            var room = new byte[KirvoFilesText(file, kind, index, null, 0)];
            KirvoFilesText(file, kind, index, room, (uint)room.Length);
            return Encoding.UTF8.GetString(room, 0, room.Length - 1);
        }

        /// <summary>The error of a file carries the library's own words, which name the file.</summary>
        internal static void Check(KirvoStatus status, IntPtr file)
        {
            if (status == KirvoStatus.KIRVO_OK)
                return;
            string text = file != IntPtr.Zero ? Text(file, 0, 0) : "";
            if (text.Length == 0)
            {
                var room = new byte[KirvoFilesStatusText(status, null, 0)];
                KirvoFilesStatusText(status, room, (uint)room.Length);
                text = Encoding.UTF8.GetString(room, 0, room.Length - 1);
            }
            throw new KirvoException(status, text);
        }
    }

    /// <summary>What is known of a file; pictures that came from it share this.</summary>
    sealed class KirvoFile : SafeHandle
    {
        internal KirvoFile(IntPtr file) : base(IntPtr.Zero, true)
        {
            SetHandle(file);
        }

        public override bool IsInvalid
        {
            get { return handle == IntPtr.Zero; }
        }

        protected override bool ReleaseHandle()
        {
            KirvoFilesCalls.KirvoFilesClose(handle);
            return true;
        }
    }

    /// <summary>One operation of the library at a time, with its progress.</summary>
    sealed class KirvoOperation : IDisposable
    {
        [ThreadStatic]
        internal static KirvoWatch Listener;

        static readonly object Library = new object();
        static KirvoOperation current;

        readonly KirvoOperation outer;
        KirvoWatch watch;
        ExceptionDispatchInfo thrown;
        int last = -1;

        internal KirvoOperation()
        {
            Monitor.Enter(Library);
            outer = current;
            current = this;
        }

        /// <summary>The next call of the library is what reports; operations inside another do not.</summary>
        internal void Begin()
        {
            watch = outer == null ? Listener : null;
            if (watch == null)
                return;
            watch.Token.ThrowIfCancellationRequested();
            Kirvo.Watch(Receive);
        }

        /// <summary>After the call: throws what a report has thrown.</summary>
        internal void End(bool succeeded)
        {
            if (watch != null && thrown == null && succeeded && last != 100)
                Receive(100);
            if (thrown != null)
                thrown.Throw();
        }

        public void Dispose()
        {
            if (watch != null)
                Kirvo.Watch(null);
            current = outer;
            Monitor.Exit(Library);
        }

        void Receive(int percent)
        {
            if (thrown != null)
                return;
            Kirvo.Watch(null); // what the report itself does is not reported
            try
            {
                last = percent;
                watch.Token.ThrowIfCancellationRequested();
                if (watch.Progress != null)
                    watch.Progress.Report(percent);
                Kirvo.Watch(Receive);
            }
            catch (Exception error)
            {
                thrown = ExceptionDispatchInfo.Capture(error);
                Abandon();
            }
        }

        /// <summary>A codec stops; an effect runs to its end without further reports.</summary>
        static void Abandon()
        {
            IntPtr image;
            uint bytes;
            Kirvo.JpgDecNext(IntPtr.Zero, 0, -1, out image);
            Kirvo.JpgCodNext(-1, out bytes);
            Kirvo.JpgCodNext_M(-1, out bytes);
        }
    }

    /// <summary>The operations of this thread report, and can be cancelled, until this is disposed. What
    /// the report throws ends the operation and reaches its caller.</summary>
    public sealed class KirvoWatch : IDisposable
    {
        readonly KirvoWatch outer;
        internal readonly IProgress<int> Progress;
        internal readonly CancellationToken Token;

        /// <summary>Watches this thread's operations.</summary>
        /// <param name="progress">receives percentages: 0, then steps of at least 5, and 100; may be
        /// null</param>
        /// <param name="token">ends an operation with OperationCanceledException</param>
        public KirvoWatch(IProgress<int> progress,
            CancellationToken token = default(CancellationToken))
        {
            Progress = progress;
            Token = token;
            outer = KirvoOperation.Listener;
            KirvoOperation.Listener = this;
        }

        /// <summary>Ends the watch.</summary>
        public void Dispose()
        {
            KirvoOperation.Listener = outer;
        }
    }

    /// <summary>A picture: a packed DIB of 1, 4, 8, 16, 24 or 32 bits.</summary>
    public sealed partial class KirvoImage : IDisposable
    {
        delegate IntPtr Maker(IntPtr dib, KirvoArea area, out KirvoStatus status);
        delegate KirvoStatus Worker(IntPtr dib, KirvoArea area);

        const int HeaderBytes = 40;

        KirvoBlock block;
        readonly KirvoFile file;

        KirvoImage(IntPtr dib, KirvoFile file)
        {
            block = new KirvoBlock(dib);
            this.file = file;
        }

        /// <summary>A new picture, black.</summary>
        /// <param name="width">pixels</param>
        /// <param name="height">pixels</param>
        /// <param name="bits">1, 4, 8, 16, 24 or 32</param>
        public KirvoImage(int width, int height, int bits = 24)
            : this(width > 0 ? Kirvo.DibMemAllocEx((uint)width, height, (uint)bits) : IntPtr.Zero, null)
        {
            if (block.IsInvalid)
                throw new KirvoException(KirvoStatus.KIRVO_BAD_PARAMETER,
                    "KirvoImage: no such size or depth, or not enough memory");
            if (bits == 16)
                WriteMasks(0xF800, 0x07E0, 0x001F);
            if (bits == 32)
                WriteMasks(0x00FF0000, 0x0000FF00, 0x000000FF);
        }

        void WriteMasks(params int[] masks)
        {
            WithBytes(address =>
            {
                Marshal.Copy(masks, 0, address + HeaderBytes, masks.Length);
                return 0;
            });
        }

        /// <summary>Frees the picture; using it later throws ObjectDisposedException.</summary>
        public void Dispose()
        {
            block.Dispose();
        }

        // Files

        /// <summary>Opens a picture of any format, turned upright.</summary>
        /// <param name="name">the file</param>
        /// <param name="progress">receives percentages; may be null</param>
        /// <param name="token">ends the operation</param>
        /// <param name="options">how; may be null</param>
        /// <returns>the picture</returns>
        public static KirvoImage Open(string name, IProgress<int> progress = null,
            CancellationToken token = default(CancellationToken), KirvoOpenOptions options = null)
        {
            byte[] bytes = KirvoFilesCalls.Name(name);
            return Opened(progress, token, (out IntPtr dib, out IntPtr known) =>
                KirvoFilesCalls.KirvoFilesOpen(bytes, options, out dib, out known));
        }

        /// <summary>Opens a file that is in memory.</summary>
        /// <param name="bytes">its content</param>
        /// <param name="options">how; may be null</param>
        /// <returns>the picture</returns>
        public static KirvoImage Open(byte[] bytes, KirvoOpenOptions options = null)
        {
            return Opened(null, CancellationToken.None, (out IntPtr dib, out IntPtr known) =>
                KirvoFilesCalls.KirvoFilesOpenMemory(bytes, (uint)bytes.Length, options, out dib, out known));
        }

        /// <summary>Opens what a stream gives from where it stands.</summary>
        /// <param name="stream">the stream</param>
        /// <param name="options">how; may be null</param>
        /// <returns>the picture</returns>
        public static KirvoImage Open(Stream stream, KirvoOpenOptions options = null)
        {
            using (var bytes = new MemoryStream())
            {
                stream.CopyTo(bytes);
                return Open(bytes.ToArray(), options);
            }
        }

        delegate KirvoStatus Opener(out IntPtr dib, out IntPtr known);

        static KirvoImage Opened(IProgress<int> progress, CancellationToken token, Opener open)
        {
            using (progress != null || token.CanBeCanceled ? new KirvoWatch(progress, token) : null)
            using (var operation = new KirvoOperation())
            {
                IntPtr dib, known;
                operation.Begin();
                KirvoStatus status = open(out dib, out known);
                var image = new KirvoImage(dib, new KirvoFile(known));
                try
                {
                    operation.End(status == KirvoStatus.KIRVO_OK);
                    KirvoFilesCalls.Check(status, known);
                    return image;
                }
                catch
                {
                    image.Dispose();
                    throw;
                }
            }
        }

        /// <summary>Saves the picture in the format that the name tells, complete or not at all. What the
        /// file that it came from knew besides its pixels goes along.</summary>
        /// <param name="name">the file</param>
        /// <param name="options">how; may be null</param>
        public void Save(string name, KirvoSaveOptions options = null)
        {
            byte[] bytes = KirvoFilesCalls.Name(name);
            Saved((IntPtr dib, IntPtr source, out IntPtr known) =>
                KirvoFilesCalls.KirvoFilesSave(bytes, dib, source, options, out known));
        }

        /// <summary>The picture as the bytes of a file.</summary>
        /// <param name="format">"png", "jpg", ...</param>
        /// <param name="options">how; may be null</param>
        /// <returns>the bytes</returns>
        public byte[] ToBytes(string format, KirvoSaveOptions options = null)
        {
            KirvoSaveOptions how = options != null ? options.Copy() : new KirvoSaveOptions();
            if (how.Format == 0)
                how.Format = KirvoFilesCalls.KirvoFilesFormatOf(KirvoFilesCalls.Name(format));
            IntPtr made = IntPtr.Zero;
            uint count = 0;
            Saved((IntPtr dib, IntPtr source, out IntPtr known) =>
                KirvoFilesCalls.KirvoFilesSaveMemory(dib, source, how, out made, out count, out known));
            using (new KirvoBlock(made))
            {
                var bytes = new byte[count];
                Marshal.Copy(Kirvo.GlobalLock(made), bytes, 0, bytes.Length);
                Kirvo.GlobalUnlock(made);
                return bytes;
            }
        }

        /// <summary>Writes the picture to a stream as a file.</summary>
        /// <param name="stream">the stream</param>
        /// <param name="format">"png", "jpg", ...</param>
        /// <param name="options">how; may be null</param>
        public void Save(Stream stream, string format, KirvoSaveOptions options = null)
        {
            byte[] bytes = ToBytes(format, options);
            stream.Write(bytes, 0, bytes.Length);
        }

        delegate KirvoStatus Saver(IntPtr dib, IntPtr source, out IntPtr known);

        void Saved(Saver save)
        {
            Held(dib =>
            {
                using (var operation = new KirvoOperation())
                {
                    IntPtr known;
                    operation.Begin();
                    KirvoStatus status =
                        save(dib, file != null ? file.DangerousGetHandle() : IntPtr.Zero, out known);
                    using (new KirvoFile(known))
                    {
                        operation.End(status == KirvoStatus.KIRVO_OK);
                        KirvoFilesCalls.Check(status, known);
                    }
                }
                GC.KeepAlive(file);
                return 0;
            });
        }

        /// <summary>What had to be left out or repaired when the picture was opened.</summary>
        public IList<string> Notes
        {
            get
            {
                var notes = new List<string>();
                if (file != null)
                    for (uint i = 0; KirvoFilesCalls.KirvoFilesNote(file.DangerousGetHandle(), i) != 0; ++i)
                        notes.Add(KirvoFilesCalls.Text(file.DangerousGetHandle(), 1, i));
                GC.KeepAlive(file);
                return notes;
            }
        }

        // Size and pixels

        /// <summary>Pixels across.</summary>
        public int Width
        {
            get { return WithBytes(address => Marshal.ReadInt32(address, 4)); }
        }

        /// <summary>Pixels down.</summary>
        public int Height
        {
            get { return WithBytes(address => Marshal.ReadInt32(address, 8)); }
        }

        /// <summary>Bits of a pixel.</summary>
        public int Bits
        {
            get { return WithBytes(address => Marshal.ReadInt16(address, 14)); }
        }

        /// <summary>The packed DIB for the functions of Kirvo; it stays owned.</summary>
        public KirvoBlock Block
        {
            get { return block; }
        }

        /// <summary>Bytes of a row with its padding.</summary>
        public int Stride
        {
            get { return (int)(((long)Width * Bits + 31) / 32 * 4); }
        }

        IntPtr RowAddress(IntPtr address, int y)
        {
            if (y < 0 || y >= Height)
                throw new ArgumentOutOfRangeException("y");
            long start = Marshal.ReadInt32(address) + Kirvo.PaletteSize(address);
            return new IntPtr(address.ToInt64() + start + (long)Stride * (Height - 1 - y));
        }

        /// <summary>The bytes of row y from the top, with padding; a pixel of 24 bits is blue, green,
        /// red.</summary>
        /// <param name="y">the row</param>
        /// <returns>a copy</returns>
        public byte[] ReadRow(int y)
        {
            return WithBytes(address =>
            {
                var row = new byte[Stride];
                Marshal.Copy(RowAddress(address, y), row, 0, row.Length);
                return row;
            });
        }

        /// <summary>Writes the bytes of row y from the top.</summary>
        /// <param name="y">the row</param>
        /// <param name="row">as many bytes as Stride, or fewer</param>
        public void WriteRow(int y, byte[] row)
        {
            WithBytes(address =>
            {
                Marshal.Copy(row, 0, RowAddress(address, y), Math.Min(row.Length, Stride));
                return 0;
            });
        }

#if NET5_0_OR_GREATER
        /// <summary>Calls a function with the bytes of each row from the top, which are the picture's
        /// own.</summary>
        /// <param name="call">takes the row's number and its bytes</param>
        public void ForEachRow(KirvoRowFunction call)
        {
            int bytes = (int)(((long)Width * Bits + 7) / 8);
            for (int y = 0; y < Height; ++y)
                WithBytes(address =>
                {
                    call(y, SpanOf(RowAddress(address, y), bytes));
                    return 0;
                });
        }

        static Span<byte> SpanOf(IntPtr address, int bytes)
        {
            return MemoryMarshal.CreateSpan(ref System.Runtime.CompilerServices.Unsafe.AddByteOffset(
                ref System.Runtime.CompilerServices.Unsafe.NullRef<byte>(), address), bytes);
        }
#endif

        /// <summary>A colour as the library writes it: 0x00BBGGRR.</summary>
        /// <param name="red">0 to 255</param>
        /// <param name="green">0 to 255</param>
        /// <param name="blue">0 to 255</param>
        /// <returns>the colour</returns>
        public static uint Rgb(byte red, byte green, byte blue)
        {
            return red | (uint)green << 8 | (uint)blue << 16;
        }

        /// <summary>Another picture of the same pixels.</summary>
        /// <returns>the copy</returns>
        public KirvoImage Copy()
        {
            return WithBytes(address =>
            {
                long size = (long)Kirvo.GlobalSize(block).ToUInt64();
                IntPtr dib = Kirvo.GlobalAlloc(Kirvo.GHND, new UIntPtr((ulong)size));
                if (dib == IntPtr.Zero)
                    throw Failure(KirvoStatus.KIRVO_NO_MEMORY, "Copy");
                IntPtr to = Kirvo.GlobalLock(dib);
                var piece = new byte[1 << 20];
                for (long at = 0; at < size; at += piece.Length)
                {
                    int count = (int)Math.Min(piece.Length, size - at);
                    Marshal.Copy(new IntPtr(address.ToInt64() + at), piece, 0, count);
                    Marshal.Copy(piece, 0, new IntPtr(to.ToInt64() + at), count);
                }
                Kirvo.GlobalUnlock(dib);
                return new KirvoImage(dib, file);
            });
        }

        /// <summary>The picture at another depth.</summary>
        /// <param name="bits">16, 24 or 32</param>
        /// <returns>the new picture</returns>
        public KirvoImage Convert(int bits)
        {
            int now = Bits;
            if (bits != 16 && bits != 24 && bits != 32)
                throw new ArgumentOutOfRangeException("bits", "16, 24 or 32 bits");
            if (bits == now)
                return Copy();
            if (now <= 8 && bits != 24)
                using (KirvoImage colour = Convert(24))
                    return colour.Convert(bits);
            return Make("Convert", new[] { 1, 4, 8, 16, 24, 32 }, null,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    now <= 8 ? Kirvo.IncreaseColor16M(dib, out status) :
                    bits == 24 ? Kirvo.DibConvert24bit(dib, out status) :
                    bits == 16 ? Kirvo.DibConvert16bit(dib, out status) :
                    Kirvo.DibConvert32bit(dib, out status));
        }

        // Effects

        /// <summary>Duplicates a rectangle into a new image of the same depth, with its colour
        /// table or masks.</summary>
        /// <param name="left">rectangle in the source</param>
        /// <param name="top">rectangle in the source</param>
        /// <param name="width">rectangle in the source</param>
        /// <param name="height">rectangle in the source</param>
        /// <returns>the new picture</returns>
        public KirvoImage Crop(int left, int top, int width, int height)
        {
            return Make("Crop", new[] { 8, 16, 24, 32 }, null,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.Dib24DupEx(dib, left, top, width, height, out status));
        }

        /// <summary>Resizes a rectangle into a new image by taking the nearest pixel, as
        /// Dib24ZoomEx but with 32-bit coordinates, or by averaging.</summary>
        /// <param name="newWidth">size of the result, at least 1</param>
        /// <param name="newHeight">size of the result, at least 1</param>
        /// <param name="smooth">1 switches smoothing on, any other value off</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage Resize(int newWidth, int newHeight, bool smooth = true,
            KirvoArea? area = null)
        {
            return Make("Resize", new[] { 16, 24, 32 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.Dib24ZoomEx2(dib, a.X, a.Y, a.Width, a.Height, newWidth, newHeight, out status,
                        smooth ? 1 : 0));
        }

        /// <summary>Turns a rectangle upside down.</summary>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage Flip(KirvoArea? area = null)
        {
            return Changed("Flip", new[] { 8, 16, 24, 32 }, area,
                (dib, a) =>
                    Kirvo.Dib24Flip(dib, a.X, a.Y, a.Width, a.Height));
        }

        /// <summary>Exchanges left and right in a rectangle.</summary>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage Mirror(KirvoArea? area = null)
        {
            return Changed("Mirror", new[] { 8, 16, 24, 32 }, area,
                (dib, a) =>
                    Kirvo.Dib24Mirror(dib, a.X, a.Y, a.Width, a.Height));
        }

        /// <summary>Turns a rectangle by 180 degrees.</summary>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage Rotate180(KirvoArea? area = null)
        {
            return Changed("Rotate180", new[] { 8, 16, 24, 32 }, area,
                (dib, a) =>
                    Kirvo.Dib24FlipMirror(dib, a.X, a.Y, a.Width, a.Height));
        }

        /// <summary>Turns a rectangle by 90 degrees into a new image of height x width pixels, with
        /// the source's colour table or masks.</summary>
        /// <param name="direction">0 clockwise: the top left corner goes to the top right; 1
        /// counter-clockwise: it goes to the bottom left</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage Rotate90(int direction = 0, KirvoArea? area = null)
        {
            return Make("Rotate90", new[] { 8, 16, 24, 32 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.Dib24Rotate(dib, a.X, a.Y, a.Width, a.Height, direction, out status));
        }

        /// <summary>Brightens or darkens: channel + level * 255 / 100 (truncated), clamped to
        /// 0..255.</summary>
        /// <param name="level">-100 to 100</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage Brightness(int level, KirvoArea? area = null)
        {
            return Make("Brightness", new[] { 24, 32 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.Dib24Brightness(dib, a.X, a.Y, a.Width, a.Height, level, out status));
        }

        /// <summary>Raises or lowers the contrast around mid-grey: channel * (level + 100) / 100 +
        /// -128 * level / 100 (both truncated), clamped to 0..255.</summary>
        /// <param name="level">-100 (all grey) to 100 (2 * channel - 128)</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage Contrast(int level, KirvoArea? area = null)
        {
            return Make("Contrast", new[] { 24, 32 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.Dib24Contrast(dib, a.X, a.Y, a.Width, a.Height, level, out status));
        }

        /// <summary>Corrects the gamma: 255 * (channel / 255)^gamma in double precision,
        /// truncated.</summary>
        /// <param name="gamma">0 or more</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage Gamma(double gamma, KirvoArea? area = null)
        {
            return Make("Gamma", new[] { 24 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.Dib24Gamma(dib, a.X, a.Y, a.Width, a.Height, gamma, out status));
        }

        /// <summary>Corrects the gamma of each channel, as Dib24Gamma does.</summary>
        /// <param name="red">gammas, 0 or more</param>
        /// <param name="green">gammas, 0 or more</param>
        /// <param name="blue">gammas, 0 or more</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage GammaChannels(double red = 1, double green = 1, double blue = 1,
            KirvoArea? area = null)
        {
            return Make("GammaChannels", new[] { 8, 16, 24, 32 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.DibGammaEx(dib, a.X, a.Y, a.Width, a.Height, red, green, blue, out status));
        }

        /// <summary>Multiplies all channels by a fraction: channel * numerator / denominator,
        /// truncated, 255 at most.</summary>
        /// <param name="numerator">1 to 255</param>
        /// <param name="denominator">0 or more</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage Tone(int numerator, int denominator, KirvoArea? area = null)
        {
            return Make("Tone", new[] { 24, 32 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.Dib24ToneCtrl(dib, a.X, a.Y, a.Width, a.Height, numerator, denominator, out status));
        }

        /// <summary>Multiplies each channel by its factor: channel * factor, truncated, at most 255
        /// (0 stays 0 with an infinite factor).</summary>
        /// <param name="red">factors, 0 or more</param>
        /// <param name="green">factors, 0 or more</param>
        /// <param name="blue">factors, 0 or more</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage ToneChannels(double red = 1, double green = 1, double blue = 1,
            KirvoArea? area = null)
        {
            return Make("ToneChannels", new[] { 24, 32 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.Dib24ToneCtrlEx(dib, a.X, a.Y, a.Width, a.Height, red, green, blue, out status));
        }

        /// <summary>Inverts a rectangle: 255 - channel.</summary>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage Negative(KirvoArea? area = null)
        {
            return Changed("Negative", new[] { 16, 24, 32 }, area,
                (dib, a) =>
                    Kirvo.Dib24Negative(dib, a.X, a.Y, a.Width, a.Height));
        }

        /// <summary>Turns a rectangle to grey: (77 red + 150 green + 29 blue + 128) / 256 in all
        /// three channels.</summary>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage Monochrome(KirvoArea? area = null)
        {
            return Make("Monochrome", new[] { 24, 32 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.Dib24Monochrome(dib, a.X, a.Y, a.Width, a.Height, out status));
        }

        /// <summary>Halves the intensity: channel / 2.</summary>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage HalfTone(KirvoArea? area = null)
        {
            return Make("HalfTone", new[] { 24, 32 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.Dib24HalfTone(dib, a.X, a.Y, a.Width, a.Height, out status));
        }

        /// <summary>Exchanges the channels of a rectangle.</summary>
        /// <param name="mode">what red, green and blue are taken from: 0 nothing changes (KIRVO_OK
        /// even for a null handle), 1 red, blue, green; 2 green, blue, red; 3 green, red, blue; 4
        /// blue, red, green; 5 blue, green, red</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage SwapChannels(int mode, KirvoArea? area = null)
        {
            return Changed("SwapChannels", new[] { 24, 32 }, area,
                (dib, a) =>
                    Kirvo.Dib24RGBChange(dib, mode, a.X, a.Y, a.Width, a.Height));
        }

        /// <summary>Maps every channel through a table: table[channel].</summary>
        /// <param name="table">256 bytes</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage MapChannels(byte[] table, KirvoArea? area = null)
        {
            if (table.Length != 256)
                throw new ArgumentException("256 bytes are needed", "table");
            return Make("MapChannels", new[] { 8, 16, 24, 32 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.DibColorMapEx(dib, a.X, a.Y, a.Width, a.Height, table, out status));
        }

        /// <summary>Makes a copy of a rectangle with its hue changed.</summary>
        /// <param name="mode">as for DibModifyHue</param>
        /// <param name="value">degrees, 0 to 359 for every mode</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage ChangeHue(int mode, int value, KirvoArea? area = null)
        {
            return Make("ChangeHue", new[] { 16, 24, 32 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.DibModifyHueEx(dib, a.X, a.Y, a.Width, a.Height, mode, value, out status));
        }

        /// <summary>XORs a colour over a rectangle.</summary>
        /// <param name="colour">0x00BBGGRR</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage ExclusiveOr(uint colour, KirvoArea? area = null)
        {
            return Changed("ExclusiveOr", new[] { 16, 24, 32 }, area,
                (dib, a) =>
                    Kirvo.Dib24XOR(dib, a.X, a.Y, a.Width, a.Height, colour));
        }

        /// <summary>Blurs a rectangle with a fixed 3 x 3 kernel.</summary>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage Blur(KirvoArea? area = null)
        {
            return Make("Blur", new[] { 24 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.Dib24Gausian(dib, a.X, a.Y, a.Width, a.Height, out status));
        }

        /// <summary>Sharpens a rectangle as mode 0 of Dib24Sharpen does, with a choice of strength:
        /// the Laplacian is divided by 8, 6, 4 or 2.</summary>
        /// <param name="strength">0 (divides by 8) to 3 (by 2); any other value acts as 0</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage Sharpen(int strength = 0, KirvoArea? area = null)
        {
            return Make("Sharpen", new[] { 24 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.Dib24SharpenEx(dib, a.X, a.Y, a.Width, a.Height, strength, out status));
        }

        /// <summary>Sharpens a rectangle, or shows its edges in grey.</summary>
        /// <param name="mode">0 to 5</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage Relief(int mode = 1, KirvoArea? area = null)
        {
            return Make("Relief", new[] { 24 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.Dib24Sharpen(dib, a.X, a.Y, a.Width, a.Height, mode, out status));
        }

        /// <summary>Keeps the colours of a rectangle at its edges and paints the rest white, the
        /// padding of the rows included.</summary>
        /// <param name="threshold">any value</param>
        /// <param name="mode">0, 1 or 2</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage ColourEdges(int threshold = 20, int mode = 0, KirvoArea? area = null)
        {
            return Make("ColourEdges", new[] { 24 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.Dib24ColorEdge(dib, a.X, a.Y, a.Width, a.Height, threshold, mode, out status));
        }

        /// <summary>Maximum or minimum filter over squares of (2 radius + 1) x (2 radius + 1)
        /// pixels: dilation or erosion of bright areas.</summary>
        /// <param name="radius">1 to 64</param>
        /// <param name="luminance">0 for channels on their own, else by luminance</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage Dilate(int radius = 1, bool luminance = false, KirvoArea? area = null)
        {
            return Make("Dilate", new[] { 16, 24, 32 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.DibBlockMxM(dib, a.X, a.Y, a.Width, a.Height, radius, 1, luminance ? 1 : 0, out status));
        }

        /// <summary>Maximum or minimum filter over squares of (2 radius + 1) x (2 radius + 1)
        /// pixels: dilation or erosion of bright areas.</summary>
        /// <param name="radius">1 to 64</param>
        /// <param name="luminance">0 for channels on their own, else by luminance</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage Erode(int radius = 1, bool luminance = false, KirvoArea? area = null)
        {
            return Make("Erode", new[] { 16, 24, 32 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.DibBlockMxM(dib, a.X, a.Y, a.Width, a.Height, radius, 0, luminance ? 1 : 0, out status));
        }

        /// <summary>Keeps channel values by range: a value that fails its channel's test becomes
        /// 0.</summary>
        /// <param name="red">ranges</param>
        /// <param name="green">ranges</param>
        /// <param name="blue">ranges</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage KeepChannels(uint red, uint green, uint blue, KirvoArea? area = null)
        {
            return Make("KeepChannels", new[] { 24, 32 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.Dib24Filter(dib, a.X, a.Y, a.Width, a.Height, red, green, blue, out status));
        }

        /// <summary>Mosaic by samples: every block of block x block pixels, counted from the
        /// rectangle's top left, takes the pixel at its own top left.</summary>
        /// <param name="block">size of the blocks in pixels, at least 1; may exceed the
        /// rectangle</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage Mosaic(int block, KirvoArea? area = null)
        {
            return Make("Mosaic", new[] { 8, 16, 24, 32 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.DibMosaicEx(dib, a.X, a.Y, a.Width, a.Height, block, out status));
        }

        /// <summary>Mosaic by averages: every block of block x block pixels, counted from the
        /// rectangle's top left, takes the average of its channels (of its indexes at 8 bits),
        /// truncated.</summary>
        /// <param name="block">size of the blocks in pixels, 1 to 1024</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage MosaicAverage(int block, KirvoArea? area = null)
        {
            return Make("MosaicAverage", new[] { 8, 16, 24, 32 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.DibMosaicEx2(dib, a.X, a.Y, a.Width, a.Height, block, out status));
        }

        /// <summary>Makes a copy of a 24-bit image that keeps only the top bits of each
        /// channel.</summary>
        /// <param name="redBits">bits of red kept, 0 to 8</param>
        /// <param name="greenBits">bits of green kept, 0 to 8</param>
        /// <param name="blueBits">bits of blue kept, 0 to 8</param>
        /// <returns>the new picture</returns>
        public KirvoImage KeepBits(int redBits, int greenBits, int blueBits)
        {
            return Make("KeepBits", new[] { 24 }, null,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.DibCutDepth(dib, redBits, greenBits, blueBits, out status));
        }

        /// <summary>Makes an 8-bit image with error diffusion to 256 fixed colours.</summary>
        /// <returns>the new picture</returns>
        public KirvoImage Reduce256()
        {
            return Make("Reduce256", new[] { 24, 32 }, null,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.DecreaseColor256(dib, out status));
        }

        /// <summary>Makes a 4-bit image with error diffusion, as DecreaseColor256 spreads it, to 16
        /// fixed colours.</summary>
        /// <returns>the new picture</returns>
        public KirvoImage Reduce16()
        {
            return Make("Reduce16", new[] { 24, 32 }, null,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.DecreaseColor16(dib, out status));
        }

        /// <summary>Makes an 8-bit grey image, without diffusion.</summary>
        /// <returns>the new picture</returns>
        public KirvoImage ReduceGrey()
        {
            return Make("ReduceGrey", new[] { 24, 32 }, null,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.DecreaseColorMono256(dib, out status));
        }

        /// <summary>Makes an 8-bit image with the palette of KirvoCreatePalette and an ordered
        /// dither of 8 x 8 pixels over the 6 x 6 x 6 cube of levels 0, 51, 102, 153, 204, 255: a
        /// channel value v becomes level v / 51, one more where v mod 51 is above the dither's
        /// threshold.</summary>
        /// <returns>the new picture</returns>
        public KirvoImage Dither256()
        {
            return Make("Dither256", new[] { 24, 32 }, null,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.Decrease256Fast(dib, out status));
        }

        /// <summary>Makes an 8-bit image with exactly the colours of the source.</summary>
        /// <param name="mode">0 or 1</param>
        /// <returns>the new picture</returns>
        public KirvoImage Exact256(int mode = 1)
        {
            return Make("Exact256", new[] { 24, 32 }, null,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.Decrease256PaletteEx(dib, mode, out status));
        }

        /// <summary>Makes a 4-bit image with exactly the colours of the source.</summary>
        /// <param name="mode">0 or 1</param>
        /// <returns>the new picture</returns>
        public KirvoImage Exact16(int mode = 1)
        {
            return Make("Exact16", new[] { 24, 32 }, null,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.Decrease16PaletteEx(dib, mode, out status));
        }

        /// <summary>Interleaves the rows of two images: stored row 2i of the result is row y1 + i
        /// of the first, stored row 2i + 1 row y2 + i of the second.</summary>
        /// <param name="other">packed DIB of the same depth</param>
        /// <returns>the new picture</returns>
        public KirvoImage Interleave(KirvoImage other)
        {
            using (KirvoImage depth = other.Convert(Array.IndexOf(new[] { 24, 32 }, Bits) >= 0 ? Bits : 24))
                return Make("Interleave", new[] { 24, 32 }, null,
                    (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                        Kirvo.Dib24InterLeave(dib, 0, 0, depth.Block, 0, 0, Width, Height, out status));
        }

        /// <summary>Copies a rectangle between two images of any sizes and one depth.</summary>
        /// <param name="other">packed DIB of 8, 16, 24 or 32 bits</param>
        /// <param name="toLeft">corner of the rectangle in the destination</param>
        /// <param name="toTop">corner of the rectangle in the destination</param>
        public void Paste(KirvoImage other, int toLeft = 0, int toTop = 0)
        {
            Ready(new[] { 16, 24, 32 });
            using (KirvoImage depth = other.Convert(Bits))
                Apply("Paste", new[] { 16, 24, 32 }, null,
                    (dib, a) =>
                        Kirvo.Dib24CopyEx(dib, toLeft, toTop, depth.Block, 0, 0, depth.Width, depth.Height));
        }

        /// <summary>Composes a rectangle of one image onto one of the same size of
        /// another.</summary>
        /// <param name="other">packed DIB of 24 or 32 bits</param>
        /// <param name="mode">0 to 4</param>
        /// <param name="toLeft">corner of the rectangle in the destination</param>
        /// <param name="toTop">corner of the rectangle in the destination</param>
        public void Compose(KirvoImage other, int mode = 0, int toLeft = 0, int toTop = 0)
        {
            Ready(new[] { 24, 32 });
            using (KirvoImage depth = other.Convert(Bits))
                Apply("Compose", new[] { 24, 32 }, null,
                    (dib, a) =>
                        Kirvo.Dib24Add(dib, toLeft, toTop, depth.Block, 0, 0, depth.Width, depth.Height, mode));
        }

        /// <summary>Writes one pixel of a direct-colour image.</summary>
        /// <param name="x">column from the left</param>
        /// <param name="y">row from the top</param>
        /// <param name="colour">0x00BBGGRR</param>
        public void SetPixel(int x, int y, uint colour)
        {
            Ready(new[] { 16, 24, 32 });
            Apply("SetPixel", new[] { 16, 24, 32 }, null,
                (dib, a) =>
                    Kirvo.DibSetPixelColor(dib, x, y, colour));
        }

        /// <summary>Fills the pixels x0 to x1 (inclusive) of one row with a colour.</summary>
        /// <param name="x0">first column</param>
        /// <param name="x1">last column</param>
        /// <param name="y">row from the top</param>
        /// <param name="colour">0x00BBGGRR</param>
        public void SetLine(int x0, int x1, int y, uint colour)
        {
            Ready(new[] { 16, 24, 32 });
            Apply("SetLine", new[] { 16, 24, 32 }, null,
                (dib, a) =>
                    Kirvo.DibSetLineColor(dib, x0, x1, y, colour));
        }

        /// <summary>Draws the 3 x 3 neighbours of one pixel towards its colour, in place.</summary>
        /// <param name="x">the centre</param>
        /// <param name="y">the centre</param>
        public void Mix3x3(int x, int y)
        {
            Ready(new[] { 16, 24, 32 });
            Apply("Mix3x3", new[] { 16, 24, 32 }, null,
                (dib, a) =>
                    Kirvo.Dib24Mix3X3(dib, x, y));
        }

        /// <summary>Draws the 5 x 5 neighbours of one pixel towards its colour, in place: as
        /// Dib24Mix3X3.</summary>
        /// <param name="x">the centre</param>
        /// <param name="y">the centre</param>
        public void Mix5x5(int x, int y)
        {
            Ready(new[] { 16, 24, 32 });
            Apply("Mix5x5", new[] { 16, 24, 32 }, null,
                (dib, a) =>
                    Kirvo.Dib24Mix5X5(dib, x, y));
        }

        /// <summary>Makes an image of one colour.</summary>
        /// <param name="width">size in pixels, at least 1</param>
        /// <param name="height">size in pixels, at least 1</param>
        /// <param name="colour">0x00BBGGRR</param>
        /// <returns>the new picture</returns>
        public static KirvoImage Solid(int width, int height, uint colour)
        {
            KirvoStatus status;
            using (new KirvoOperation())
            {
                IntPtr dib = Kirvo.Dib24Solid(width, height, 24, colour, out status);
                if (dib == IntPtr.Zero)
                    throw Failure(status, "Solid");
                return new KirvoImage(dib, null);
            }
        }

        /// <summary>Makes a horizontal gradient: each channel of column i is start + ((end - start)
        /// x i) / (width - 1), truncating; start alone when the width is 1. 16- and 32-bit images
        /// are black, as those of Dib24Solid.</summary>
        /// <param name="width">size in pixels, at least 1</param>
        /// <param name="height">size in pixels, at least 1</param>
        /// <param name="start">colour of the left column, 0x00BBGGRR</param>
        /// <param name="end">colour of the right column</param>
        /// <returns>the new picture</returns>
        public static KirvoImage GradientAcross(int width, int height, uint start, uint end)
        {
            KirvoStatus status;
            using (new KirvoOperation())
            {
                IntPtr dib = Kirvo.Dib24Gradation1(width, height, 24, start, end, out status);
                if (dib == IntPtr.Zero)
                    throw Failure(status, "GradientAcross");
                return new KirvoImage(dib, null);
            }
        }

        /// <summary>Makes a vertical gradient, from start at the top to end at the bottom: a
        /// Dib24Gradation1 of the sizes exchanged, turned by Dib24Rotate, which reports progress
        /// (per column). 16- and 32-bit images are black, as those of Dib24Solid.</summary>
        /// <param name="width">size in pixels, at least 1</param>
        /// <param name="height">size in pixels, at least 1</param>
        /// <param name="start">colour of the top row, 0x00BBGGRR</param>
        /// <param name="end">colour of the bottom row</param>
        /// <returns>the new picture</returns>
        public static KirvoImage GradientDown(int width, int height, uint start, uint end)
        {
            KirvoStatus status;
            using (new KirvoOperation())
            {
                IntPtr dib = Kirvo.Dib24Gradation2(width, height, 24, start, end, out status);
                if (dib == IntPtr.Zero)
                    throw Failure(status, "GradientDown");
                return new KirvoImage(dib, null);
            }
        }

        /// <summary>Makes a bilinear gradient between four corners.</summary>
        /// <param name="width">size in pixels, at least 1</param>
        /// <param name="height">size in pixels, at least 1</param>
        /// <param name="topLeft">colours 0x00BBGGRR</param>
        /// <param name="topRight">colours 0x00BBGGRR</param>
        /// <param name="bottomLeft">colours 0x00BBGGRR</param>
        /// <param name="bottomRight">colours 0x00BBGGRR</param>
        /// <returns>the new picture</returns>
        public static KirvoImage GradientCorners(int width, int height, uint topLeft, uint topRight,
            uint bottomLeft, uint bottomRight)
        {
            KirvoStatus status;
            using (new KirvoOperation())
            {
                IntPtr dib = Kirvo.Dib24Gradation3(width, height, 24, topLeft, topRight, bottomLeft, bottomRight, out status);
                if (dib == IntPtr.Zero)
                    throw Failure(status, "GradientCorners");
                return new KirvoImage(dib, null);
            }
        }

        /// <summary>Filters with a kernel of 3 x 3 weights.</summary>
        /// <param name="weights">nine of them, row by row from the top left neighbour</param>
        /// <param name="divisor">divides the sums; 0: the sum of the weights, or 1</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage Filter3x3(int[] weights, int divisor = 0, KirvoArea? area = null)
        {
            if (weights.Length != 9)
                throw new ArgumentException("nine weights are needed", "weights");
            int sum = 0;
            foreach (int weight in weights)
                sum += weight;
            int[] w = weights;
            return Make("Filter3x3", new[] { 16, 24, 32 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                {
                    Kirvo.SetFilter3x3(w[6], w[7], w[8], w[3], w[4], w[5], w[0], w[1], w[2],
                        divisor != 0 ? divisor : sum);
                    return Kirvo.DibFilter3x3(dib, a.X, a.Y, a.Width, a.Height, out status);
                });
        }

        /// <summary>Keeps colours by ranges.</summary>
        /// <param name="flags">0x101: channels of RGB; 0x102: pixels of RGB; 0x202: pixels by hue,
        /// saturation and value</param>
        /// <param name="first">range of red or hue</param>
        /// <param name="second">range of green or saturation</param>
        /// <param name="third">range of blue or value</param>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>the new picture</returns>
        public KirvoImage KeepColours(int flags, KirvoRange first, KirvoRange second, KirvoRange third,
            KirvoArea? area = null)
        {
            Func<int, int, uint> pair = (low, high) => (ushort)low | (uint)(ushort)high << 16;
            return Make("KeepColours", new[] { 24, 32 }, area,
                (IntPtr dib, KirvoArea a, out KirvoStatus status) =>
                    Kirvo.Dib24FilterEx(dib, a.X, a.Y, a.Width, a.Height, pair(flags, first.Lower),
                        pair(first.Upper, first.Test), pair(second.Lower, second.Upper),
                        pair(second.Test, third.Lower), pair(third.Upper, third.Test), out status));
        }

        /// <summary>Three pictures with one channel each.</summary>
        /// <param name="area">the part that is worked on; null: all of it</param>
        /// <returns>red, green and blue</returns>
        public KirvoImage[] Separate(KirvoArea? area = null)
        {
            IntPtr red = IntPtr.Zero, green = IntPtr.Zero, blue = IntPtr.Zero;
            Apply("Separate", new[] { 24, 32 }, area, (dib, a) =>
                Kirvo.Dib24Separate(dib, a.X, a.Y, a.Width, a.Height, out red, out green, out blue));
            return new[] { new KirvoImage(red, file), new KirvoImage(green, file),
                           new KirvoImage(blue, file) };
        }

        /// <summary>How often each value of each channel occurs.</summary>
        /// <param name="area">the part that is counted; null: all of it</param>
        /// <returns>the numbers</returns>
        public KirvoHistogram Histogram(KirvoArea? area = null)
        {
            var counted = new KirvoHistogram();
            Apply("Histogram", new[] { 8, 16, 24, 32 }, area, (dib, a) =>
                Kirvo.DibHistgram(dib, a.X, a.Y, a.Width, a.Height, counted.Red, counted.Green,
                    counted.Blue));
            return counted;
        }

        /// <summary>The number of different colours.</summary>
        /// <returns>the number</returns>
        public uint CountColours()
        {
            uint count = 0;
            Apply("CountColours", new[] { 1, 4, 8, 16, 24, 32 }, null, (dib, a) =>
                Kirvo.DibCountColors(dib, out count));
            return count;
        }

        /// <summary>A pixel's colour.</summary>
        /// <param name="x">column</param>
        /// <param name="y">row from the top</param>
        /// <returns>0x00BBGGRR</returns>
        public uint GetPixel(int x, int y)
        {
            return Held(dib =>
            {
                uint colour;
                Check(Kirvo.DibGetPixelColor(dib, x, y, out colour), "GetPixel");
                return colour;
            });
        }

        /// <summary>Sets the colour that Compose leaves out in mode 4, for the whole process.</summary>
        /// <param name="colour">0x00BBGGRR</param>
        public static void KeyColour(uint colour)
        {
            using (new KirvoOperation())
                Kirvo.SetKeyColorDib24Add(colour);
        }

        /// <summary>Sets the weights of Mix3x3 and Mix5x5, for the whole process.</summary>
        /// <param name="three">nine weights in tenths, row by row from the top left neighbour</param>
        /// <param name="five">twenty-five of them</param>
        public static void MixMasks(int[] three, int[] five)
        {
            if (three.Length != 9 || five.Length != 25)
                throw new ArgumentException("9 and 25 weights are needed");
            using (new KirvoOperation())
            {
                Kirvo.Dib24Mix3X3SetMask(three);
                Kirvo.Dib24Mix5X5SetMask(five);
            }
        }

        // How a function of the library is called

        /// <summary>The handle, which nobody frees during the call.</summary>
        T Held<T>(Func<IntPtr, T> call)
        {
            bool held = false;
            KirvoBlock mine = block;
            try
            {
                mine.DangerousAddRef(ref held); // throws when it is disposed
                return call(mine.DangerousGetHandle());
            }
            finally
            {
                if (held)
                    mine.DangerousRelease();
            }
        }

        T WithBytes<T>(Func<IntPtr, T> call)
        {
            return Held(dib =>
            {
                IntPtr address = Kirvo.GlobalLock(dib);
                try
                {
                    return call(address);
                }
                finally
                {
                    Kirvo.GlobalUnlock(dib);
                }
            });
        }

        KirvoArea Inside(KirvoArea? given)
        {
            KirvoArea area = given ?? new KirvoArea(0, 0);
            return new KirvoArea(area.X, area.Y, area.Width < 0 ? Width - area.X : area.Width,
                area.Height < 0 ? Height - area.Y : area.Height);
        }

        KirvoImage At(int[] depths)
        {
            return Array.IndexOf(depths, Bits) >= 0 ? null : Convert(24);
        }

        /// <summary>Calls a function that makes a picture.</summary>
        KirvoImage Make(string what, int[] depths, KirvoArea? area, Maker call)
        {
            using (var operation = new KirvoOperation())
            using (KirvoImage other = At(depths))
            {
                KirvoStatus status = KirvoStatus.KIRVO_OK;
                KirvoArea inside = Inside(area);
                operation.Begin();
                IntPtr made = (other ?? this).Held(dib => call(dib, inside, out status));
                var image = new KirvoImage(made, file);
                try
                {
                    operation.End(made != IntPtr.Zero);
                }
                catch
                {
                    image.Dispose();
                    throw;
                }
                if (made == IntPtr.Zero)
                    throw Failure(status < 0 ? status : KirvoStatus.KIRVO_NO_MEMORY, what);
                return image;
            }
        }

        /// <summary>Calls a function that works on what is there.</summary>
        void Apply(string what, int[] depths, KirvoArea? area, Worker call)
        {
            using (var operation = new KirvoOperation())
            using (KirvoImage other = At(depths))
            {
                KirvoArea inside = Inside(area);
                operation.Begin();
                KirvoStatus status = (other ?? this).Held(dib => call(dib, inside));
                operation.End(status >= 0);
                Check(status, what);
            }
        }

        /// <summary>A copy on which a function has worked.</summary>
        KirvoImage Changed(string what, int[] depths, KirvoArea? area, Worker call)
        {
            KirvoImage image = At(depths) ?? Copy();
            try
            {
                image.Apply(what, depths, area, call);
                return image;
            }
            catch
            {
                image.Dispose();
                throw;
            }
        }

        /// <summary>Becomes a picture of 24 bits when its depth is none of these.</summary>
        void Ready(int[] depths)
        {
            KirvoImage other = At(depths);
            if (other == null)
                return;
            KirvoBlock old = block;
            block = other.block;
            old.Dispose();
        }

        static void Check(KirvoStatus status, string what)
        {
            if (status < 0)
                throw Failure(status, what);
        }

        static KirvoException Failure(KirvoStatus status, string what)
        {
            return new KirvoException(status, what + ": " + Meaning(status));
        }

        static string Meaning(KirvoStatus status)
        {
            switch (status)
            {
            case KirvoStatus.KIRVO_OK:
                return "Success";
            case KirvoStatus.KIRVO_BAD_PARAMETER:
                return "A rectangle that is empty, negative or outside the image, a value out of its range, or a block of memory smaller than its header says";
            case KirvoStatus.KIRVO_NO_MEMORY:
                return "Memory could not be allocated, or the result would have no pixels or more than 2^31 - 1 bytes, or a JPEG stream has outgrown its block";
            case KirvoStatus.KIRVO_NULL_HANDLE:
                return "Null handle, null data, or a handle that is freed or invented";
            case KirvoStatus.KIRVO_CANNOT_OPEN:
                return "A file could not be opened or created";
            case KirvoStatus.KIRVO_READ_ERROR:
                return "A read error, or a file that is too short";
            case KirvoStatus.KIRVO_WRITE_ERROR:
                return "A write error: the disk is full or was taken away";
            case KirvoStatus.KIRVO_JPEG_NO_SOI:
                return "JPEG: no start of image";
            case KirvoStatus.KIRVO_JPEG_MARKER:
                return "JPEG: a marker that does not belong into the entropy-coded data";
            case KirvoStatus.KIRVO_JPEG_EARLY_EOI:
                return "JPEG: end of image before the first scan";
            case KirvoStatus.KIRVO_JPEG_HEADER:
                return "JPEG: a header that is damaged, incomplete, or asks for what the decoder does not offer";
            case KirvoStatus.KIRVO_JPEG_HUFFMAN:
                return "JPEG: a Huffman code that does not exist, or a table that was not defined";
            case KirvoStatus.KIRVO_JPEG_CATEGORY:
                return "JPEG encoder: a coefficient that has no code";
            case KirvoStatus.KIRVO_ABANDONED:
                return "The caller has abandoned a piecewise encode or decode";
            case KirvoStatus.KIRVO_BUSY:
                return "Another encode or decode is in progress";
            case KirvoStatus.KIRVO_JPEG_FRAME:
                return "JPEG: a frame type other than baseline and progressive Huffman coding";
            case KirvoStatus.KIRVO_NOT_BMP:
                return "Not a BMP file, or a depth that BMP files do not have";
            case KirvoStatus.KIRVO_NEEDS_8:
                return "The grey JPEG encoder takes 8 bits: DecreaseColorMono256 makes them";
            case KirvoStatus.KIRVO_NEEDS_24:
                return "The image must have 24 bits: IncreaseColor16M and DibConvert24bit make them";
            case KirvoStatus.KIRVO_NOT_TARGA:
                return "Not an uncompressed 24-bit Targa file";
            case KirvoStatus.KIRVO_Q0_SIZE:
                return "The companion file of a Q0 file is missing or holds no size, or the Q0 file is too short for it";
            case KirvoStatus.KIRVO_NOT_RAW:
                return "Not a RAW file, or one too short for its size";
            case KirvoStatus.KIRVO_RAW_PALETTE:
                return "A RAW file with a palette, which the reader does not offer";
            case KirvoStatus.KIRVO_MORE_THAN_256:
                return "More than 256 different colours (239 and the system colours in mode 0)";
            case KirvoStatus.KIRVO_MORE_THAN_16:
                return "More than 16 different colours, or in mode 0 others than the system colours";
            case KirvoStatus.KIRVO_NOT_ICON:
                return "Not an icon or cursor file";
            case KirvoStatus.KIRVO_NEEDS_8_16_24_32:
                return "The image must have 8, 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer";
            case KirvoStatus.KIRVO_NEEDS_16_24_32:
                return "The image must have 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer";
            case KirvoStatus.KIRVO_NEEDS_24_32:
                return "The image must have 24 or 32 bits: DibConvert24bit and IncreaseColor16M make 24";
            case KirvoStatus.KIRVO_NEEDS_8_24_32:
                return "The image must have 8, 24 or 32 bits";
            case KirvoStatus.KIRVO_NEEDS_16_32:
                return "The image must have 16 or 32 bits";
            case KirvoStatus.KIRVO_NEEDS_1_4_8:
                return "The image must have 1, 4 or 8 bits";
            case KirvoStatus.KIRVO_NEEDS_8_24:
                return "The image must have 8 or 24 bits: IncreaseColor16M and DibConvert24bit make 24";
            case KirvoStatus.KIRVO_NEEDS_16_24:
                return "The image must have 16 or 24 bits";
            default:
                return status.ToString();
            }
        }
    }

#if NET5_0_OR_GREATER
    /// <summary>Takes a row of a picture.</summary>
    /// <param name="y">the row, from the top</param>
    /// <param name="row">its bytes, without padding</param>
    public delegate void KirvoRowFunction(int y, Span<byte> row);
#endif
}
