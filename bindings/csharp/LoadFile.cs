// Loads an input file and prints what its cards set.
//
//     mono LoadFile.exe INPUT-FILE
using System;
using Corvale;

internal static class LoadFile
{
    private static int Main(string[] arguments)
    {
        if (arguments.Length != 1)
        {
            Console.Error.WriteLine("usage: LoadFile.exe INPUT-FILE");
            return 2;
        }
        try
        {
            Show(arguments[0]);
            return 0;
        }
        catch (Exception error)
        {
            Console.Error.WriteLine(error.Message);
            return 2;
        }
    }

    private static void Show(string fileName)
    {
        var library = new Library();
        library.LoadFile(fileName);
        Console.WriteLine($"element-set key mode {library.ElsetKeyMode}, all-key mode {library.AllKeyMode}");
        var values = library.MoicData(128);
        for (var i = 0; i < values.Length; ++i)
            if (values[i] != 0.0) Console.WriteLine(FormattableString.Invariant($"MOIC({i + 1}) = {values[i]:R}"));
    }
}
