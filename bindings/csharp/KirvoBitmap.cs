// Pictures of Kirvo from and to System.Drawing.Bitmap. Compiled together with KirvoImage.cs by programs
// that use System.Drawing; .NET 5 and later has it as a package, System.Drawing.Common: programs that take
// it define KIRVO_DRAWING.
#if KIRVO_DRAWING || !NET5_0_OR_GREATER

using System.Drawing;
using System.Drawing.Imaging;
using System.Runtime.InteropServices;

namespace KirvoImaging
{
    public sealed partial class KirvoImage
    {
        /// <summary>A picture of 24 bits of a bitmap.</summary>
        /// <param name="bitmap">the bitmap</param>
        /// <returns>the picture</returns>
        public static KirvoImage FromBitmap(Bitmap bitmap)
        {
            var image = new KirvoImage(bitmap.Width, bitmap.Height);
            BitmapData bits = Lock(bitmap, ImageLockMode.ReadOnly);
            try
            {
                var row = new byte[3 * bitmap.Width];
                for (int y = 0; y < bitmap.Height; ++y)
                {
                    Marshal.Copy(bits.Scan0 + y * bits.Stride, row, 0, row.Length);
                    image.WriteRow(y, row);
                }
            }
            finally
            {
                bitmap.UnlockBits(bits);
            }
            return image;
        }

        /// <summary>The picture as a bitmap of 24 bits.</summary>
        /// <returns>the bitmap, which the caller disposes</returns>
        public Bitmap ToBitmap()
        {
            using (KirvoImage colour = Convert(24))
            {
                var bitmap = new Bitmap(colour.Width, colour.Height, PixelFormat.Format24bppRgb);
                BitmapData bits = Lock(bitmap, ImageLockMode.WriteOnly);
                for (int y = 0; y < bitmap.Height; ++y)
                    Marshal.Copy(colour.ReadRow(y), 0, bits.Scan0 + y * bits.Stride, 3 * bitmap.Width);
                bitmap.UnlockBits(bits);
                return bitmap;
            }
        }

        static BitmapData Lock(Bitmap bitmap, ImageLockMode mode)
        {
            return bitmap.LockBits(new Rectangle(Point.Empty, bitmap.Size), mode,
                PixelFormat.Format24bppRgb);
        }
    }
}

#endif
