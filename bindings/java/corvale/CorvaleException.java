package corvale;

/** The library returned status 2; the message is its own. */
public final class CorvaleException extends RuntimeException {
    private static final long serialVersionUID = 1;

    CorvaleException(String message) {
        super(message);
    }
}
