// Opens a JPEG file, blurs it and saves it as a BMP file: Blur IN.JPG OUT.BMP
//
//     mcs Blur.cs Kirvo.cs        or, on Windows, csc Blur.cs Kirvo.cs

using System;
using KirvoImaging;

static class Blur
{
    static void ShowProgress(int percent)
    {
        Console.Write(percent == 100 ? " 100%\n" : " " + percent + "%");
    }

    static void BlurFile(string source, string target)
    {
        uint width, height;
        KirvoStatus status;

        Console.Write("reading");
        Kirvo.Watch(ShowProgress);
        using (var photo = new KirvoBlock(Kirvo.JpgDecMainEx(source, out width, out height,
                                                             out status)))
        {
            Kirvo.Check(status);
            Console.Write("blurring");
            Kirvo.Watch(ShowProgress);
            using (var blurred = new KirvoBlock(Kirvo.Dib24Gausian(photo, 0, 0, (int)width,
                                                                   (int)height, out status)))
            {
                Kirvo.Check(status);
                Kirvo.Check(Kirvo.DibWriteEx(target, blurred, 0, 0, -1, -1));
                Console.WriteLine("{0}: {1} x {2}", target, width, height);
            }
        }
    }

    static int Main(string[] arguments)
    {
        if (arguments.Length != 2)
        {
            Console.WriteLine("Blur IN.JPG OUT.BMP");
            return 2;
        }
        try
        {
            BlurFile(arguments[0], arguments[1]);
            return 0;
        }
        catch (KirvoException error)
        {
            Console.Error.WriteLine(error.Message);
            return 1;
        }
    }
}
