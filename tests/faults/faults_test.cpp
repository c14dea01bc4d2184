// Memory of the standard library, as the host's allocator has its tests elsewhere: draws ask for
// none, and a request that fails leaves nothing behind and nothing half changed.

#include <gtest/gtest.h>
#include <tvmathrng/tvmathrng.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "embedded_host/allocator.h"
#include "tests/support/calls.h"
#include "tfl_rng/generator_catalogue.h"

namespace {

std::atomic<long> liveBlocks = 0;
thread_local long requests = 0;
thread_local long failsAt = 0;  // the request of this thread that fails, 0 for none
thread_local bool failsStrangely = false;

}  // namespace

// Not inlined: g++ warns of a free that it sees behind a delete.
[[gnu::noinline]] void* operator new(std::size_t bytes) {
  if (++requests == failsAt && failsStrangely) throw 7;
  if (requests == failsAt) throw std::bad_alloc();
  void* const memory = std::malloc(bytes > 0 ? bytes : 1);
  if (!memory) throw std::bad_alloc();
  ++liveBlocks;
  return memory;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  if (memory) --liveBlocks;
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }

namespace {

using namespace testing_support;

constexpr auto kGenerators = tfl_rng::generatorNames();

class EveryGenerator : public testing::TestWithParam<char const*> {
 protected:
  std::unique_ptr<randstream> make() const {
    return std::unique_ptr<randstream>(mrCreateRNGStream(GetParam(), 1, 0, 7, nullptr, 0));
  }
};

// One call of each kind, n values into memory that is there.
struct Draw {
  char const* normals;  // the method, null for that of a new stream
  void (*fill)(randstream&, double* out, std::uint64_t n);
};
const Draw kDraws[] = {
    {nullptr, [](randstream& s, double* out, std::uint64_t n) { s.randuFcn(out, n); }},
    {nullptr, [](randstream& s, double* out,
                 std::uint64_t n) { s.randuFcn(reinterpret_cast<float*>(out), n); }},
    {nullptr, [](randstream& s, double* out, std::uint64_t n) { s.randiFcn(1, 6, out, n); }},
    {nullptr, [](randstream& s, double* out,
                 std::uint64_t n) { s.randiFcn(1, 6, reinterpret_cast<std::uint8_t*>(out), n); }},
    {nullptr, [](randstream& s, double* out, std::uint64_t n) { s.randnFcn(out, n, false); }},
    {"Ziggurat", [](randstream& s, double* out, std::uint64_t n) { s.randnFcn(out, n, false); }},
    {"Polar", [](randstream& s, double* out, std::uint64_t n) { s.randnFcn(out, n, false); }},
    {"Inversion", [](randstream& s, double* out,
                     std::uint64_t n) { s.randnFcn(reinterpret_cast<float*>(out), n, true); }},
};

TEST_P(EveryGenerator, DrawsIntoGivenMemoryAskForNone) {
  std::vector<double> out(1000);
  for (Draw const& draw : kDraws) {
    auto const stream = make();
    if (draw.normals) stream->setRandnAlg(draw.normals);
    draw.fill(*stream, out.data(), 1000);  // the first may choose kernels
    long const before = requests;
    embedded_host::FailingAllocation const host(1);
    for (const std::uint64_t n : {1, 7, 100, 1000}) draw.fill(*stream, out.data(), n);
    EXPECT_EQ(requests, before) << &draw - kDraws;
    EXPECT_FALSE(host.happened()) << &draw - kDraws;
  }
}

// Polar keeps its second value outside the state, so that it starts anew.
TEST_P(EveryGenerator, StateSavedBetweenAnyTwoDrawsRestoresWhatFollows) {
  std::vector<double> out(1300), again(1300);
  for (Draw const& draw : kDraws) {
    auto const stream = make();
    if (draw.normals) stream->setRandnAlg(draw.normals);
    std::vector<std::uint64_t> state(stream->getStateBufLen() / 4 + 1);
    for (const std::uint64_t n : {1, 2, 3, 5, 30, 101, 624}) {
      draw.fill(*stream, out.data(), 2 * n);
      stream->getStateBuf(state.data(), stream->getStateBufLen());
      std::fill(out.begin(), out.end(), 0);
      std::fill(again.begin(), again.end(), 0);
      draw.fill(*stream, out.data(), 200);
      auto const other = make();
      if (draw.normals) other->setRandnAlg(draw.normals);
      other->setStateBuf(state.data(), other->getStateBufLen());
      draw.fill(*other, again.data(), 200);
      EXPECT_EQ(out, again) << &draw - kDraws << " after " << n;
    }
  }
}

// Fails each request of `attempt` in turn until it asks for no more, with `check` after each
// failure. Returns how many have failed. An attempt without failures comes before. Memory is
// counted after attempts that went well: what one leaves to the next, such as the place of an
// error, is no leak.
long failInTurn(std::function<void()> const& attempt, std::function<void()> const& check) {
  auto const start = std::pair(liveBlocks.load(), embedded_host::allocationCounts().liveBlocks);
  for (long k = 1;; ++k) {
    bool failed = false;
    requests = 0;
    failsAt = k;
    try {
      attempt();
    } catch (...) {  // bad_alloc, or what a guard around it has made of it
      failed = true;
    }
    failsAt = 0;
    if (!failed) {
      EXPECT_LT(requests, k) << "a failed request has passed in silence";
      EXPECT_EQ(std::pair(liveBlocks.load(), embedded_host::allocationCounts().liveBlocks), start);
      return k - 1;
    }
    check();
  }
}

TEST_P(EveryGenerator, FailedCloneLeavesNothing) {
  auto const stream = make();
  EXPECT_GT(failInTurn([&] { stream->clone(); }, [] {}), 0);
}

INSTANTIATE_TEST_SUITE_P(Generators, EveryGenerator,
                         testing::ValuesIn(kGenerators.begin(), kGenerators.end()),
                         [](auto const& row) { return row.param; });

struct Call {
  char const* function;
  char const* arguments;  // a cell of them
};

class OutOfMemory : public VmTest, public testing::WithParamInterface<Call> {};

// The stream `s` and the global one stand where they stood.
TEST_P(OutOfMemory, FailedCallMovesNoStreamAndTheNextOneWorks) {
  vm.evaluate("s = RandStream('mrg32k3a','Seed',7);");
  txArrayPtr const cell = vm.evaluate(GetParam().arguments);
  std::vector<txArray const*> given;
  for (std::uint64_t i = 0; i < cell->numel(); ++i) given.push_back(cell->cell(i));
  txArrayPtr const object = vm.evaluate("s");
  auto const stands = [&] {
    return std::tuple(stateOf(*mrGetCPPRandStreamFromTxArray(object.get())), globalState(),
                      randstream::drawnInThread());
  };
  auto const attempt = [&] { vm.call(GetParam().function, given, 0); };
  attempt();
  auto const start = stands();
  EXPECT_GT(failInTurn(attempt, [&] { EXPECT_EQ(stands(), start); }), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Calls, OutOfMemory,
    testing::Values(Call{"rand", "{3,4}"}, Call{"rand", "{s,3,4,'single'}"},
                    Call{"randn", "{[2 3],'like',1i}"}, Call{"randn", "{s,3}"},
                    Call{"randi", "{9,3,'uint8'}"}, Call{"randi", "{s,[2 5],3}"},
                    Call{"randperm", "{20}"}, Call{"randperm", "{s,1000,10}"},
                    Call{"randperm", "{s,300,100}"}, Call{"RandStream", "{'mlfg6331_64','Seed',3}"},
                    Call{"reset", "{s}"}, Call{"advance", "{s,1000}"},
                    Call{"RandStream.global", "{}"}, Call{"RandStream.list", "{}"}),
    [](auto const& row) { return "Row" + std::to_string(row.index); });

// Memory of the host, then of the standard library, then an exception that nobody knows.
TEST(FailuresInC, NeverPassAndHaveAStatus) {
  auto const attempt = [] {
    tvrng_stream* stream = nullptr;
    tvrng_status status = tvrng_create("mrg32k3a", 1, 0, 1, &stream);
    double order[100];
    if (status == TVRNG_OK) status = tvrng_permutation(stream, 100, order);
    tvrng_destroy(stream);
    return status;
  };
  EXPECT_EQ(attempt(), TVRNG_OK);
  enum { ofHost, ofLibrary, strange };
  for (auto const kind : {ofHost, ofLibrary, strange}) {
    failsStrangely = kind == strange;
    long request = 1;
    for (;; ++request) {
      requests = 0;
      failsAt = kind == ofHost ? 0 : request;
      embedded_host::FailingAllocation const failing(kind == ofHost ? request : 0);
      tvrng_status const status = attempt();
      failsAt = 0;
      if (status == TVRNG_OK) break;
      ASSERT_EQ(status, kind == strange ? TVRNG_ERROR : TVRNG_OUT_OF_MEMORY) << request;
      ASSERT_STREQ(tvrng_error_identifier(),
                   kind == strange ? "TALVOR:RandStream:UnexpectedPluginError" : "TALVOR:nomem");
    }
    failsStrangely = false;
    EXPECT_GT(request, 2);
  }
}

using OutOfMemoryInStatements = VmTest;

TEST_F(OutOfMemoryInStatements, FailedStatementsLeakNothingAndTheNextOnesWork) {
  for (char const* source :
       {"x = rand(3) + randn(3);", "s = RandStream('mrg32k3a'); p = randperm(s,100);",
        "n = 0; for i = 1:3, if rand < 2, n = n + i; end, end"}) {
    vm.evaluate(source);
    EXPECT_GT(failInTurn([&] { vm.evaluate(source); }, [] {}), 10) << source;
  }
}

}  // namespace
