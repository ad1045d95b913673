package corvale;

import com.sun.jna.Library;
import com.sun.jna.Native;
import com.sun.jna.NativeLibrary;
import java.lang.reflect.Method;
import java.util.Map;
import java.util.function.Consumer;
import java.util.function.IntSupplier;

/**
 * The C API of libCorvale: messages and log, key modes, input-file cards, interface self-tests.
 *
 * <pre>{@code
 * Corvale corvale = new Corvale();
 * corvale.loadFile("orbit.inp");
 * double[] values = corvale.getMoicData(128);
 * }</pre>
 *
 * The library has one state for the whole process, whichever object is used. Every method may be
 * called by any number of threads: one lock puts their calls in a row. Code that reaches the same
 * library by another way is not held back by that. Texts that the library would cut are refused with
 * an IllegalArgumentException.
 */
public final class Corvale {
    private static final int RTLD_NOW = 2; // as on Linux; RTLD_LOCAL is 0 there
    private static final Map<String, Object> LOCAL = Map.of(Library.OPTION_OPEN_FLAGS, RTLD_NOW);
    private static final Object ONE_AT_A_TIME = new Object();

    private final Api api;

    /**
     * Loads what CORVALE_LIBRARY names, or else libCorvale.so.9 from where the system looks, to the end
     * of the process.
     */
    public Corvale() {
        this(System.getenv().getOrDefault("CORVALE_LIBRARY", "libCorvale.so.9"));
    }

    /**
     * Loads a library by its path, or by its name from where the system looks.
     *
     * @throws UnsatisfiedLinkError with the loader's reason when it, or one of its functions, is not
     *     there
     */
    public Corvale(String path) {
        this(load(path));
    }

    Corvale(Api api) {
        this.api = api;
    }

    static Api load(String path) {
        Api api = Native.load(path, Api.class, LOCAL);
        NativeLibrary library = NativeLibrary.getInstance(path, LOCAL);
        for (Method function : Api.class.getDeclaredMethods()) {
            library.getFunction(function.getName());
        }
        return api;
    }

    /** CorvaleInit. Does nothing: the library is ready once it is loaded. */
    public void init() {
        check(api::CorvaleInit);
    }

    /** CorvaleGetInfo. Name, version, build date, platform and compiler. */
    public String getInfo() {
        return read(Texts.MESSAGE_WIDTH, api::CorvaleGetInfo);
    }

    /** GetInitDllNames. The libraries that have to be initialised first: none. */
    public String getInitDllNames() {
        return read(Texts.NAME_WIDTH, api::GetInitDllNames);
    }

    /** OpenLogFile. Opens the log, created or emptied; every message is from then on also a line of it. */
    public void openLogFile(String fileName) {
        byte[] buffer = Texts.filledUnindented(fileName, Texts.NAME_WIDTH);
        check(() -> api.OpenLogFile(buffer));
    }

    /** CloseLogFile. Closes the log, if one is open, and blanks the last error message. */
    public void closeLogFile() {
        synchronized (ONE_AT_A_TIME) {
            api.CloseLogFile();
        }
    }

    /** LogMessage. Stores a message of at most 128 characters and writes it to an open log. */
    public void logMessage(String message) {
        byte[] buffer = Texts.filledUnindented(message, Texts.MESSAGE_WIDTH);
        synchronized (ONE_AT_A_TIME) {
            api.LogMessage(buffer);
        }
    }

    /** GetLastErrMsg. The last error message; it stays until the next error or closeLogFile. */
    public String getLastErrMsg() {
        return read(Texts.MESSAGE_WIDTH, api::GetLastErrMsg);
    }

    /** GetLastInfoMsg. The last informational message. */
    public String getLastInfoMsg() {
        return read(Texts.MESSAGE_WIDTH, api::GetLastInfoMsg);
    }

    /** GetDupKeyMode. The duplication key mode, 0 or 1. */
    public int getDupKeyMode() {
        return get(api::GetDupKeyMode);
    }

    /** SetDupKeyMode. A mode other than 0 and 1 throws and changes nothing. */
    public void setDupKeyMode(int mode) {
        check(() -> api.SetDupKeyMode(mode));
    }

