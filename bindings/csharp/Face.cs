using System;
using System.Runtime.InteropServices;

namespace Corvale
{
    /// <summary>How many elements the library reads or writes.</summary>
    [AttributeUsage(AttributeTargets.Parameter)]
    internal sealed class WidthAttribute : Attribute
    {
        public readonly int Elements;
        public WidthAttribute(int elements) { Elements = elements; }
    }

    /// <summary>
    /// The 20 functions as the library sees them. An array has exactly its width; where none is written
    /// the argument before it tells how many elements there are. Arrays of these types are pinned, not
    /// copied: In and Out say which way the values go.
    /// </summary>
    internal static class Face
    {
        private const string Name = "libCorvale.so.9";

        [DllImport(Name)] public static extern int CorvaleInit();
        [DllImport(Name)] public static extern void CorvaleGetInfo([Out, Width(128)] byte[] info);
        [DllImport(Name)] public static extern void GetInitDllNames([Out, Width(512)] byte[] names);
        [DllImport(Name)] public static extern int OpenLogFile([In, Width(512)] byte[] fileName);
        [DllImport(Name)] public static extern void CloseLogFile();
        [DllImport(Name)] public static extern void LogMessage([In, Width(128)] byte[] message);
        [DllImport(Name)] public static extern void GetLastErrMsg([Out, Width(128)] byte[] message);
        [DllImport(Name)] public static extern void GetLastInfoMsg([Out, Width(128)] byte[] message);
        [DllImport(Name)] public static extern int GetDupKeyMode();
        [DllImport(Name)] public static extern int SetDupKeyMode(int mode);
        [DllImport(Name)] public static extern int GetAllKeyMode();
        [DllImport(Name)] public static extern int SetAllKeyMode(int mode);
        [DllImport(Name)] public static extern void ResetAllKeyMode();
        [DllImport(Name)] public static extern int GetElsetKeyMode();
        [DllImport(Name)] public static extern int SetElsetKeyMode(int mode);
        [DllImport(Name)] public static extern int CorvaleLoadFile([In, Width(512)] byte[] fileName);
        [DllImport(Name)] public static extern void GetMOICData(int count, [Out] double[] values);
        [DllImport(Name)]
        public static extern void TestInterface(
            byte cIn, out byte cOut, int iIn, out int iOut, long lIn, out long lOut, double dIn, out double dOut,
            [In, Width(512)] byte[] strIn, [Out, Width(512)] byte[] strOut,
            [In, Width(3)] int[] i3In, [Out, Width(3)] int[] i3Out,
            [In, Width(3)] long[] l3In, [Out, Width(3)] long[] l3Out,
            [In, Width(3)] double[] d3In, [Out, Width(3)] double[] d3Out,
            [In, Width(6)] int[] i6In, [Out, Width(6)] int[] i6Out,
            [In, Width(6)] long[] l6In, [Out, Width(6)] long[] l6Out,
            [In, Width(6)] double[] d6In, [Out, Width(6)] double[] d6Out);
        [DllImport(Name)]
        public static extern void TestInterface2(
            ref byte ch, ref int i, ref long l, ref double d, [In, Out, Width(512)] byte[] str,
            [In, Out, Width(3)] int[] i3, [In, Out, Width(3)] long[] l3, [In, Out, Width(3)] double[] d3,
            [In, Out, Width(6)] int[] i6, [In, Out, Width(6)] long[] l6, [In, Out, Width(6)] double[] d6);
        [DllImport(Name)]
        public static extern void TestInterface3(
            [In, Width(3)] int[] i3In, [Out, Width(3)] int[] i3Out,
            [In, Width(6)] int[] i6In, [Out, Width(6)] int[] i6Out);
    }
}
