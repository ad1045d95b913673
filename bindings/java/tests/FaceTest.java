package corvale;

import java.io.IOException;
import java.lang.reflect.Method;
import java.lang.reflect.Parameter;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;
import java.util.TreeSet;

/** Walks the table of the C face and proves that this binding declares and calls all of it. */
final class FaceTest {
    private static final Corvale corvale = new Corvale();

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
        Face.In in = p.getAnnotation(Face.In.class);
        Face.Out out = p.getAnnotation(Face.Out.class);
        int width = in != null ? in.value() : out != null ? out.value() : p.getAnnotation(Face.InOut.class).value();
        String kind = type == byte[].class && width > 1 ? "text" : KINDS.get(type.getComponentType());
        return "argument " + p.getName() + " " + kind + " " + (width == 0 ? "count" : width) + " "
                + (in != null ? "in" : out != null ? "out" : "inout");
    }

    private static Map<String, List<String>> declared() {
        Map<String, List<String>> functions = new TreeMap<>();
        for (Method m : Face.class.getDeclaredMethods()) {
            List<String> lines = new ArrayList<>(List.of("result " + KINDS.get(m.getReturnType())));
            Arrays.stream(m.getParameters()).map(FaceTest::line).forEach(lines::add);
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

    private static Values distinct() {
        Values v = new Values();
        v.ch = 'A';
        v.i = Integer.MAX_VALUE;
        v.l = Long.MAX_VALUE;
        v.d = 0.1;
        v.text = "  text";
        Arrays.setAll(v.i3, k -> Integer.MAX_VALUE - 1 + k); // k = 2 wraps to the least
        Arrays.setAll(v.l3, k -> Long.MAX_VALUE - 1 + k);
        System.arraycopy(new double[] {-0.0, Double.MIN_VALUE, 1e308}, 0, v.d3, 0, 3);
        Arrays.setAll(v.i6, k -> Integer.MAX_VALUE - 7 - k);
        Arrays.setAll(v.l6, k -> Long.MAX_VALUE - 3 - k);
        Arrays.setAll(v.d6, k -> 0.2 + k);
        return v;
    }

    private static String shown(Values v) { // Java writes reals so that no two share a text
        return v.ch + " " + v.i + " " + v.l + " " + v.d + " " + v.text + Arrays.toString(v.i3) + Arrays.toString(v.l3)
                + Arrays.toString(v.d3) + Arrays.toString(v.i6) + Arrays.toString(v.l6) + Arrays.toString(v.d6);
    }

    private static void selfTests() {
        Values given = distinct();
        Values wanted = distinct();
        Values got = corvale.testInterface(given);
        expect(shown(got), shown(distinct())); // given may have been written to
        wanted.ch = 'Z';
        wanted.i += 1;
        wanted.l += 2;
        wanted.d += 42.123456;
        wanted.text = "It doesn't matter what your string was.";
        Arrays.setAll(wanted.i3, k -> given.i3[k] + 1);
        Arrays.setAll(wanted.l3, k -> given.l3[k] + 1234567890123456789L);
        Arrays.setAll(wanted.d3, k -> given.d3[k] + 42.0);
        Arrays.setAll(wanted.i6, k -> given.i6[k] + 1);
        Arrays.setAll(wanted.l6, k -> given.l6[k] + 6);
        Arrays.setAll(wanted.d6, k -> given.d6[k] + 7.6);
        corvale.testInterface2(got);
        expect(shown(got), shown(wanted));
        wanted = new Values();
        Arrays.setAll(wanted.i3, k -> given.i3[k] * 4);
        Arrays.setAll(wanted.i6, k -> given.i6[k] * 5);
        expect(shown(corvale.testInterface3(distinct())), shown(wanted));
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
        TreeSet<String> called = new TreeSet<>();
        identity();
        called.addAll(List.of("CorvaleInit", "CorvaleGetInfo", "GetInitDllNames"));
        keyModes();
        called.addAll(List.of("GetDupKeyMode", "SetDupKeyMode", "GetAllKeyMode", "SetAllKeyMode",
                "ResetAllKeyMode", "GetElsetKeyMode", "SetElsetKeyMode", "GetLastErrMsg"));
        log();
        called.addAll(List.of("OpenLogFile", "LogMessage", "GetLastInfoMsg", "CloseLogFile"));
        cards();
        called.addAll(List.of("CorvaleLoadFile", "GetMOICData"));
        selfTests();
        called.addAll(List.of("TestInterface", "TestInterface2", "TestInterface3"));
        refusals();
        expect(called, functions.keySet());
        int checked = functions.values().stream().mapToInt(lines -> lines.size() - 1).sum();
        System.out.printf("Java: %d of 20 functions called, %d arguments checked, ok%n", called.size(), checked);
    }
}
