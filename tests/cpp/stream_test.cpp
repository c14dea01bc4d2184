// The C++ interface draws what the host language draws.

#include <gtest/gtest.h>

#include <complex>
#include <concepts>
#include <random>
#include <string>
#include <vector>

#include <tvmathrng/random.h>
#include "runtime/vm.h"

namespace {

using namespace tvmathrng;

static_assert(!std::constructible_from<Stream, char const*, int>);
static_assert(!std::constructible_from<Stream, char const*, Seed, StreamCount, StreamIndex>);
static_assert(!std::constructible_from<Stream, char const*, Substream>);
static_assert(std::uniform_random_bit_generator<Bits>);

class EveryGenerator : public testing::TestWithParam<char const*> {
 protected:
  // The values that the host language gives from a new stream of seed 7.
  template <class T>
  std::vector<T> builtin(std::string const& draw, std::string const& settings = "") {
    txArrayPtr const value = vm_.evaluate("s = RandStream('" + std::string(GetParam()) +
                                          "','Seed',7); " + settings + draw);
    T const* const first = std::as_const(*value).dataAs<T>();
    return {first, first + value->numel()};
  }
  Stream stream_{GetParam(), Seed{7}};

 private:
  runtime::Vm vm_;
};

// Odd numbers of values: what is made in pairs or blocks has a last one.
TEST_P(EveryGenerator, DrawsWhatTheBuiltinsDraw) {
  using Complex = std::complex<double>;
  using ComplexFloat = std::complex<float>;
  auto const expectSame = [&](auto const& drawn, std::string const& draw) {
    using T = typename std::decay_t<decltype(drawn)>::value_type;
    EXPECT_EQ(drawn, builtin<T>(draw)) << draw;
    stream_.reset();
  };
  expectSame(stream_.uniform(301), "rand(s,1,301)");
  expectSame(stream_.uniform<float>(301), "rand(s,1,301,'single')");
  expectSame(stream_.normal(301), "randn(s,1,301)");
  expectSame(stream_.normal<float>(301), "randn(s,1,301,'single')");
  expectSame(stream_.normal<Complex>(31), "randn(s,1,31,'like',1i)");
  expectSame(stream_.normal<ComplexFloat>(31), "randn(s,1,31,'like',single(1i))");
  expectSame(stream_.permutation<double>(301), "randperm(s,301)");
  for (Population const n : {Population{1000}, Population{(1ULL << 53) - 111}})
    expectSame(stream_.sample<double>(31, n), "randperm(s," + std::to_string(n.value()) + ",31)");
  expectSame(std::vector{stream_.uniform(), stream_.uniform()}, "rand(s,1,2)");
  expectSame(std::vector{stream_.uniform<float>()}, "rand(s,'single')");
  expectSame(std::vector{stream_.normal()}, "randn(s)");
  expectSame(std::vector{stream_.normal<Complex>()}, "randn(s,'like',1i)");
  expectSame(std::vector{stream_.integer<std::int16_t>({-9, 300})}, "randi(s,[-9 300],'int16')");
  stream_.reset(Seed{0xFFFFFFFE});
  stream_.advance(3);
  expectSame(stream_.uniform(2), "reset(s,2^32-2); advance(s,3); rand(s,1,2)");
}

TEST(Positions, AreTheSameInEveryType) {
  Stream stream("philox4x32_10", Seed{7});
  auto const ofSample = stream.sample<double>(9, Population{1ULL << 50});
  stream.reset();
  auto const unsignedSample = stream.sample(9, Population{1ULL << 50});
  stream.reset();
  auto const all = stream.permutation<double>(9);
  stream.reset();
  auto const signedAll = stream.permutation<std::int64_t>(9);
  EXPECT_TRUE(std::ranges::equal(ofSample, unsignedSample));
  EXPECT_TRUE(std::ranges::equal(all, signedAll));
}

TEST_P(EveryGenerator, JumpsAsFarAsItIsTold) {
  if (!stream_.native().hasSubstreams()) {
    EXPECT_THROW(Family(stream_.seed(), stream_.generator()), Error);
    return;
  }
  stream_.advance((1ULL << 51) + 5);
  EXPECT_EQ(stream_.uniform(3), builtin<double>("advance(s,2^51+5); rand(s,1,3)"));
  stream_.set_substream(Substream{(1ULL << 40) + 1});
  EXPECT_EQ(stream_.uniform(3), builtin<double>("s.Substream = 2^40 + 2; rand(s,1,3)"));
  auto const far = builtin<double>("s.Substream = 2^33 + 1; rand(s,1,3)");
  EXPECT_EQ(stream_.at_substream(Substream{1ULL << 33}).uniform(3), far);
  Family const family(stream_.seed(), stream_.generator());
  EXPECT_EQ(family[Substream{1ULL << 33}].uniform(3), far);
  EXPECT_EQ(family, Family(stream_.seed(), family.generator()));
  EXPECT_NE(family, Family(Seed{stream_.seed().value() + 1}, family.generator()));
}

// A state of another seed makes no other family.
TEST_P(EveryGenerator, SubstreamsAreThoseOfTheSeed) {
  Stream const fresh(GetParam(), stream_.seed());
  std::uint64_t const k = stream_.native().hasSubstreams() ? 3 : 0;
  std::vector<std::uint64_t> state(stream_.native().getStateBufLen());
  Stream const other(GetParam(), Seed{99});
  other.native().getStateBuf(state.data(), state.size());
  stream_.native().setStateBuf(state.data(), state.size());
  stream_.uniform(7);
  EXPECT_EQ(stream_.at_substream(Substream{k}).uniform(3),
            fresh.at_substream(Substream{k}).uniform(3));
}

// Integers of 64 bits come as doubles, in parts.
TEST_P(EveryGenerator, IntegersOf64BitsAreTheDoublesInAnyNumber) {
  constexpr Limits<double> kWide = {-5, 0x1p53 - 7};
  for (std::size_t const n : {1U, 2U, 255U, 256U, 257U, 511U, 512U, 513U, 1000U}) {
    stream_.reset();
    auto const wide = stream_.integers<std::int64_t>({-5, (1LL << 53) - 7}, n);
    double const next = stream_.uniform();
    stream_.reset();
    EXPECT_EQ(std::vector<double>(wide.begin(), wide.end()), stream_.integers<double>(kWide, n));
    EXPECT_EQ(stream_.uniform(), next) << n;
  }
}

TEST_P(EveryGenerator, TellsWhatWasSetAndCanBeSetBack) {
  std::vector<double> const before = stream_.uniform(20);
  for (bool const on : {true, false}) {
    stream_.set_antithetic(on);
    stream_.set_full_precision(!on);
    stream_.set_normal_method(on ? "polar" : "inversion");
    EXPECT_EQ(stream_.antithetic(), on);
    EXPECT_EQ(stream_.full_precision(), !on);
    EXPECT_EQ(stream_.normal_method(), on ? "Polar" : "Inversion");
  }
  stream_.reset();
  EXPECT_EQ(stream_.uniform(20), before);
  EXPECT_EQ(stream_.generator(), GetParam());
  EXPECT_EQ(stream_.seed(), Seed{7});
}

TEST(Places, AreTold) {
  Stream stream("philox4x32_10", Seed{9}, StreamIndex{3}, StreamCount{5});
  EXPECT_EQ(stream.index(), StreamIndex{3});
  EXPECT_EQ(stream.count(), StreamCount{5});
  stream.set_substream(Substream{6});
  EXPECT_EQ(stream.substream(), Substream{6});
  EXPECT_EQ(stream.at_substream(Substream{4}).substream(), Substream{4});
  EXPECT_EQ(stream.copy().index(), StreamIndex{3});
}

TEST_P(EveryGenerator, SubstreamsKeepTheSettingsAndLeaveTheirStreamAlone) {
  stream_.set_antithetic(true);
  stream_.set_full_precision(false);
  stream_.set_normal_method("polar");
  stream_.normal();  // the second one of its pair stays with the stream
  std::string const settings =
      "s.Antithetic = true; s.FullPrecision = false; s.RandnAlg = 'polar'; s.Substream = 4;";
  std::vector<double> normals;
  try {
    normals = stream_.at_substream(Substream{3}).normal(3);
  } catch (Error const& error) {
    EXPECT_EQ(error.identifier(), "TALVOR:RandStream:set:SubstreamsNotSupported");
    EXPECT_EQ(error.arguments(), std::vector<Error::Argument>{GetParam()});
    return;
  }
  EXPECT_EQ(normals, builtin<double>("randn(s,1,3)", settings));
  EXPECT_EQ(stream_.uniform(3), builtin<double>("rand(s,1,3)", settings + "reset(s); randn(s);"));
}

TEST_P(EveryGenerator, SnapshotsGoOnAsTheirStreamWould) {
  stream_.set_normal_method("polar");
  stream_.normal(3);  // one normal of a pair is kept
  std::string const snapshot = stream_.snapshot();
  Stream copy = stream_.copy();
  std::vector<double> const rest = stream_.normal(4);
  EXPECT_EQ(copy.normal(4), rest);
  EXPECT_EQ(Stream::from_snapshot(snapshot).normal(4), rest);
  stream_.restore(snapshot);
  EXPECT_THROW(stream_.restore(snapshot.substr(1)), Error);
  EXPECT_EQ(stream_.normal(4), rest);
}

INSTANTIATE_TEST_SUITE_P(, EveryGenerator,
                         testing::ValuesIn(generators().begin(), generators().end()),
                         [](auto const& row) { return std::string(row.param); });

TEST(Errors, CarryIdentifierArgumentsAndText) {
  try {
    Stream("mersenne");
    FAIL() << "made";
  } catch (Error const& error) {
    EXPECT_EQ(error.identifier(), "TALVOR:RandStream:create:UnknownRNGType");
    EXPECT_EQ(error.arguments(), std::vector<Error::Argument>{"mersenne"});
    EXPECT_STREQ(error.what(), "There is no generator named \"mersenne\".");
  }
}

TEST(Streams, AreMadeByAnySpellingOfTheirGenerator) {
  Stream named("Philox4x32-10", Seed{7}, StreamIndex{1}, StreamCount{2});
  Stream shortly("PHILOX", Seed{7}, StreamIndex{1}, StreamCount{2});
  EXPECT_EQ(named.generator(), "philox4x32_10");
  EXPECT_EQ(shortly.generator(), "philox4x32_10");
  EXPECT_EQ(shortly.uniform(3), named.uniform(3));
}

TEST(Errors, StreamsBeyondTheirCountAreNone) {
  auto const made = [](std::uint64_t index, std::uint64_t count) -> std::string {
    try {
      Stream("philox", Seed{1}, StreamIndex{index}, StreamCount{count});
    } catch (Error const& error) {
      return error.identifier();
    }
    return "made";
  };
  EXPECT_EQ(made(3, 4), "made");
  EXPECT_EQ(made(4, 4), "TALVOR:RandStream:create:BadStreamIndex");
  EXPECT_EQ(made(0, 0), "TALVOR:RandStream:create:BadNumStreams");
}

TEST(Errors, CarryAllArguments) {
  Stream stream("mt19937ar");
  try {
    stream.restore(Stream("mrg32k3a").snapshot());
    FAIL() << "restored";
  } catch (Error const& error) {
    EXPECT_EQ(error.identifier(), "TALVOR:RandStream:snapshot:OtherGenerator");
    EXPECT_EQ(error.arguments(), (std::vector<Error::Argument>{"mrg32k3a", "mt19937ar"}));
  }
}

TEST(Errors, RefusedCallsDrawNothing) {
  Stream stream("mt19937ar");
  EXPECT_THROW(stream.integers<int>({6, 1}, 10), Error);
  EXPECT_THROW(stream.integers<std::int64_t>({(1LL << 60) + 1, 1LL << 60}, 0), Error);
  EXPECT_THROW(stream.sample(5, Population{4}), Error);
  EXPECT_THROW(stream.set_normal_method("box"), Error);
  EXPECT_THROW(stream.set_normal_method(std::string("polar\0", 6)), Error);
  EXPECT_THROW(Stream(std::string("mt19937ar\0", 10)), Error);
  EXPECT_THROW(Stream("mt19937ar", Seed{1}, StreamIndex{1}, StreamCount{2}), Error);
  EXPECT_EQ(stream.uniform(), 0.81472368639317894);
}

TEST(Errors, AStreamThatWasMovedFromSaysSo) {
  Stream stream("mt19937ar");
  Stream const other = std::move(stream);
  EXPECT_THROW(stream.uniform(), Error);  // NOLINT(bugprone-use-after-move)
  EXPECT_THROW(stream.seed(), Error);
  stream = Stream("philox4x32_10");
  EXPECT_EQ(stream.generator(), "philox4x32_10");
}

}  // namespace
