// Walks the table of the C API and proves that this binding declares and calls all of it.
using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;
using Corvale;

internal static class ApiTest
{
    private static readonly Library library = new Library();
    private static readonly Type[] Declared = typeof(Api).GetNestedTypes();

    private static void Expect(object got, object wanted)
    {
        if (!Equals(got, wanted)) throw new Exception($"got {got}, wanted {wanted}");
    }

    private static void ExpectThrows<Error>(Action call, string message = null) where Error : Exception
    {
        try { call(); }
        catch (Error error)
        {
            if (message != null) Expect(error.Message, message);
            return;
        }
        throw new Exception($"no {typeof(Error).Name}");
    }

    private static string Setting(string name)
    {
        return Environment.GetEnvironmentVariable(name) ?? throw new Exception($"{name} is not set");
    }

    private static readonly Dictionary<Type, string> Kinds = new Dictionary<Type, string>
    {
        {typeof(byte), "char"}, {typeof(int), "int32"}, {typeof(long), "int64"}, {typeof(double), "real64"},
        {typeof(void), "void"}
    };

    // A declaration as a line of the table.
    private static string Line(ParameterInfo p)
    {
        var type = p.ParameterType;
        var element = type.HasElementType ? type.GetElementType() : type;
        var width = p.GetCustomAttribute<WidthAttribute>()?.Elements.ToString() ?? (type.IsArray ? "count" : "1");
        var kind = type == typeof(byte[]) ? "text" : Kinds[element];
        var way = !type.HasElementType || p.IsIn && !p.IsOut ? "in" : p.IsOut && !p.IsIn ? "out" : "inout";
        return $"argument {p.Name} {kind} {width} {way}";
    }

    private static IEnumerable<string> Lines(Type type)
    {
        var call = type.GetMethod("Invoke");
        return new[] {$"function {type.Name} {Kinds[call.ReturnType]}"}.Concat(call.GetParameters().Select(Line));
    }

    // Compares declarations and table; returns how many arguments agreed.
    private static int CheckDeclarations()
    {
        var wanted = File.ReadLines(Setting("CORVALE_INTERFACE")).Where(line => line != "" && line[0] != '#');
        var have = Declared.OrderBy(type => type.MetadataToken).SelectMany(Lines);
        Expect(string.Join("\n", have), string.Join("\n", wanted));
        return have.Count(line => line.StartsWith("argument"));
    }

    private static void Identity()
    {
        library.Init();
        Expect(library.Info.Substring(0, 40), "Arvenit Corvale - Version: v9.4 - Build:");
        Expect(library.InitDllNames, "");
    }

    private static string Modes() { return $"{library.DupKeyMode} {library.AllKeyMode} {library.ElsetKeyMode}"; }

    private static void KeyModes()
    {
        const string reason = "SetDupKeyMode: invalid input value for DUPLICATION key mode.";
        library.DupKeyMode = library.AllKeyMode = 1;
        Expect(Modes(), "1 1 0");
        library.ElsetKeyMode = 1;
        library.ResetAllKeyMode();
        Expect(Modes(), "0 0 1");
        library.ElsetKeyMode = 0;
        ExpectThrows<CorvaleException>(() => library.DupKeyMode = 2, reason);
        Expect(library.LastErrMsg, reason);
    }

    private static void Log()
    {
        const string reason = "FileOpen: Unable to open file \"no such file\" for reading.";
        var log = Path.GetTempFileName();
        library.OpenLogFile(log);
        library.LogMessage("pass 1 of 3");
        ExpectThrows<CorvaleException>(() => library.LoadFile("no such file"), reason);
        library.CloseLogFile();
        Expect(library.LastInfoMsg + library.LastErrMsg, "pass 1 of 3");
        Expect(File.ReadAllText(log), "pass 1 of 3".PadRight(128) + "\nError-" + reason + "\n");
        File.Delete(log);
        ExpectThrows<CorvaleException>(() => library.OpenLogFile(Path.GetTempPath()),
                                       "OpenLogFile: log file failed to open.");
        library.CloseLogFile();
    }

    private static void Cards()
    {
        library.LoadFile(Setting("CORVALE_INPUT"));
        var values = library.MoicData(9);
        Expect(Bits(values.Take(3)), Bits(new[] {6378.135, 398600.8, 1.0826158e-3}));
        Expect(Bits(values.Skip(6)), Bits(new[] {0.25, 0, 1e-12}));
        Expect(Modes(), "0 1 1");
        Expect(library.MoicData(0).Length, 0);
        Expect(library.MoicData(129).SequenceEqual(new double[129]), true);
    }

    private const int IMax = int.MaxValue, IMin = int.MinValue;
    private const long LMax = long.MaxValue, LMin = long.MinValue, Step = 1234567890123456789;

