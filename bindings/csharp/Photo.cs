// A photo made ready for a page, 800 pixels wide: Photo IN OUT.png
//
//     mcs -r:System.Drawing Photo.cs Kirvo.cs KirvoImage.cs KirvoBitmap.cs

using System;
using System.Drawing;
using System.Drawing.Imaging;
using KirvoImaging;

static class Photo
{
    sealed class Display : IProgress<int>
    {
        public void Report(int percent)
        {
            Console.Write(" {0}%", percent);
        }
    }

    static void MakeReady(string source, string target)
    {
        using (new KirvoWatch(new Display()))
        using (KirvoImage photo = KirvoImage.Open(source)) // upright, as its camera was held
        {
            int width = photo.Width * 9 / 10, height = photo.Height * 9 / 10;
            using (KirvoImage part = photo.Crop(photo.Width / 20, photo.Height / 20, width, height))
            using (KirvoImage small = part.Resize(800, height * 800 / width))
            using (KirvoImage page = small.Sharpen())
            using (Bitmap bitmap = page.ToBitmap())
                bitmap.Save(target, ImageFormat.Png);
        }
    }

    static int Main(string[] arguments)
    {
        try
        {
            MakeReady(arguments[0], arguments[1]);
            return 0;
        }
        catch (KirvoException error)
        {
            Console.Error.WriteLine(error.Message);
            return 1;
        }
    }
}
