package corvale;

import com.sun.jna.Library;
import java.lang.annotation.ElementType;
import java.lang.annotation.Retention;
import java.lang.annotation.RetentionPolicy;
import java.lang.annotation.Target;

/**
 * The 20 functions as the library sees them. What it reaches by address is an array that says which
 * way the values go and how many there are; 0 means as many as the argument before it tells.
 */
interface Api extends Library {
    @Target(ElementType.PARAMETER)
    @Retention(RetentionPolicy.RUNTIME)
    @interface In {
        int value();
    }

    @Target(ElementType.PARAMETER)
    @Retention(RetentionPolicy.RUNTIME)
    @interface Out {
        int value();
    }

    @Target(ElementType.PARAMETER)
    @Retention(RetentionPolicy.RUNTIME)
    @interface InOut {
        int value();
    }

    int CorvaleInit();
    void CorvaleGetInfo(@Out(128) byte[] info);
    void GetInitDllNames(@Out(512) byte[] names);
    int OpenLogFile(@In(512) byte[] fileName);
    void CloseLogFile();
    void LogMessage(@In(128) byte[] message);
    void GetLastErrMsg(@Out(128) byte[] message);
    void GetLastInfoMsg(@Out(128) byte[] message);
    int GetDupKeyMode();
    int SetDupKeyMode(int mode);
    int GetAllKeyMode();
    int SetAllKeyMode(int mode);
    void ResetAllKeyMode();
    int GetElsetKeyMode();
    int SetElsetKeyMode(int mode);
    int CorvaleLoadFile(@In(512) byte[] fileName);
    void GetMOICData(int count, @Out(0) double[] values);
    void TestInterface(
            byte cIn, @Out(1) byte[] cOut, int iIn, @Out(1) int[] iOut,
            long lIn, @Out(1) long[] lOut, double dIn, @Out(1) double[] dOut,
            @In(512) byte[] strIn, @Out(512) byte[] strOut,
            @In(3) int[] i3In, @Out(3) int[] i3Out, @In(3) long[] l3In, @Out(3) long[] l3Out,
            @In(3) double[] d3In, @Out(3) double[] d3Out, @In(6) int[] i6In, @Out(6) int[] i6Out,
            @In(6) long[] l6In, @Out(6) long[] l6Out, @In(6) double[] d6In, @Out(6) double[] d6Out);
    void TestInterface2(
            @InOut(1) byte[] ch, @InOut(1) int[] i, @InOut(1) long[] l, @InOut(1) double[] d,
            @InOut(512) byte[] str, @InOut(3) int[] i3, @InOut(3) long[] l3, @InOut(3) double[] d3,
            @InOut(6) int[] i6, @InOut(6) long[] l6, @InOut(6) double[] d6);
    void TestInterface3(
            @In(3) int[] i3In, @Out(3) int[] i3Out, @In(6) int[] i6In, @Out(6) int[] i6Out);
}