    /** GetAllKeyMode. The all-key mode, 0 or 1. */
    public int getAllKeyMode() {
        return get(api::GetAllKeyMode);
    }

    /** SetAllKeyMode. A mode other than 0 and 1 throws and changes nothing. */
    public void setAllKeyMode(int mode) {
        check(() -> api.SetAllKeyMode(mode));
    }

    /** ResetAllKeyMode. Sets the all-key and the duplication key mode back to 0. */
    public void resetAllKeyMode() {
        synchronized (ONE_AT_A_TIME) {
            api.ResetAllKeyMode();
        }
    }

    /** GetElsetKeyMode. The element-set key mode, 0 or 1. */
    public int getElsetKeyMode() {
        return get(api::GetElsetKeyMode);
    }

    /** SetElsetKeyMode. A mode other than 0 and 1 throws and changes nothing. */
    public void setElsetKeyMode(int mode) {
        check(() -> api.SetElsetKeyMode(mode));
    }

    /** CorvaleLoadFile. Reads the cards of a file. Throws if it cannot be opened, never for what it holds. */
    public void loadFile(String fileName) {
        byte[] buffer = Texts.filledUnindented(fileName, Texts.NAME_WIDTH);
        check(() -> api.CorvaleLoadFile(buffer));
    }

    /**
     * GetMOICData. The first values of the array that QZ_MOIC cards fill; for more than 128 the library
     * gives zeros. A negative count is refused.
     */
    public double[] getMoicData(int count) {
        if (count < 0) {
            throw new IllegalArgumentException("count is " + count);
        }
        double[] values = new double[count];
        synchronized (ONE_AT_A_TIME) {
            api.GetMOICData(count, values);
        }
        return values;
    }

    /** TestInterface. Gives every value back as it arrived in the library. */
    public Values testInterface(Values from) {
        byte[] textIn = Texts.filled(from.text, Texts.NAME_WIDTH);
        byte[] textOut = new byte[Texts.NAME_WIDTH];
        Values to = new Values();
        byte[] ch = new byte[1];
        int[] i = new int[1];
        long[] l = new long[1];
        double[] d = new double[1];
        api.TestInterface(from.ch, ch, from.i, i, from.l, l, from.d, d, textIn, textOut, from.i3, to.i3,
                from.l3, to.l3, from.d3, to.d3, from.i6, to.i6, from.l6, to.l6, from.d6, to.d6);
        setSingles(to, ch, i, l, d, textOut);
        return to;
    }

    /** TestInterface2. Changes every value by a fixed amount; integers wrap. */
    public void testInterface2(Values values) {
        byte[] text = Texts.filled(values.text, Texts.NAME_WIDTH);
        byte[] ch = {values.ch};
        int[] i = {values.i};
        long[] l = {values.l};
        double[] d = {values.d};
        api.TestInterface2(ch, i, l, d, text, values.i3, values.l3, values.d3, values.i6, values.l6, values.d6);
        setSingles(values, ch, i, l, d, text);
    }

    /** TestInterface3. 4 times i3 and 5 times i6, in a new object; products wrap. */
    public Values testInterface3(Values from) {
        Values to = new Values();
        api.TestInterface3(from.i3, to.i3, from.i6, to.i6);
        return to;
    }

    private static void setSingles(Values to, byte[] ch, int[] i, long[] l, double[] d, byte[] text) {
        to.ch = ch[0];
        to.i = i[0];
        to.l = l[0];
        to.d = d[0];
        to.text = Texts.trimmed(text);
    }

    private static int get(IntSupplier call) {
        synchronized (ONE_AT_A_TIME) {
            return call.getAsInt();
        }
    }

    private static String read(int width, Consumer<byte[]> call) {
        synchronized (ONE_AT_A_TIME) {
            return Texts.read(width, call);
        }
    }

    // The reason is read before another thread can fail.
    private void check(IntSupplier call) {
        synchronized (ONE_AT_A_TIME) {
            if (call.getAsInt() != 0) {
                throw new CorvaleException(getLastErrMsg());
            }
        }
    }
}
