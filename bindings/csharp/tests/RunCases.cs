// Answers the cases of tests/bindings/check.py with this binding.
using System;
using System.Collections.Generic;
using System.Linq;
using System.Text;
using Corvale;

internal static class RunCases
{
    // What goes in, value by value.
    private sealed class Given
    {
        private readonly Queue<string> tokens;
        public Given(IEnumerable<string> words) { tokens = new Queue<string>(words); }
        public bool IsEmpty { get { return tokens.Count == 0; } }
        public byte Byte() { return byte.Parse(Digits()); }
        public int Int() { return int.Parse(Digits()); }
        public long Long() { return long.Parse(Digits()); }
        public double Real() { return BitConverter.Int64BitsToDouble(Convert.ToInt64(Digits(), 16)); }

        public string Text()
        {
            var token = tokens.Dequeue();
            if (token == "n") return null;
            var bytes = Enumerable.Range(0, token.Length / 2).Select(k => Convert.ToByte(token.Substring(1 + 2 * k, 2), 16));
            return Encoding.UTF8.GetString(bytes.ToArray());
        }

        public Values Values()
        {
            var v = new Values {Ch = Byte(), I = Int(), L = Long(), D = Real(), Text = Text()};
            Fill(v.I3, Int);
            Fill(v.L3, Long);
            Fill(v.D3, Real);
            Fill(v.I6, Int);
            Fill(v.L6, Long);
            Fill(v.D6, Real);
            return v;
        }

        public void Fill<T>(T[] into, Func<T> next) { for (var k = 0; k < into.Length; ++k) into[k] = next(); }

        private string Digits() { return tokens.Dequeue().Substring(1); }
    }

    private static string Text(string said) { return "x" + string.Concat(said.Select(c => $"{(int)c:x2}")); }

    private static string Reals(params double[] reals)
    {
        return string.Join(" ", reals.Select(real => $"r{BitConverter.DoubleToInt64Bits(real):x16}"));
    }

    private static string Fields(Values v)
    {
        return $"x{v.Ch:x2} {v.I} {v.L} {Reals(v.D)} {Text(v.Text)} {string.Join(" ", v.I3)} {string.Join(" ", v.L3)} " +
               $"{Reals(v.D3)} {string.Join(" ", v.I6)} {string.Join(" ", v.L6)} {Reals(v.D6)}";
    }

    private static Func<Given, string> Doing(Action<Given> call)
    {
        return given =>
        {
            call(given);
            return "";
        };
    }

    private static Library library;

    // What a call of each C function gives, as it is said.
    private static readonly Dictionary<string, Func<Given, string>> Calls = new Dictionary<string, Func<Given, string>>
    {
        {"Open", Doing(given => library = given.IsEmpty ? new Library() : new Library(given.Text()))},
        {"CorvaleInit", Doing(given => library.Init())},
        {"CorvaleGetInfo", given => Text(library.Info)},
        {"GetInitDllNames", given => Text(library.InitDllNames)},
        {"OpenLogFile", Doing(given => library.OpenLogFile(given.Text()))},
        {"CloseLogFile", Doing(given => library.CloseLogFile())},
        {"LogMessage", Doing(given => library.LogMessage(given.Text()))},
        {"GetLastErrMsg", given => Text(library.LastErrMsg)},
        {"GetLastInfoMsg", given => Text(library.LastInfoMsg)},
        {"GetDupKeyMode", given => $"{library.DupKeyMode}"},
        {"SetDupKeyMode", Doing(given => library.DupKeyMode = given.Int())},
        {"GetAllKeyMode", given => $"{library.AllKeyMode}"},
        {"SetAllKeyMode", Doing(given => library.AllKeyMode = given.Int())},
        {"ResetAllKeyMode", Doing(given => library.ResetAllKeyMode())},
        {"GetElsetKeyMode", given => $"{library.ElsetKeyMode}"},
        {"SetElsetKeyMode", Doing(given => library.ElsetKeyMode = given.Int())},
        {"CorvaleLoadFile", Doing(given => library.LoadFile(given.Text()))},
        {"GetMOICData", given => Reals(library.MoicData(given.Int()))},
        {"TestInterface", given => Fields(library.TestInterface(given.Values()))},
        {"TestInterface2", given =>
            {
                var values = given.Values();
                library.TestInterface2(values);
                return Fields(values);
            }},
        {"TestInterface3", given =>
            {
                var from = new Values();
                given.Fill(from.I3, given.Int);
                given.Fill(from.I6, given.Int);
                var to = library.TestInterface3(from);
                return string.Join(" ", to.I3.Concat(to.I6));
            }}
    };

    private static string Answer(string line)
    {
        var words = line.Split(' ', ',');
        try { return $"ok {Calls[words[0]](new Given(words.Skip(1)))}".TrimEnd(); }
        catch (CorvaleException failure) { return $"failed {Text(failure.Message)}"; }
        catch (ArgumentException refusal)
        {
            return refusal.GetType() == typeof(ArgumentException) ? "refused" : $"refused {refusal.GetType().Name}";
        }
        catch (TypeLoadException reason) { return $"unloaded {Text(reason.GetType().Name + ": " + reason.Message)}"; }
    }

    private static void Main()
    {
        for (string line; (line = Console.ReadLine()) != null;) Console.WriteLine(Answer(line));
    }
}
