#include <benchmark/benchmark.h>

#if !defined(NDEBUG)
#error "A benchmark of an unoptimised build tells nothing."
#endif

BENCHMARK_MAIN();
