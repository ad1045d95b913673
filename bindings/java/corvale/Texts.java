package corvale;

import java.nio.charset.StandardCharsets;
import java.util.Arrays;
import java.util.function.Consumer;

/** Between strings and the blank-filled buffers of the library. */
final class Texts {
    static final int NAME_WIDTH = 512;
    static final int MESSAGE_WIDTH = 128;

    private Texts() {}

    /** The text in a buffer; refused when the library would not see all of it. */
    static byte[] filled(String text, int width) {
        if (text.length() > width) {
            throw refused(text, text.length() + " characters, " + width + " fit");
        }
        byte[] buffer = new byte[width];
        Arrays.fill(buffer, (byte) ' ');
        for (int i = 0; i < text.length(); ++i) {
            char c = text.charAt(i);
            if (c < 32 || c > 126) {
                throw refused(text, "character " + (i + 1) + " is " + (int) c + ", not printable ASCII");
            }
            buffer[i] = (byte) c;
        }
        return buffer;
    }

    /** A name or message; also refused when it begins with a blank, which the library drops. */
    static byte[] filledUnindented(String text, int width) {
        if (text.startsWith(" ")) {
            throw refused(text, "begins with a blank");
        }
        return filled(text, width);
    }

    /** What a call writes into a buffer, without the blanks that fill it; bytes are Latin-1. */
    static String read(int width, Consumer<byte[]> call) {
        byte[] buffer = new byte[width];
        call.accept(buffer);
        return trimmed(buffer);
    }

    static String trimmed(byte[] buffer) {
        int length = buffer.length;
        while (length > 0 && buffer[length - 1] == ' ') {
            --length;
        }
        return new String(buffer, 0, length, StandardCharsets.ISO_8859_1);
    }

    private static IllegalArgumentException refused(String text, String why) {
        return new IllegalArgumentException("\"" + text + "\": " + why);
    }
}
