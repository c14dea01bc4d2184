// The benchmark program. Beside the options of Google Benchmark it takes --baseline, which holds
// our kernels to the lowest instruction set that they are compiled for, and --threads, which runs
// the fills on two threads instead of all else.

#include <hwy/targets.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "benchmarks/benchmarks.h"

namespace {

// Takes the option out of the arguments; whether it was there.
bool takeOption(char const* option, int& argc, char** argv) {
  char** const end = argv + argc;
  char** const kept =
      std::remove_if(argv, end, [=](char* arg) { return std::strcmp(arg, option) == 0; });
  argc = static_cast<int>(kept - argv);
  return kept != end;
}

// The list has the most capable target first and the scalar form last.
void useLowestTarget() {
  std::int64_t lowest = 0;
  for (std::int64_t const target : hwy::SupportedAndGeneratedTargets())
    if (target != HWY_SCALAR && target != HWY_EMU128) lowest = target;
  if (lowest != 0) hwy::SetSupportedTargetsForTest(lowest);
}

}  // namespace

int main(int argc, char** argv) {
  if (takeOption("--baseline", argc, argv)) useLowestTarget();
  benchmark::AddCustomContext("target",
                              hwy::TargetName(hwy::SupportedTargets() & -hwy::SupportedTargets()));
  benchmarks::addMemory();
  if (takeOption("--threads", argc, argv)) {
    benchmarks::addThreads();
  } else {
    benchmarks::addUniform();
    benchmarks::addNormal();
    benchmarks::addOneValue();
    benchmarks::addIntegers();
    benchmarks::addPermutations();
    benchmarks::addJumps();
    benchmarks::addCalls();
  }
  benchmark::AddCustomContext("compiler", TV_BENCHMARK_COMPILER);
  benchmark::AddCustomContext("flags", TV_BENCHMARK_FLAGS_TEXT);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
}
