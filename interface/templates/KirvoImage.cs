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

%% for method in methods
@{ method_documentation(method) }@
@{ head(method) }@
        {
%% for one in method.parameters if one.parameter.count
            if (@{ one.name }@.Length != @{ one.parameter.count }@)
                throw new ArgumentException("@{ one.parameter.count }@ bytes are needed", "@{ one.name }@");
%% endfor
%% if method.way == "static"
            KirvoStatus status;
            using (new KirvoOperation())
            {
                IntPtr dib = @{ call(method) }@;
                if (dib == IntPtr.Zero)
                    throw Failure(status, "@{ capitals(method.name) }@");
                return new KirvoImage(dib, null);
            }
%% else
%% if method.way == "change"
            Ready(@{ depths(method) }@);
%% endif
%% set indent = ""
%% if method.other
%% set indent = "    "
            using (KirvoImage depth = other.Convert(@{ bits_for(method) }@))
%% endif
%% set maker, given = helper(method)
            @{ indent }@@{ maker }@("@{ capitals(method.name) }@", @{ depths(method) }@, @{ "area" if method.has_area else "null" }@,
            @{ indent }@    @{ given }@ =>
@{ call_lines(method, indent ~ " " * 20) }@);
%% endif
        }

%% endfor
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
%% for name, text in messages.items()
            case KirvoStatus.@{ name }@:
                return "@{ message(text) }@";
%% endfor
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
