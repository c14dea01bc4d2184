// Large fills for a user who may start few threads, or none: the numbers of small ones.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <tbb/global_control.h>
#include <tbb/task_arena.h>
#include <unistd.h>

#include <algorithm>
#include <system_error>
#include <thread>

#include "tests/support/plugins.h"

namespace {

using namespace testing_support;

constexpr std::size_t kWanted = 16;
constexpr std::size_t kCount = 300'000;
constexpr uid_t kNobody = 65534;
enum Exit { kEqual, kDifferent, kNoLimit };

// The user of this process may have so many threads. False where the system does not hold to it.
bool limitThreads(rlim_t most) {
  const rlimit limit{most, most};
  if (setrlimit(RLIMIT_NPROC, &limit) != 0) return false;
  if (getuid() == 0 && setuid(kNobody) != 0) return false;  // root may have any number
  try {
    std::vector<std::jthread> threads;
    for (rlim_t i = 0; i < most; ++i) threads.emplace_back([] { usleep(1000); });
    return false;
  } catch (std::system_error const&) {
    return true;
  }
}

Exit compare() {
  for (Generator const& generator : generatorsWithStreams()) {
    const Plugin serial(generator, 6), large(generator, 6);
    for (bool normals : {false, true}) {
      if (normals && !serial.normals()) continue;
      const auto draw = [&](Plugin const& plugin, double* out, std::size_t n) {
        normals ? plugin.normals()->randn(out, n) : plugin->randu(out, n);
      };
      std::vector<double> expected(kCount), values(kCount);
      for (std::size_t at = 0; at < kCount; at += 1000) draw(serial, expected.data() + at, 1000);
      draw(large, values.data(), kCount);
      if (values != expected || large.state() != serial.state()) return kDifferent;
    }
  }
  return kEqual;
}

class FewThreads : public testing::TestWithParam<rlim_t> {};

TEST_P(FewThreads, LargeFillsAreTheSerialOnes) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");  // no thread of this process lives there
  bool isLimited = true;
  EXPECT_EXIT(
      {
        if (!limitThreads(GetParam())) std::_Exit(kNoLimit);
        const tbb::global_control allowed(tbb::global_control::max_allowed_parallelism, kWanted);
        std::_Exit(tbb::task_arena(kWanted).execute(compare));
      },
      [&](int status) {
        isLimited = WEXITSTATUS(status) != kNoLimit;
        return WIFEXITED(status) && WEXITSTATUS(status) != kDifferent;
      },
      "");
  if (!isLimited) GTEST_SKIP() << "this user's threads cannot be limited";
}

INSTANTIATE_TEST_SUITE_P(ThreadsOfTheUser, FewThreads, testing::Values(1, 4, kWanted));

}  // namespace
