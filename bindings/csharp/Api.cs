using System;
using System.Collections.Generic;
using System.Linq;
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
    internal sealed class Api
    {
        public delegate int CorvaleInit();
        public delegate void CorvaleGetInfo([Out, Width(128)] byte[] info);
        public delegate void GetInitDllNames([Out, Width(512)] byte[] names);
        public delegate int OpenLogFile([In, Width(512)] byte[] fileName);
        public delegate void CloseLogFile();
        public delegate void LogMessage([In, Width(128)] byte[] message);
        public delegate void GetLastErrMsg([Out, Width(128)] byte[] message);
        public delegate void GetLastInfoMsg([Out, Width(128)] byte[] message);
        public delegate int GetDupKeyMode();
        public delegate int SetDupKeyMode(int mode);
        public delegate int GetAllKeyMode();
        public delegate int SetAllKeyMode(int mode);
        public delegate void ResetAllKeyMode();
        public delegate int GetElsetKeyMode();
        public delegate int SetElsetKeyMode(int mode);
        public delegate int CorvaleLoadFile([In, Width(512)] byte[] fileName);
        public delegate void GetMOICData(int count, [Out] double[] values);
        public delegate void TestInterface(
            byte cIn, out byte cOut, int iIn, out int iOut, long lIn, out long lOut, double dIn, out double dOut,
            [In, Width(512)] byte[] strIn, [Out, Width(512)] byte[] strOut,
            [In, Width(3)] int[] i3In, [Out, Width(3)] int[] i3Out,
            [In, Width(3)] long[] l3In, [Out, Width(3)] long[] l3Out,
            [In, Width(3)] double[] d3In, [Out, Width(3)] double[] d3Out,
            [In, Width(6)] int[] i6In, [Out, Width(6)] int[] i6Out,
            [In, Width(6)] long[] l6In, [Out, Width(6)] long[] l6Out,
            [In, Width(6)] double[] d6In, [Out, Width(6)] double[] d6Out);
        public delegate void TestInterface2(
            ref byte ch, ref int i, ref long l, ref double d, [In, Out, Width(512)] byte[] str,
            [In, Out, Width(3)] int[] i3, [In, Out, Width(3)] long[] l3, [In, Out, Width(3)] double[] d3,
            [In, Out, Width(6)] int[] i6, [In, Out, Width(6)] long[] l6, [In, Out, Width(6)] double[] d6);
        public delegate void TestInterface3(
            [In, Width(3)] int[] i3In, [Out, Width(3)] int[] i3Out,
            [In, Width(6)] int[] i6In, [Out, Width(6)] int[] i6Out);

        private readonly Dictionary<Type, Delegate> functions;

        /// <summary>Loads the library and finds every function.</summary>
        public Api(string path)
        {
            var loader = new Loader(path);
            functions = typeof(Api).GetNestedTypes().ToDictionary(type => type, loader.Find);
        }

        /// <summary>The function that a delegate type stands for.</summary>
        public Function Get<Function>() { return (Function)(object)functions[typeof(Function)]; }
    }
}
