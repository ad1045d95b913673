package corvale;

import java.nio.charset.StandardCharsets;
import java.util.Arrays;
import java.util.Map;
import java.util.Scanner;
import java.util.function.Consumer;
import java.util.function.Function;
import java.util.stream.Collectors;

/** Answers the cases of tests/bindings/check.py with this binding. */
final class RunCases {
    private static Corvale corvale;

    /** What goes in, value by value. */
    private static final class Given {
        private final String[] words;
        private int next = 1;

        Given(String line) {
            words = line.split("[ ,]");
        }

        private String digits() {
            return words[next++].substring(1);
        }

        boolean isEmpty() {
            return next == words.length;
        }

        int integer() {
            return Integer.parseInt(digits());
        }

        double real() {
            return Double.longBitsToDouble(Long.parseUnsignedLong(digits(), 16));
        }

        String text() {
            String hex = digits();
            byte[] bytes = new byte[hex.length() / 2];
            for (int k = 0; k < bytes.length; ++k) {
                bytes[k] = (byte) Integer.parseInt(hex.substring(2 * k, 2 * k + 2), 16);
            }
            return new String(bytes, StandardCharsets.UTF_8);
        }

        Values values() {
            Values v = new Values();
            v.ch = (byte) integer();
            v.i = integer();
            v.l = Long.parseLong(digits());
            v.d = real();
            v.text = text();
            Arrays.setAll(v.i3, k -> integer());
            Arrays.setAll(v.l3, k -> Long.parseLong(digits()));
            Arrays.setAll(v.d3, k -> real());
            Arrays.setAll(v.i6, k -> integer());
            Arrays.setAll(v.l6, k -> Long.parseLong(digits()));
            Arrays.setAll(v.d6, k -> real());
            return v;
        }
    }

    private static String text(String said) {
        return said.chars().mapToObj(c -> String.format("%02x", c)).collect(Collectors.joining("", "x", ""));
    }

    private static String reals(double... values) {
        return Arrays.stream(values).mapToObj(value -> String.format("r%016x ", Double.doubleToRawLongBits(value)))
                .collect(Collectors.joining());
    }

    /** Integers without what Java puts around the elements of an array. */
    private static String ints(String shown) {
        return shown.replaceAll("[\\[\\],]", "") + " ";
    }

    private static String fields(Values v) {
        return String.format("x%02x %d %d ", v.ch, v.i, v.l) + reals(v.d) + text(v.text) + " "
                + ints(Arrays.toString(v.i3)) + ints(Arrays.toString(v.l3)) + reals(v.d3)
                + ints(Arrays.toString(v.i6)) + ints(Arrays.toString(v.l6)) + reals(v.d6);
    }

    private static String testInterface2(Given given) {
        Values values = given.values();
        corvale.testInterface2(values);
        return fields(values);
    }

    private static String testInterface3(Given given) {
        Values from = new Values();
        Arrays.setAll(from.i3, k -> given.integer());
        Arrays.setAll(from.i6, k -> given.integer());
        Values to = corvale.testInterface3(from);
        return ints(Arrays.toString(to.i3)) + ints(Arrays.toString(to.i6));
    }

    private static Function<Given, String> doing(Consumer<Given> call) {
        return given -> {
            call.accept(given);
            return "";
        };
    }

    /** What a call of each C function gives, as it is said. */
    private static final Map<String, Function<Given, String>> CALLS = Map.ofEntries(
            Map.entry("Open", doing(given -> corvale = given.isEmpty() ? new Corvale() : new Corvale(given.text()))),
            Map.entry("CorvaleInit", doing(given -> corvale.init())),
            Map.entry("CorvaleGetInfo", given -> text(corvale.getInfo())),
            Map.entry("GetInitDllNames", given -> text(corvale.getInitDllNames())),
            Map.entry("OpenLogFile", doing(given -> corvale.openLogFile(given.text()))),
            Map.entry("CloseLogFile", doing(given -> corvale.closeLogFile())),
            Map.entry("LogMessage", doing(given -> corvale.logMessage(given.text()))),
            Map.entry("GetLastErrMsg", given -> text(corvale.getLastErrMsg())),
            Map.entry("GetLastInfoMsg", given -> text(corvale.getLastInfoMsg())),
            Map.entry("GetDupKeyMode", given -> String.valueOf(corvale.getDupKeyMode())),
            Map.entry("SetDupKeyMode", doing(given -> corvale.setDupKeyMode(given.integer()))),
            Map.entry("GetAllKeyMode", given -> String.valueOf(corvale.getAllKeyMode())),
            Map.entry("SetAllKeyMode", doing(given -> corvale.setAllKeyMode(given.integer()))),
            Map.entry("ResetAllKeyMode", doing(given -> corvale.resetAllKeyMode())),
            Map.entry("GetElsetKeyMode", given -> String.valueOf(corvale.getElsetKeyMode())),
            Map.entry("SetElsetKeyMode", doing(given -> corvale.setElsetKeyMode(given.integer()))),
            Map.entry("CorvaleLoadFile", doing(given -> corvale.loadFile(given.text()))),
            Map.entry("GetMOICData", given -> reals(corvale.getMoicData(given.integer()))),
            Map.entry("TestInterface", given -> fields(corvale.testInterface(given.values()))),
            Map.entry("TestInterface2", RunCases::testInterface2),
            Map.entry("TestInterface3", RunCases::testInterface3));

    private static String answer(String line) {
        Given given = new Given(line);
        try {
            return "ok " + CALLS.get(given.words[0]).apply(given).strip();
        } catch (CorvaleException failure) {
            return "failed " + text(failure.getMessage());
        } catch (IllegalArgumentException refusal) {
            boolean isUsual = refusal.getClass() == IllegalArgumentException.class;
            return isUsual ? "refused" : "refused " + refusal.getClass().getSimpleName();
        } catch (UnsatisfiedLinkError reason) {
            return "unloaded " + text(reason.getMessage());
        }
    }

    public static void main(String[] arguments) {
        new Scanner(System.in, StandardCharsets.US_ASCII).useDelimiter("\n").forEachRemaining(
                line -> System.out.println(answer(line)));
    }
}
