#!/usr/bin/env bash
# bench.sh [--quick|--page]: measures Corvale beside its peers and writes docs/benchmarks.md, its full
# figures beside it and the charts: about a quarter of an hour, best on a quiet machine. With --quick it
# only checks that every program builds, runs and agrees, in two minutes, and writes into
# build/bench-quick. With --page it writes the pages again from the last run.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
cd "$top"

mode=${1-}
case $mode in
    '' | --quick | --page) ;;
    *) echo "usage: bench.sh [--quick|--page]" >&2; exit 2 ;;
esac
results=build/bench-results pages=(docs/benchmarks.md docs/benchmark-figures.md docs/charts README.md)
repetitions=7 seconds=0.03 processes=301
if [ "$mode" = --quick ]; then
    results=build/bench-quick pages=(build/bench-quick/benchmarks.md build/bench-quick/benchmark-figures.md build/bench-quick/charts)
    repetitions=1 seconds=0.001 processes=11
fi

# The last core: the first one serves most interrupts.
core=$(($(nproc) - 1))

# measure NAME PROGRAM FILTER [pinned|free] [REPETITIONS]: a filter that begins with - leaves out. What it
# prints ends up in NAME.json.
measure() {
    local name=$1 program=$2 filter=$3 where=${4-pinned} count=${5-$repetitions} pin=()
    local TIMEFORMAT="$name: %0R s, of the processor %0U s and %0S s in the kernel"
    [ "$where" = free ] || pin=(taskset -c "$core")
    time "${pin[@]}" "build/bench/bench/$program" --benchmark_filter="$filter" \
        --benchmark_enable_random_interleaving=true --benchmark_repetitions="$count" \
        --benchmark_min_time="$seconds" --benchmark_out_format=json \
        --benchmark_out="$results/$name.json" >"$results/$name.log" 2>&1 ||
        { cat "$results/$name.log"; return 1; }
}

measure_all() {
    local pattern
    rm -rf "$results"
    mkdir -p "$results"
    python3 -B bench/report/start.py build/bench "$results/start.json" "$processes"
    echo "size and start: done"
    measure LimitBench LimitBench .
    measure TextBench TextBench .
    measure ElementaryBench ElementaryBench .
    measure NumbersBench NumbersBench .
    measure LogBench-1 LogBench '-threads:'
    measure LogBench-8 LogBench 'threads:' free
    if [ "$mode" = --quick ]; then
        measure CardFileBench CardFileBench ' 1 %/'
        measure SmallBench SmallBench '-/(10000|100000|1000000)$'
        measure MatrixBench MatrixBench '-/(500|512|1000)$'
        measure SortBench SortBench '/10{1,4}/'
        measure ScalingBench ScalingBench '-0000000$'
        return
    fi
    measure CardFileBench CardFileBench .
    measure SmallBench SmallBench .
    measure MatrixBench MatrixBench .
    measure ScalingBench ScalingBench .
    measure SortBench SortBench '/10{1,6}/' pinned 5
    # The keys of one pattern alone fill a gigabyte.
    for pattern in $(build/bench/bench/SortBench --benchmark_list_tests | cut -d/ -f1 | sort -u); do
        measure "SortBench-$pattern" SortBench "^$pattern/(Corvale|pdqsort|pdqsort_branchless)/10000000/" pinned 3
    done
}

if [ "$mode" != --page ]; then
    echo "bench.sh: builds Corvale and its peers, measures them, writes ${pages[0]}"
    need "${build_packages[@]}" gfortran libbenchmark-dev libspdlog-dev libdouble-conversion-dev libfmt-dev \
        libfast-float-dev musl-dev libeigen3-dev liblapack-dev libblas-dev libopenblas0-serial libboost-dev libhwy-dev \
        python3 util-linux binutils
    build bench
    measure_all
fi
python3 -B bench/report/page.py "$results" "${pages[@]}"
echo "${pages[0]} is written; all peers agree; $SECONDS s"
