// What KirvoImage.cs promises, by plain assertions: CSharpLayer FOLDER

using System;
using System.Collections.Generic;
using System.Drawing;
using System.IO;
using System.Runtime.CompilerServices;
using System.Threading;
using KirvoImaging;

static class CSharpLayer
{
    static int failures;

    static void Expect(bool condition, [CallerLineNumber] int line = 0)
    {
        if (condition)
            return;
        Console.WriteLine("line {0} does not hold", line);
        ++failures;
    }

    static T FailureOf<T>(Action call) where T : Exception
    {
        try
        {
            call();
        }
        catch (T error)
        {
            return error;
        }
        return null;
    }

    sealed class Listener : IProgress<int>
    {
        public readonly List<int> Seen = new List<int>();
        public Action<int> Then = percent => { };

        public void Report(int percent)
        {
            Seen.Add(percent);
            Then(percent);
        }
    }

    static KirvoImage Striped(int width, int height)
    {
        var image = new KirvoImage(width, height);
        for (int y = 0; y < height; ++y)
        {
            var row = new byte[3 * width];
            for (int i = 0; i < row.Length; ++i)
                row[i] = (byte)(i * 7 + y * 13);
            image.WriteRow(y, row);
        }
        return image;
    }

    static void EffectsGiveNewPictures()
    {
        using (KirvoImage grey = KirvoImage.Solid(4, 4, KirvoImage.Rgb(100, 100, 100)))
        using (KirvoImage brighter = grey.Brightness(20))
        using (KirvoImage half = grey.Negative(new KirvoArea(0, 0, 2)))
        {
            Expect(brighter.GetPixel(3, 3) == KirvoImage.Rgb(151, 151, 151));
            Expect(half.GetPixel(1, 3) == KirvoImage.Rgb(155, 155, 155));
            Expect(half.GetPixel(2, 3) == KirvoImage.Rgb(100, 100, 100));
            Expect(grey.GetPixel(1, 3) == KirvoImage.Rgb(100, 100, 100));
            Expect(grey.Brightness(20, new KirvoArea(1, 1, 2)).Height == 3);
        }
        var corner = new KirvoImage(3, 2);
        corner.SetPixel(0, 0, KirvoImage.Rgb(1, 2, 3));
        Expect(corner.ReadRow(0)[0] == 3 && corner.ReadRow(0)[2] == 1 && corner.ReadRow(1)[0] == 0);
        Expect(corner.Flip().GetPixel(0, 1) == KirvoImage.Rgb(1, 2, 3));
        Expect(corner.Filter3x3(new[] { 1, 0, 0, 0, 0, 0, 0, 0, 0 }).GetPixel(1, 1) ==
               KirvoImage.Rgb(1, 2, 3));
        Expect(corner.Histogram().Blue[3] == 1 && corner.CountColours() == 2);
        Expect(corner.Separate()[2].GetPixel(0, 0) == KirvoImage.Rgb(0, 0, 3));
        var low = new KirvoRange(0, 2);
        Expect(corner.KeepChannels(low, low, low).GetPixel(0, 0) == KirvoImage.Rgb(1, 2, 0));
        Expect(corner.KeepColours(0x102, low, low, low).GetPixel(0, 0) == 0);
    }

    static void OtherDepthsBecome24BitsFirst()
    {
        var palette = new KirvoImage(5, 4, 8);
        Expect(palette.Sharpen().Bits == 24 && palette.Crop(0, 0, 2, 2).Bits == 8);
        Expect(palette.ExclusiveOr(5).GetPixel(4, 3) == 5);
        Expect(new KirvoImage(2, 2, 1).Reduce16().Bits == 4);
        palette.Compose(KirvoImage.Solid(5, 4, 9));
        Expect(palette.Bits == 24 && palette.GetPixel(0, 0) == 9);
        palette.Paste(new KirvoImage(2, 2, 8), 1, 1);
        Expect(palette.GetPixel(1, 1) == 0 && palette.GetPixel(0, 0) == 9);
    }

    static void ErrorsSayWhatAndWhy()
    {
        var image = new KirvoImage(3, 2);
        KirvoException level = FailureOf<KirvoException>(() => image.Brightness(101));
        Expect(level.Status == KirvoStatus.KIRVO_BAD_PARAMETER);
        Expect(level.Message.StartsWith("Brightness: ") && level.Message.Contains("out of its range"));
        Expect(FailureOf<KirvoException>(() => new KirvoImage(0, 1)) != null);
        KirvoException unknown = FailureOf<KirvoException>(() => Striped(2, 2).Save(new MemoryStream(), "nothing"));
        Expect(unknown != null && unknown.Message.Contains(" "));
        Expect(FailureOf<ArgumentException>(() => KirvoImage.MixMasks(new int[8], new int[25])) != null);
        Expect(FailureOf<ArgumentException>(() => KirvoImage.MixMasks(new int[9], new int[26])) != null);
        Expect(FailureOf<ArgumentException>(() => KirvoImage.MixMasks(new int[9], new int[25])) == null);
        KirvoException missing = FailureOf<KirvoException>(() => KirvoImage.Open("写真 missing.jpg"));
        Expect(missing.Message.StartsWith("写真 missing.jpg: "));
        var odd = new KirvoOpenOptions { Flags = 0x80000000 };
        Expect(FailureOf<KirvoException>(() => KirvoImage.Open("写真.jpg", options: odd)).Message == "a value out of its range");
        image.Dispose();
        Expect(FailureOf<ObjectDisposedException>(() => image.Blur()) != null);
        Expect(FailureOf<ObjectDisposedException>(() => { int width = image.Width; }) != null);
        Expect(FailureOf<ObjectDisposedException>(() => image.Save("never.bmp")) != null);
    }

