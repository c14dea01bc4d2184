// Programs as deep as they may be, on threads whose stack is as small as hosts make them.

#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <functional>

#include "language/fault.h"
#include "runtime/vm.h"

namespace {

// Builds without optimisation, and those with sanitizers, take several times as much.
#ifdef NDEBUG
constexpr std::size_t kStack = std::size_t{256} << 10;
#else
constexpr std::size_t kStack = std::size_t{2} << 20;
#endif

void* runFunction(void* function) {
  (*static_cast<std::function<void()>*>(function))();
  return nullptr;
}

void onSmallStack(std::function<void()> work) {
  pthread_attr_t attributes;
  pthread_t thread;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, kStack), 0);
  ASSERT_EQ(pthread_create(&thread, &attributes, runFunction, &work), 0);
  ASSERT_EQ(pthread_join(thread, nullptr), 0);
  pthread_attr_destroy(&attributes);
}

// A program of n levels: n times `open`, `inside`, n times `close`.
struct Nesting {
  char const* before;
  char const* open;
  char const* inside;
  char const* close;
};

std::string program(Nesting const& nesting, int levels) {
  std::string text = nesting.before;
  for (int i = 0; i < levels; ++i) text += nesting.open;
  text += nesting.inside;
  for (int i = 0; i < levels; ++i) text += nesting.close;
  return text;
}

void PrintTo(Nesting const& nesting, std::ostream* out) { *out << program(nesting, 2); }

class SmallStack : public testing::TestWithParam<Nesting> {};

TEST_P(SmallStack, HoldsEveryProgramThatIsNotRefused) {
  int deepest = 0;
  std::string refusal;
  onSmallStack([&] {
    runtime::Vm vm;
    // Two levels may be counted for one, for example a bracket and an operator.
    for (int levels = 60; levels <= 220; levels += levels < 180 ? 40 : 1) {
      try {
        vm.evaluate(program(GetParam(), levels));
        deepest = levels;
      } catch (language::SourceError const& error) {
        refusal = error.identifier();
      }
    }
  });
  EXPECT_GE(deepest, 60);
  EXPECT_LT(deepest, 210);
  EXPECT_EQ(refusal, "TALVOR:language:syntax");
}

INSTANTIATE_TEST_SUITE_P(
    Language, SmallStack,
    testing::Values(Nesting{"", "(", "rand", ")"}, Nesting{"", "[", "rand", "]"},
                    Nesting{"", "-", "rand", ""}, Nesting{"", "abs(", "rand", ")"},
                    Nesting{"", "1+(", "rand", ")"}, Nesting{"", "1:(", "1", ")"},
                    Nesting{"", "1&&(", "rand", ")"}, Nesting{"1", "+rand", "", ""},
                    Nesting{"x=1;", "x(", "1", ")"}, Nesting{"x=1;x", "(1)", "", ""},
                    Nesting{"x=1;x", "(1)", "=rand", ""}, Nesting{"clear,x", "{1}", "=rand", ""},
                    Nesting{"1", "'", "", ""}, Nesting{"", "if 1\n", "rand;", "\nend"},
                    Nesting{"", "for k=1\n", "rand;", "\nend"},
                    Nesting{"", "try\n", "rand;", "\nend"},
                    Nesting{"", "try\nerror('x')\ncatch e\n", "rand;", "\nend"},
                    Nesting{"", "while 1\n", "rand;", "\nbreak,end"}));

// What is below a block counts with the blocks around it.
TEST_P(SmallStack, CountsLevelsOfSeveralKindsTogether) {
  int accepted = 0;
  onSmallStack([&] {
    runtime::Vm vm;
    for (int levels = 0; levels <= 200; levels += 25) {
      Nesting const& inner = GetParam();
      std::string const text = program(inner, levels);
      for (Nesting const outer : {Nesting{"", "try\n", text.c_str(), "\nend"},
                                  Nesting{"x=1;", "x(", text.c_str(), ")"}}) {
        for (int around = 150 - levels / 2; around <= 200; around += 10) {
          try {
            vm.evaluate(program(outer, around));
            accepted = std::max(accepted, levels + around);
          } catch (language::SourceError const&) {
          }
        }
      }
    }
  });
  EXPECT_LT(accepted, 210);
}

}  // namespace
