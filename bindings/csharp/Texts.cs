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

        /// <summary>A file's name; also refused when it begins with a blank, which the library drops.</summary>
        public static byte[] FilledName(string name)
        {
            if (name != null && name.StartsWith(" ", StringComparison.Ordinal))
                throw new ArgumentException($"\"{name}\": begins with a blank");
            return Filled(name, NameWidth);
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
