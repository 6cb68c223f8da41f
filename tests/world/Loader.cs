// Opens every file named in its input, by the classes of C#, and says what became of it.

using System;
using KirvoImaging;

static class Loader
{
    static void Main()
    {
        for (string name; (name = Console.ReadLine()) != null;)
        {
            string result;
            try
            {
                using (KirvoImage opened = KirvoImage.Open(name))
                using (KirvoImage image = opened.Negative())
                    result = image.Width + " " + image.Height;
            }
            catch (KirvoException error)
            {
                result = error.Message;
            }
            Console.WriteLine(name + "\t" + result);
        }
    }
}
