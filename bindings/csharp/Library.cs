using System;

namespace Corvale
{
    /// <summary>The library returned status 2; the message is its own.</summary>
    public sealed class CorvaleException : Exception
    {
        internal CorvaleException(string message) : base(message) { }
    }

    /// <summary>
    /// The C face of libCorvale: messages and log, key modes, input-file cards, interface self-tests.
    /// The library has one state for the whole process. Every member may be used by any number of
    /// threads: one lock puts their calls in a row. Code that reaches the same library by another way
    /// is not held back by that. Texts that the library would cut are refused with ArgumentException.
    /// </summary>
    /// <example><code>
    /// Library.LoadFile("orbit.inp");
    /// double[] values = Library.MoicData(128);
    /// </code></example>
    public static class Library
    {
        private static readonly object OneAtATime = new object();

        /// <summary>Does nothing: the library is ready once it is loaded.</summary>
        public static void Init() { Check(Face.CorvaleInit); }

        /// <summary>Name, version, build date, platform and compiler of the library.</summary>
        public static string Info { get { return Read(Texts.MessageWidth, Face.CorvaleGetInfo); } }

        /// <summary>The libraries that have to be initialised first: none.</summary>
        public static string InitDllNames { get { return Read(Texts.NameWidth, Face.GetInitDllNames); } }

        /// <summary>Opens the log, created or emptied; from then on every message is also a line of it.</summary>
        public static void OpenLogFile(string fileName)
        {
            var buffer = Texts.FilledName(fileName);
            Check(() => Face.OpenLogFile(buffer));
        }

        /// <summary>Closes the log, if one is open, and blanks the last error message.</summary>
        public static void CloseLogFile() { lock (OneAtATime) Face.CloseLogFile(); }

        /// <summary>Stores a message of at most 128 characters and writes it to an open log.</summary>
        public static void LogMessage(string message)
        {
            var buffer = Texts.Filled(message, Texts.MessageWidth);
            lock (OneAtATime) Face.LogMessage(buffer);
        }

        /// <summary>The last error message. It stays until the next error or CloseLogFile.</summary>
        public static string LastErrMsg { get { return Read(Texts.MessageWidth, Face.GetLastErrMsg); } }

        /// <summary>The last informational message.</summary>
        public static string LastInfoMsg { get { return Read(Texts.MessageWidth, Face.GetLastInfoMsg); } }

        /// <summary>The duplication key mode, 0 or 1; setting another throws and changes nothing.</summary>
        public static int DupKeyMode
        {
            get { lock (OneAtATime) return Face.GetDupKeyMode(); }
            set { Check(() => Face.SetDupKeyMode(value)); }
        }

        /// <summary>The all-key mode, 0 or 1; setting another throws and changes nothing.</summary>
        public static int AllKeyMode
        {
            get { lock (OneAtATime) return Face.GetAllKeyMode(); }
            set { Check(() => Face.SetAllKeyMode(value)); }
        }

        /// <summary>Sets the all-key and the duplication key mode back to 0.</summary>
        public static void ResetAllKeyMode() { lock (OneAtATime) Face.ResetAllKeyMode(); }

        /// <summary>The element-set key mode, 0 or 1; setting another throws and changes nothing.</summary>
        public static int ElsetKeyMode
        {
            get { lock (OneAtATime) return Face.GetElsetKeyMode(); }
            set { Check(() => Face.SetElsetKeyMode(value)); }
        }

        /// <summary>
        /// Reads the cards of an input file. Throws when it cannot be opened, never for what it holds.
        /// </summary>
        public static void LoadFile(string fileName)
        {
            var buffer = Texts.FilledName(fileName);
            Check(() => Face.CorvaleLoadFile(buffer));
        }

        /// <summary>
        /// The first values of the array that QZ_MOIC cards fill: none for a count of 0 or less, nothing
        /// but zeros for more than 128.
        /// </summary>
        public static double[] MoicData(int count)
        {
            var values = new double[Math.Max(count, 0)];
            lock (OneAtATime) Face.GetMOICData(count, values);
            return values;
        }

        /// <summary>Gives every value back as it arrived in the library.</summary>
        public static Values TestInterface(Values from)
        {
            var to = new Values();
            var textIn = Texts.Filled(from.Text, Texts.NameWidth);
            to.Text = Texts.Read(Texts.NameWidth, textOut => Face.TestInterface(
                from.Ch, out to.Ch, from.I, out to.I, from.L, out to.L, from.D, out to.D, textIn, textOut,
                from.I3, to.I3, from.L3, to.L3, from.D3, to.D3, from.I6, to.I6, from.L6, to.L6, from.D6, to.D6));
            return to;
        }

        /// <summary>Changes every value by a fixed amount; integers wrap.</summary>
        public static void TestInterface2(Values values)
        {
            var text = Texts.Filled(values.Text, Texts.NameWidth);
            Face.TestInterface2(ref values.Ch, ref values.I, ref values.L, ref values.D, text,
                                values.I3, values.L3, values.D3, values.I6, values.L6, values.D6);
            values.Text = Texts.Trimmed(text);
        }

        /// <summary>Three products with 4 and six with 5, in place of the factors; products wrap.</summary>
        public static void TestInterface3(Values values)
        {
            Face.TestInterface3(values.I3, values.I3, values.I6, values.I6);
        }

        private static string Read(int width, Action<byte[]> call)
        {
            lock (OneAtATime) return Texts.Read(width, call);
        }

        // The reason is read before another thread can fail.
        private static void Check(Func<int> call)
        {
            lock (OneAtATime)
                if (call() != 0) throw new CorvaleException(Texts.Read(Texts.MessageWidth, Face.GetLastErrMsg));
        }
    }
}
