import corvale.Corvale;

/** Loads an input file and prints what its cards set: java LoadFile INPUT-FILE. */
final class LoadFile {
    private LoadFile() {}

    public static void main(String[] arguments) {
        if (arguments.length != 1) {
            System.err.println("usage: java LoadFile INPUT-FILE");
            System.exit(2);
        }
        try {
            show(arguments[0]);
        } catch (RuntimeException | UnsatisfiedLinkError error) {
            System.err.println(error.getMessage());
            System.exit(2);
        }
    }

    private static void show(String fileName) {
        Corvale corvale = new Corvale();
        corvale.loadFile(fileName);
        System.out.println("element-set key mode " + corvale.getElsetKeyMode()
                + ", all-key mode " + corvale.getAllKeyMode());
        double[] values = corvale.getMoicData(128);
        for (int i = 0; i < values.length; ++i) {
            if (values[i] != 0) {
                System.out.println("MOIC(" + (i + 1) + ") = " + values[i]);
            }
        }
    }
}
