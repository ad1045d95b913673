using System;

namespace Corvale
{
    /// <summary>The library returned status 2; the message is its own.</summary>
    public sealed class CorvaleException : Exception
    {
        internal CorvaleException(string message) : base(message) { }
    }

    /// <summary>
    /// The C API of libCorvale: messages and log, key modes, input-file cards, interface self-tests.
    /// The library has one state for the whole process, whichever object is used. Every member may be
    /// used by any number of threads: one lock puts their calls in a row. Code that reaches the same
    /// library by another way is not held back by that. Texts that the library would cut are refused
    /// with ArgumentException.
    /// </summary>
    /// <example><code>
    /// var library = new Library();
    /// library.LoadFile("orbit.inp");
    /// double[] values = library.MoicData(128);
    /// </code></example>
    public sealed class Library
    {
        private static readonly object OneAtATime = new object();

        private readonly Api api;

        /// <summary>
        /// Loads what CORVALE_LIBRARY names, or else libCorvale.so.9 from where the system looks, to the end
        /// of the process.
        /// </summary>
        public Library() : this(Environment.GetEnvironmentVariable("CORVALE_LIBRARY") ?? "libCorvale.so.9") { }

        /// <summary>
        /// Loads a library by its path, or by its name from where the system looks. Throws
        /// DllNotFoundException or EntryPointNotFoundException with the loader's reason.
        /// </summary>
        public Library(string path) { api = new Api(path); }

        /// <summary>CorvaleInit. Does nothing: the library is ready once it is loaded.</summary>
        public void Init() { Check(() => api.Get<Api.CorvaleInit>()()); }

        /// <summary>CorvaleGetInfo. Name, version, build date, platform and compiler.</summary>
        public string Info
        {
            get { return Read(Texts.MessageWidth, info => api.Get<Api.CorvaleGetInfo>()(info)); }
        }

        /// <summary>GetInitDllNames. The libraries that have to be initialised first: none.</summary>
        public string InitDllNames
        {
            get { return Read(Texts.NameWidth, names => api.Get<Api.GetInitDllNames>()(names)); }
        }

        /// <summary>
        /// OpenLogFile. Opens the log, created or emptied; from then on every message is also a line of it.
        /// </summary>
        public void OpenLogFile(string fileName)
        {
            var buffer = Texts.FilledUnindented(fileName, Texts.NameWidth);
            Check(() => api.Get<Api.OpenLogFile>()(buffer));
        }

        /// <summary>CloseLogFile. Closes the log, if one is open, and blanks the last error message.</summary>
        public void CloseLogFile() { lock (OneAtATime) api.Get<Api.CloseLogFile>()(); }

        /// <summary>LogMessage. Stores a message of at most 128 characters and writes it to an open log.</summary>
        public void LogMessage(string message)
        {
            var buffer = Texts.FilledUnindented(message, Texts.MessageWidth);
            lock (OneAtATime) api.Get<Api.LogMessage>()(buffer);
        }

        /// <summary>GetLastErrMsg. The last error message; it stays until the next error or CloseLogFile.</summary>
        public string LastErrMsg
        {
            get { return Read(Texts.MessageWidth, message => api.Get<Api.GetLastErrMsg>()(message)); }
        }

        /// <summary>GetLastInfoMsg. The last informational message.</summary>
        public string LastInfoMsg
        {
            get { return Read(Texts.MessageWidth, message => api.Get<Api.GetLastInfoMsg>()(message)); }
        }

        /// <summary>GetDupKeyMode, SetDupKeyMode. 0 or 1; setting another throws and changes nothing.</summary>
        public int DupKeyMode
        {
            get { lock (OneAtATime) return api.Get<Api.GetDupKeyMode>()(); }
            set { Check(() => api.Get<Api.SetDupKeyMode>()(value)); }
        }

        /// <summary>GetAllKeyMode, SetAllKeyMode. 0 or 1; setting another throws and changes nothing.</summary>
        public int AllKeyMode
        {
            get { lock (OneAtATime) return api.Get<Api.GetAllKeyMode>()(); }
            set { Check(() => api.Get<Api.SetAllKeyMode>()(value)); }
        }

        /// <summary>ResetAllKeyMode. Sets the all-key and the duplication key mode back to 0.</summary>
        public void ResetAllKeyMode() { lock (OneAtATime) api.Get<Api.ResetAllKeyMode>()(); }

        /// <summary>GetElsetKeyMode, SetElsetKeyMode. 0 or 1; setting another throws and changes nothing.</summary>
        public int ElsetKeyMode
        {
            get { lock (OneAtATime) return api.Get<Api.GetElsetKeyMode>()(); }
            set { Check(() => api.Get<Api.SetElsetKeyMode>()(value)); }
        }

        /// <summary>
        /// CorvaleLoadFile. Reads the cards of an input file. Throws when it cannot be opened, never for
        /// what it holds.
        /// </summary>
        public void LoadFile(string fileName)
        {
            var buffer = Texts.FilledUnindented(fileName, Texts.NameWidth);
            Check(() => api.Get<Api.CorvaleLoadFile>()(buffer));
        }

        /// <summary>
        /// GetMOICData. The first values of the array that QZ_MOIC cards fill; for more than 128 the
        /// library gives zeros. A negative count is refused.
        /// </summary>
        public double[] MoicData(int count)
        {
            if (count < 0) throw new ArgumentOutOfRangeException("count", "negative");
            var values = new double[count];
            lock (OneAtATime) api.Get<Api.GetMOICData>()(count, values);
            return values;
        }

        /// <summary>TestInterface. Gives every value back as it arrived in the library.</summary>
        public Values TestInterface(Values from)
        {
            var to = new Values();
            var textIn = Texts.Filled(from.Text, Texts.NameWidth);
            to.Text = Texts.Read(Texts.NameWidth, textOut => api.Get<Api.TestInterface>()(
                from.Ch, out to.Ch, from.I, out to.I, from.L, out to.L, from.D, out to.D, textIn, textOut,
                from.I3, to.I3, from.L3, to.L3, from.D3, to.D3, from.I6, to.I6, from.L6, to.L6, from.D6, to.D6));
            return to;
        }

        /// <summary>TestInterface2. Changes every value by a fixed amount; integers wrap.</summary>
        public void TestInterface2(Values values)
        {
            var text = Texts.Filled(values.Text, Texts.NameWidth);
            api.Get<Api.TestInterface2>()(
                ref values.Ch, ref values.I, ref values.L, ref values.D, text,
                values.I3, values.L3, values.D3, values.I6, values.L6, values.D6);
            values.Text = Texts.Trimmed(text);
        }

        /// <summary>TestInterface3. 4 times I3 and 5 times I6, in a new object; products wrap.</summary>
        public Values TestInterface3(Values from)
        {
            var to = new Values();
            api.Get<Api.TestInterface3>()(from.I3, to.I3, from.I6, to.I6);
            return to;
        }

        private static string Read(int width, Action<byte[]> call)
        {
            lock (OneAtATime) return Texts.Read(width, call);
        }

        // The reason is read before another thread can fail.
        private void Check(Func<int> call)
        {
            lock (OneAtATime)
                if (call() != 0) throw new CorvaleException(LastErrMsg);
        }
    }
}
