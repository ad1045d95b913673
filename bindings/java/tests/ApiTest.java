package corvale;

import java.io.IOException;
import java.lang.reflect.Array;
import java.lang.reflect.Method;
import java.lang.reflect.Parameter;
import java.lang.reflect.Proxy;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;
import java.util.TreeSet;

/** Walks the table of the C API and proves that this binding declares and calls all of it. */
final class ApiTest {
    private static final TreeSet<String> CALLED = new TreeSet<>();
    private static final Corvale corvale = new Corvale(recording(Corvale.load(System.getenv("CORVALE_LIBRARY"))));

    /** The same functions; each call is remembered. */
    private static Api recording(Api api) {
        Class<?>[] apis = {Api.class};
        return (Api) Proxy.newProxyInstance(Api.class.getClassLoader(), apis, (proxy, method, values) -> {
            CALLED.add(method.getName());
            return method.invoke(api, values);
        });
    }

    private static void expect(Object got, Object wanted) {
        if (!got.equals(wanted)) {
            throw new AssertionError("got " + got + ", wanted " + wanted);
        }
    }

    /** The message of what a call throws, which has to be of this class itself. */
    private static String thrown(Class<?> wanted, Runnable call) {
        try {
            call.run();
        } catch (RuntimeException | UnsatisfiedLinkError error) {
            expect(error.getClass(), wanted);
            return error.getMessage();
        }
        throw new AssertionError("no " + wanted);
    }

    private static final Map<Class<?>, String> KINDS = Map.of(byte.class, "char", int.class, "int32",
            long.class, "int64", double.class, "real64", void.class, "void");

    /** A declaration as the table has it. */
    private static String line(Parameter p) {
        Class<?> type = p.getType();
        if (!type.isArray()) {
            return "argument " + p.getName() + " " + KINDS.get(type) + " 1 in";
        }
        Api.In in = p.getAnnotation(Api.In.class);
        Api.Out out = p.getAnnotation(Api.Out.class);
        int width = in != null ? in.value() : out != null ? out.value() : p.getAnnotation(Api.InOut.class).value();
        String kind = type == byte[].class && width > 1 ? "text" : KINDS.get(type.getComponentType());
        return "argument " + p.getName() + " " + kind + " " + (width == 0 ? "count" : width) + " "
                + (in != null ? "in" : out != null ? "out" : "inout");
    }

    private static Map<String, List<String>> declared() {
        Map<String, List<String>> functions = new TreeMap<>();
        for (Method m : Api.class.getDeclaredMethods()) {
            List<String> lines = new ArrayList<>(List.of("result " + KINDS.get(m.getReturnType())));
            Arrays.stream(m.getParameters()).map(ApiTest::line).forEach(lines::add);
            functions.put(m.getName(), lines);
        }
        return functions;
    }

    private static Map<String, List<String>> table() throws IOException {
        Map<String, List<String>> functions = new TreeMap<>();
        List<String> lines = null;
        for (String line : Files.readAllLines(Path.of(System.getenv("CORVALE_INTERFACE")))) {
            if (line.startsWith("function ")) {
                String[] words = line.split(" ");
                lines = new ArrayList<>(List.of("result " + words[2]));
                functions.put(words[1], lines);
            } else if (!line.isEmpty() && !line.startsWith("#")) {
                lines.add(line);
            }
        }
        return functions;
    }

    private static void identity() {
        corvale.init();
        expect(corvale.getInfo().substring(0, 40), "Arvenit Corvale - Version: v9.4 - Build:");
        expect(corvale.getInitDllNames(), "");
    }

    private static List<Integer> modes() {
        return List.of(corvale.getDupKeyMode(), corvale.getAllKeyMode(), corvale.getElsetKeyMode());
    }

    private static void keyModes() {
        corvale.setDupKeyMode(1);
        corvale.setAllKeyMode(1);
        expect(modes(), List.of(1, 1, 0));
        corvale.setElsetKeyMode(1);
        corvale.resetAllKeyMode();
        expect(modes(), List.of(0, 0, 1));
        corvale.setElsetKeyMode(0);
        String reason = thrown(CorvaleException.class, () -> corvale.setDupKeyMode(2));
        expect(reason, "SetDupKeyMode: invalid input value for DUPLICATION key mode.");
        expect(corvale.getLastErrMsg(), reason);
    }

    private static void log() throws IOException {
        Path log = Files.createTempFile("corvale", ".log");
        corvale.openLogFile(log.toString());
        corvale.logMessage("pass 1 of 3");
        String reason = thrown(CorvaleException.class, () -> corvale.loadFile("no such file"));
        corvale.closeLogFile();
        expect(corvale.getLastInfoMsg() + corvale.getLastErrMsg(), "pass 1 of 3");
        expect(reason, "FileOpen: Unable to open file \"no such file\" for reading.");
        expect(Files.readString(log), String.format("%-128s\nError-%s\n", "pass 1 of 3", reason));
        Files.delete(log);
        expect(thrown(CorvaleException.class, () -> corvale.openLogFile(log.getParent().toString())),
                "OpenLogFile: log file failed to open.");
        corvale.closeLogFile();
    }