    static void FilesAndStreams(string folder)
    {
        string name = Path.Combine(folder, "写真 ü.bmp");
        KirvoImage image = Striped(7, 5);
        image.Save(name);
        var listener = new Listener();
        using (KirvoImage again = KirvoImage.Open(name, listener))
            Expect(again.GetPixel(6, 4) == image.GetPixel(6, 4) && again.Notes.Count == 0);
        Expect(listener.Seen[listener.Seen.Count - 1] == 100);
        byte[] png = image.ToBytes("png");
        Expect(png[0] == 0x89 && png[1] == 'P');
        Expect(KirvoImage.Open(new MemoryStream(png)).GetPixel(6, 4) == image.GetPixel(6, 4));
        var options = new KirvoSaveOptions { Quality = 30 };
        Expect(image.ToBytes("jpg", options)[0] == 0xFF && image.ToBytes("png", options)[0] == 0x89);
        Expect(FailureOf<ArgumentException>(() => KirvoImage.Open(name + "\0.png")) != null);
        var stream = new MemoryStream();
        image.Save(stream, "jpg", new KirvoSaveOptions { Quality = 30 });
        Expect(stream.ToArray()[0] == 0xFF && KirvoImage.Open(stream.ToArray()).Width == 7);
        using (Bitmap bitmap = image.ToBitmap())
        {
            Color corner = bitmap.GetPixel(6, 4);
            Expect(KirvoImage.Rgb(corner.R, corner.G, corner.B) == image.GetPixel(6, 4));
            Expect(KirvoImage.FromBitmap(bitmap).GetPixel(5, 0) == image.GetPixel(5, 0));
        }
    }

    static void ProgressMayThrowAndCancel()
    {
        KirvoImage image = Striped(64, 400);
        var listener = new Listener();
        using (new KirvoWatch(listener))
            image.Blur();
        Expect(listener.Seen[0] == 0 && listener.Seen[listener.Seen.Count - 1] == 100);
        Expect(listener.Seen.IndexOf(100) == listener.Seen.Count - 1);
        listener.Seen.Clear();
        listener.Then = percent => image.Crop(0, 0, 9, 9).Blur(); // of which nothing is reported
        using (new KirvoWatch(listener))
            image.Sharpen();
        Expect(listener.Seen.Count > 5 && listener.Seen[1] == 5 &&
               listener.Seen[listener.Seen.Count - 1] == 100);
        listener.Then = percent => { };
        int before = listener.Seen.Count;
        image.Blur();
        Expect(listener.Seen.Count == before);
        var source = new CancellationTokenSource();
        listener.Then = percent => { if (percent >= 20) source.Cancel(); };
        using (new KirvoWatch(listener, source.Token))
        {
            Expect(FailureOf<OperationCanceledException>(() => image.ToBytes("jpg")) != null);
            Expect(FailureOf<OperationCanceledException>(() => image.Blur()) != null);
        }
        listener.Then = percent => { throw new InvalidOperationException(); };
        using (new KirvoWatch(listener))
            Expect(FailureOf<InvalidOperationException>(() => image.Sharpen()) != null);
        Expect(KirvoImage.Open(image.ToBytes("jpg")).Height == 400);
    }

    static void ThreadsTakeTurns()
    {
        KirvoImage image = Striped(300, 200);
        byte[] bytes = image.ToBytes("jpg");
        int wrong = 0;
        var threads = new List<Thread>();
        for (int i = 0; i < 4; ++i)
        {
            threads.Add(new Thread(() =>
            {
                for (int round = 0; round < 20; ++round)
                    using (KirvoImage decoded = KirvoImage.Open(bytes))
                    using (KirvoImage blurred = decoded.Blur())
                        if (blurred.Width != 300 || image.ToBytes("jpg").Length != bytes.Length)
                            Interlocked.Increment(ref wrong);
            }));
            threads[i].Start();
        }
        foreach (Thread thread in threads)
            thread.Join();
        Expect(wrong == 0);
    }

    static int Main(string[] arguments)
    {
        EffectsGiveNewPictures();
        OtherDepthsBecome24BitsFirst();
        ErrorsSayWhatAndWhy();
        FilesAndStreams(arguments[0]);
        ProgressMayThrowAndCancel();
        ThreadsTakeTurns();
        return failures == 0 ? 0 : 1;
    }
}
