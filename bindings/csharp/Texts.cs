using System;
using System.Text;

namespace Corvale
{
    /// <summary>Between strings and the blank-filled buffers of the library.</summary>
    internal static class Texts
    {
        public const int NameWidth = 512;
        public const int MessageWidth = 128;

        /// <summary>The text in a buffer; refused when the library would not see all of it.</summary>
        public static byte[] Filled(string text, int width)
        {
            if (text == null) throw new ArgumentNullException("text");
            if (text.Length > width)
                throw new ArgumentException($"\"{text}\": {text.Length} characters, {width} fit");
            var buffer = Blanks(width);
            for (var i = 0; i < text.Length; ++i)
            {
                if (text[i] < 32 || text[i] > 126)
                    throw new ArgumentException(
                        $"\"{text}\": character {i + 1} is {(int)text[i]}, not printable ASCII");
                buffer[i] = (byte)text[i];
            }
            return buffer;
        }

        /// <summary>A name or message; also refused when it begins with a blank, which the library drops.</summary>
        public static byte[] FilledUnindented(string text, int width)
        {
            if (text != null && text.StartsWith(" ", StringComparison.Ordinal))
                throw new ArgumentException($"\"{text}\": begins with a blank");
            return Filled(text, width);
        }

        /// <summary>What a call writes into a buffer, without the blanks that fill it; bytes are Latin-1.</summary>
        public static string Read(int width, Action<byte[]> call)
        {
            var buffer = new byte[width];
            call(buffer);
            return Trimmed(buffer);
        }

        public static string Trimmed(byte[] buffer)
        {
            return Encoding.GetEncoding("ISO-8859-1").GetString(buffer).TrimEnd(' ');
        }

        private static byte[] Blanks(int width)
        {
            var buffer = new byte[width];
            for (var i = 0; i < width; ++i) buffer[i] = (byte)' ';
            return buffer;
        }
    }
}
