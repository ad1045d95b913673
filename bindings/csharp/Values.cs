using System;

namespace Corvale
{
    /// <summary>One of every kind of argument, for the interface tests. Arrays keep their lengths.</summary>
    public sealed class Values
    {
        /// <summary>One byte.</summary>
        public byte Ch;
        /// <summary>32 bits.</summary>
        public int I;
        /// <summary>64 bits.</summary>
        public long L;
        /// <summary>A real.</summary>
        public double D;
        /// <summary>At most 512 printable ASCII characters; comes back without trailing blanks.</summary>
        public string Text = "";
        /// <summary>Three of 32 bits.</summary>
        public readonly int[] I3 = new int[3];
        /// <summary>Three of 64 bits.</summary>
        public readonly long[] L3 = new long[3];
        /// <summary>Three reals.</summary>
        public readonly double[] D3 = new double[3];
        /// <summary>Six of 32 bits.</summary>
        public readonly int[] I6 = new int[6];
        /// <summary>Six of 64 bits.</summary>
        public readonly long[] L6 = new long[6];
        /// <summary>Six reals.</summary>
        public readonly double[] D6 = new double[6];
    }
}