    private static Values Make(byte ch, int i, long l, double d, string text, params Array[] arrays)
    {
        var v = new Values {Ch = ch, I = i, L = l, D = d, Text = text};
        var targets = new Array[] {v.I3, v.L3, v.D3, v.I6, v.L6, v.D6};
        for (var k = 0; k < arrays.Length; ++k) arrays[k].CopyTo(targets[k], 0);
        return v;
    }

    private static Values Distinct()
    {
        return Make(65, IMax, LMax, 0.1, "  text",
                    new[] {IMax, 2, -3}, new[] {LMax, 5, -6}, new[] {-0.0, double.Epsilon, 1e308},
                    new[] {IMin, 8, 9, 10, 11, IMax}, new[] {LMin, 14, 15, 16, 17, LMax},
                    new[] {0.2, 0.3, 0.4, 0.5, 0.6, 0.7});
    }

    private static string Bits(IEnumerable<double> reals)
    {
        return string.Join(" ", reals.Select(BitConverter.DoubleToInt64Bits));
    }

    private static string Shown(Values v)
    {
        return $"{v.Ch} {v.I} {v.L} {Bits(new[] {v.D})} {v.Text}|{string.Join(" ", v.I3)}|{string.Join(" ", v.L3)}|" +
               $"{Bits(v.D3)}|{string.Join(" ", v.I6)}|{string.Join(" ", v.L6)}|{Bits(v.D6)}";
    }

    private static void SelfTests()
    {
        var given = Distinct();
        var got = library.TestInterface(given);
        Expect(Shown(got), Shown(Distinct())); // given may have been written to
        library.TestInterface2(got);
        Expect(Shown(got), Shown(Make(
            90, IMin, LMin + 1, given.D + 42.123456, "It doesn't matter what your string was.", new[] {IMin, 3, -2},
            new[] {LMin + Step - 1, Step + 5, Step - 6}, given.D3.Select(d => d + 42.0).ToArray(),
            new[] {IMin + 1, 9, 10, 11, 12, IMin},
            new[] {LMin + 6, 20, 21, 22, 23, LMin + 5}, given.D6.Select(d => d + 7.6).ToArray())));
        got = library.TestInterface3(Distinct());
        Expect(string.Join(" ", got.I3.Concat(got.I6)), $"-4 8 -12 {IMin} 40 45 50 55 {IMax - 4}");
    }

    private static void Refusals()
    {
        var fits = new string('n', 512);
        foreach (var name in new[] {" blank", "tab\t", "\u00e9t\u00e9", "\u0141", "del\u007f", "nul\0", fits + "n"})
        {
            ExpectThrows<ArgumentException>(() => library.LoadFile(name));
            ExpectThrows<ArgumentException>(() => library.OpenLogFile(name));
        }
        ExpectThrows<ArgumentNullException>(() => library.LoadFile(null));
        foreach (var message in new[] {" blank", "tab\t", fits.Substring(0, 129)})
            ExpectThrows<ArgumentException>(() => library.LogMessage(message));
        ExpectThrows<ArgumentOutOfRangeException>(() => library.MoicData(-1));
        ExpectThrows<CorvaleException>(() => library.LoadFile(fits));
        ExpectThrows<CorvaleException>(() => library.LoadFile(""), "FileOpen: File name is empty.");
        ExpectThrows<DllNotFoundException>(() => new Library("no-such.so"));
        ExpectThrows<EntryPointNotFoundException>(() => new Library("libc.so.6"));
    }

    // What is called where: together every function of the table.
    private static readonly Dictionary<Action, string> Calls = new Dictionary<Action, string>
    {
        {Identity, "CorvaleInit CorvaleGetInfo GetInitDllNames"},
        {KeyModes, "GetDupKeyMode SetDupKeyMode GetAllKeyMode SetAllKeyMode ResetAllKeyMode " +
                   "GetElsetKeyMode SetElsetKeyMode GetLastErrMsg"},
        {Log, "OpenLogFile LogMessage GetLastInfoMsg CloseLogFile"},
        {Cards, "CorvaleLoadFile GetMOICData"},
        {SelfTests, "TestInterface TestInterface2 TestInterface3"}
    };

    private static void Main()
    {
        var arguments = CheckDeclarations();
        foreach (var call in Calls.Keys) call();
        Refusals();
        var called = Calls.Values.SelectMany(names => names.Split(' ')).OrderBy(name => name, StringComparer.Ordinal);
        var functions = Declared.Select(type => type.Name).OrderBy(name => name, StringComparer.Ordinal);
        Expect(string.Join(" ", called), string.Join(" ", functions));
        Console.WriteLine($"C#: {called.Count()} of 20 functions called, {arguments} arguments checked, ok");
    }
}
