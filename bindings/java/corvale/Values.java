package corvale;

/** One of every kind of argument, for the interface tests. Arrays keep their lengths. */
public final class Values {
    /** A character. */
    public byte ch;
    /** 32 bits. */
    public int i;
    /** 64 bits. */
    public long l;
    /** A real. */
    public double d;
    /** At most 512 printable ASCII characters; comes back without trailing blanks. */
    public String text = "";
    /** Three of 32 bits. */
    public final int[] i3 = new int[3];
    /** Three of 64 bits. */
    public final long[] l3 = new long[3];
    /** Three reals. */
    public final double[] d3 = new double[3];
    /** Six of 32 bits. */
    public final int[] i6 = new int[6];
    /** Six of 64 bits. */
    public final long[] l6 = new long[6];
    /** Six reals. */
    public final double[] d6 = new double[6];

    /** All zero, the text blank. */
    public Values() {}
}