    private static void cards() {
        corvale.loadFile(System.getenv("CORVALE_INPUT"));
        double[] v = corvale.getMoicData(9);
        double[] wanted = {6378.135, 398600.8, 1.0826158e-3, v[3], v[4], v[5], 0.25, 0, 1e-12};
        expect(Arrays.equals(v, wanted), true);
        expect(modes(), List.of(0, 1, 1));
        expect(corvale.getMoicData(0).length, 0);
        expect(Arrays.equals(corvale.getMoicData(129), new double[129]), true);
    }

    private static final int I_MAX = Integer.MAX_VALUE;
    private static final int I_MIN = Integer.MIN_VALUE;
    private static final long L_MAX = Long.MAX_VALUE;
    private static final long L_MIN = Long.MIN_VALUE;
    private static final long STEP = 1234567890123456789L;

    private static Values make(char ch, int i, long l, double d, String text, Object... arrays) {
        Values v = new Values();
        v.ch = (byte) ch;
        v.i = i;
        v.l = l;
        v.d = d;
        v.text = text;
        Object[] targets = {v.i3, v.l3, v.d3, v.i6, v.l6, v.d6};
        for (int k = 0; k < arrays.length; ++k) {
            System.arraycopy(arrays[k], 0, targets[k], 0, Array.getLength(targets[k]));
        }
        return v;
    }

    private static Values distinct() {
        return make('A', I_MAX, L_MAX, 0.1, "  text", new int[] {I_MAX, 2, -3}, new long[] {L_MAX, 5, -6},
                new double[] {-0.0, Double.MIN_VALUE, 1e308}, new int[] {I_MIN, 8, 9, 10, 11, I_MAX},
                new long[] {L_MIN, 14, 15, 16, 17, L_MAX}, new double[] {0.2, 0.3, 0.4, 0.5, 0.6, 0.7});
    }

    private static String shown(Values v) { // Java writes reals so that no two share a text
        return v.ch + " " + v.i + " " + v.l + " " + v.d + " " + v.text + Arrays.toString(v.i3) + Arrays.toString(v.l3)
                + Arrays.toString(v.d3) + Arrays.toString(v.i6) + Arrays.toString(v.l6) + Arrays.toString(v.d6);
    }

    private static void selfTests() {
        Values given = distinct();
        Values got = corvale.testInterface(given);
        expect(shown(got), shown(distinct())); // given may have been written to
        corvale.testInterface2(got);
        expect(shown(got), shown(make('Z', I_MIN, L_MIN + 1, given.d + 42.123456, "It doesn't matter what your string was.",
                new int[] {I_MIN, 3, -2}, new long[] {L_MIN + STEP - 1, STEP + 5, STEP - 6},
                Arrays.stream(given.d3).map(d -> d + 42.0).toArray(), new int[] {I_MIN + 1, 9, 10, 11, 12, I_MIN},
                new long[] {L_MIN + 6, 20, 21, 22, 23, L_MIN + 5}, Arrays.stream(given.d6).map(d -> d + 7.6).toArray())));
        got = corvale.testInterface3(distinct());
        expect(Arrays.toString(got.i3) + Arrays.toString(got.i6),
                "[-4, 8, -12][" + I_MIN + ", 40, 45, 50, 55, " + (I_MAX - 4) + "]");
    }

    private static void refusals() {
        String fits = "n".repeat(512);
        for (String name : List.of(" blank", "tab\t", "\u00e9t\u00e9", "\u0141", "del\u007f", "nul\0", fits + "n")) {
            thrown(IllegalArgumentException.class, () -> corvale.loadFile(name));
            thrown(IllegalArgumentException.class, () -> corvale.openLogFile(name));
        }
        for (String message : List.of(" blank", "tab\t", fits.substring(0, 129))) {
            thrown(IllegalArgumentException.class, () -> corvale.logMessage(message));
        }
        thrown(IllegalArgumentException.class, () -> corvale.getMoicData(-1));
        thrown(CorvaleException.class, () -> corvale.loadFile(fits));
        expect(thrown(CorvaleException.class, () -> corvale.loadFile("")), "FileOpen: File name is empty.");
        thrown(UnsatisfiedLinkError.class, () -> new Corvale("no-such.so"));
        thrown(UnsatisfiedLinkError.class, () -> new Corvale("libc.so.6"));
    }

    public static void main(String[] arguments) throws IOException {
        Map<String, List<String>> functions = table();
        expect(declared(), functions);
        identity();
        keyModes();
        log();
        cards();
        selfTests();
        refusals();
        expect(CALLED, functions.keySet());
        int checked = functions.values().stream().mapToInt(lines -> lines.size() - 1).sum();
        System.out.printf("Java: %d of 20 functions called, %d arguments checked, ok%n", CALLED.size(), checked);
    }
}
