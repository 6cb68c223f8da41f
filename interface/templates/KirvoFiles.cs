// KirvoFiles: pictures as people have them, opened into packed DIBs and saved again, for .NET and Mono.
//
// The program needs KirvoFiles.dll and Kirvo.dll on Windows, libkirvofiles.so and libkirvo.so
// elsewhere, and Kirvo.cs. Names go by the functions that end in W; texts arrive as UTF-8.
//
// Written by script/bindings from interface/kirvo_files.txt and kirvo_files.h: changes belong there.

using System;
using System.Runtime.InteropServices;
using System.Text;

namespace KirvoImaging
{
    /// <summary>What a call answers: 0 for success, below 0 for an error.</summary>
    public enum KirvoFilesStatus
    {
@{ statuses }@
    }
@{ structures }@

    /// <summary>The functions of the second library.</summary>
    public static class KirvoFiles
    {
        const string Library = "KirvoFiles.dll";

@{ constants }@
@{ functions }@

        // Conveniences of this file

        /// <summary>A text about a file, KIRVO_FILES_TEXT_...</summary>
        /// <param name="file">what is known of it</param>
        /// <param name="kind">which text</param>
        /// <param name="index">which note</param>
        /// <returns>the text, empty where there is nothing to say</returns>
        public static string Text(IntPtr file, int kind, uint index)
        {
            byte[] room = new byte[KirvoFilesText(file, kind, index, null, 0)];
            KirvoFilesText(file, kind, index, room, (uint)room.Length);
            return Encoding.UTF8.GetString(room, 0, room.Length - 1);
        }

        /// <summary>Throws KirvoFilesException unless the status is KIRVO_FILES_OK.</summary>
        /// <param name="status">the status</param>
        /// <param name="file">what is known of the file</param>
        public static void Check(KirvoFilesStatus status, IntPtr file)
        {
            if (status != KirvoFilesStatus.KIRVO_FILES_OK)
                throw new KirvoFilesException(status, Text(file, KIRVO_FILES_TEXT_REASON, 0));
        }

#if NET5_0_OR_GREATER
        static KirvoFiles()
        {
            KirvoLibraries.Find();
        }
#endif
    }

    /// <summary>A status other than KIRVO_FILES_OK, and why.</summary>
    public sealed class KirvoFilesException : Exception
    {
        /// <summary>The status.</summary>
        public readonly KirvoFilesStatus Status;

        /// <summary>An exception for a status.</summary>
        /// <param name="status">the status</param>
        /// <param name="reason">why</param>
        public KirvoFilesException(KirvoFilesStatus status, string reason)
            : base(status + ": " + reason)
        {
            Status = status;
        }
    }
}
