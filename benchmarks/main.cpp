#include "benchmarks/benchmarks.h"

int main(int argc, char** argv) {
  benchmarks::addMemory();
  benchmarks::addUniform();
  benchmarks::addNormal();
  benchmarks::addOneValue();
  benchmarks::addIntegers();
  benchmarks::addPermutations();
  benchmarks::addJumps();
  benchmarks::addCalls();
  benchmark::AddCustomContext("compiler", TV_BENCHMARK_COMPILER);
  benchmark::AddCustomContext("flags", TV_BENCHMARK_FLAGS_TEXT);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
}
