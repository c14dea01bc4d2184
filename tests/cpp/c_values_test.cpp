// The C interface draws what the C++ interface draws, keeps its promises after a failure, and tells
// each thread of its own.

#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <cstring>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <tvmathrng/random.h>
#include <tvmathrng/tvmathrng.h>

namespace {

using namespace tvmathrng;

constexpr std::size_t kMany = 301;
using Doubles = std::vector<double>;
using InC = std::function<tvrng_status(tvrng_stream*, Doubles&)>;
using InCpp = std::function<Doubles(Stream&)>;

// One call: how it is written in both languages.
struct Row {
  char const* name;
  InC c;
  InCpp cpp;
};
void PrintTo(Row const& row, std::ostream* out) { *out << row.name; }

template <class T>
Doubles asDoubles(std::vector<T> const& values) {
  return {values.begin(), values.end()};
}
template <class T>
Doubles asDoubles(std::vector<std::complex<T>> const& values) {
  Doubles parts;
  for (std::complex<T> const& value : values) {
    parts.push_back(value.real());
    parts.push_back(value.imag());
  }
  return parts;
}

// fill(stream, count, T* out) of values that have `parts` numbers each.
template <class T>
InC fills(tvrng_status (*fill)(tvrng_stream*, std::size_t, T*), std::size_t parts = 1) {
  return [=](tvrng_stream* stream, Doubles& drawn) {
    std::vector<T> out(parts * kMany);
    tvrng_status const status = fill(stream, kMany, out.data());
    drawn = asDoubles(out);
    return status;
  };
}

constexpr Limits<int> kLimits = {3, 120};
constexpr std::uint64_t kPopulation = (1ULL << 53) - 111;

template <class T>
Row integers(char const* name,
             tvrng_status (*fill)(tvrng_stream*, double, double, std::size_t, T*)) {
  return {name,
          [=](tvrng_stream* stream, Doubles& drawn) {
            std::vector<T> out(kMany);
            tvrng_status const status =
                fill(stream, kLimits.lowest, kLimits.highest, kMany, out.data());
            drawn = asDoubles(out);
            return status;
          },
          [](Stream& stream) {
            return asDoubles(stream.integers<T>({T(kLimits.lowest), T(kLimits.highest)}, kMany));
          }};
}

template <class T>
Row wholeIntegers(char const* name, tvrng_status (*fill)(tvrng_stream*, T, T, std::size_t, T*),
                  std::type_identity_t<T> lowest, std::type_identity_t<T> highest) {
  return {name,
          [=](tvrng_stream* stream, Doubles& drawn) {
            std::vector<T> out(kMany);
            tvrng_status const status = fill(stream, lowest, highest, kMany, out.data());
            drawn = asDoubles(out);
            return status;
          },
          [=](Stream& stream) {
            return asDoubles(stream.integers<T>({lowest, highest}, kMany));
          }};
}

// A change of the stream; the uniforms and normals that follow show it.
Row then(char const* name, std::function<tvrng_status(tvrng_stream*)> const& c,
         std::function<void(Stream&)> const& cpp) {
  return {name,
          [=](tvrng_stream* stream, Doubles& drawn) {
            drawn.resize(2 * kMany);
            tvrng_status status = c(stream);
            if (status == TVRNG_OK) status = tvrng_uniform(stream, kMany, drawn.data());
            if (status == TVRNG_OK) status = tvrng_normal(stream, kMany, drawn.data() + kMany);
            return status;
          },
          [=](Stream& stream) {
            cpp(stream);
            Doubles drawn = stream.uniform(kMany);
            Doubles const normals = stream.normal(kMany);
            drawn.insert(drawn.end(), normals.begin(), normals.end());
            return drawn;
          }};
}

class Calls : public testing::TestWithParam<Row> {};

TEST_P(Calls, DoWhatThoseOfCppDo) {
  // One that has streams, and doubles of two lengths; one that has neither.
  for (char const* generator : {"mrg32k3a", "mt19937ar"}) {
    bool const several = generator == std::string("mrg32k3a");
    std::uint64_t const index = several ? 2 : 0;
    std::uint64_t const count = several ? 5 : 1;
    tvrng_stream* stream = nullptr;
    ASSERT_EQ(tvrng_create(generator, 7, index, count, &stream), TVRNG_OK);
    Stream same(generator, Seed{7}, StreamIndex{index}, StreamCount{count});
    Doubles drawn;
    EXPECT_EQ(GetParam().c(stream, drawn), TVRNG_OK) << tvrng_error_text();
    EXPECT_EQ(drawn, GetParam().cpp(same)) << generator;
    double next;
    EXPECT_EQ(tvrng_uniform(stream, 1, &next), TVRNG_OK);
    EXPECT_EQ(next, same.uniform()) << generator;
    tvrng_destroy(stream);
  }
}

INSTANTIATE_TEST_SUITE_P(
    , Calls,
    testing::Values(
        Row{"uniform", fills(tvrng_uniform), [](Stream& s) { return s.uniform(kMany); }},
        Row{"uniform_float", fills(tvrng_uniform_float),
            [](Stream& s) { return asDoubles(s.uniform<float>(kMany)); }},
        Row{"normal", fills(tvrng_normal), [](Stream& s) { return s.normal(kMany); }},
        Row{"normal_float", fills(tvrng_normal_float),
            [](Stream& s) { return asDoubles(s.normal<float>(kMany)); }},
        Row{"normal_complex", fills(tvrng_normal_complex, 2),
            [](Stream& s) { return asDoubles(s.normal<std::complex<double>>(kMany)); }},
        Row{"normal_complex_float", fills(tvrng_normal_complex_float, 2),
            [](Stream& s) { return asDoubles(s.normal<std::complex<float>>(kMany)); }},
        integers("integers", tvrng_integers), integers("integers_float", tvrng_integers_float),
        integers("integers_int8", tvrng_integers_int8),
        integers("integers_uint8", tvrng_integers_uint8),
        integers("integers_int16", tvrng_integers_int16),
        integers("integers_uint16", tvrng_integers_uint16),
        integers("integers_int32", tvrng_integers_int32),
        integers("integers_uint32", tvrng_integers_uint32),
        wholeIntegers("integers_int64", tvrng_integers_int64, INT64_MIN, INT64_MAX - 5),
        wholeIntegers("integers_uint64", tvrng_integers_uint64, UINT64_MAX - 5, UINT64_MAX),
        Row{"permutation", fills(tvrng_permutation),
            [](Stream& s) { return s.permutation<double>(kMany); }},
        Row{"sample",
            [](tvrng_stream* s, Doubles& drawn) {
              drawn.resize(kMany);
              return tvrng_sample(s, kPopulation, kMany, drawn.data());
            },
            [](Stream& s) { return s.sample<double>(kMany, Population{kPopulation}); }},
        then(
            "reset", [](auto* s) { return tvrng_reset(s, 8); }, [](auto& s) { s.reset(Seed{8}); }),
        then(
            "advance", [](auto* s) { return tvrng_advance(s, 11); },
            [](auto& s) { s.advance(11); }),
        then(
            "antithetic", [](auto* s) { return tvrng_set_antithetic(s, -2); },
            [](auto& s) { s.set_antithetic(true); }),
        then(
            "not_antithetic",
            [](auto* s) {
              tvrng_set_antithetic(s, 1);
              return tvrng_set_antithetic(s, 0);
            },
            [](auto&) {}),
        then(
            "reduced_precision", [](auto* s) { return tvrng_set_full_precision(s, 0); },
            [](auto& s) { s.set_full_precision(false); }),
        then(
            "full_precision",
            [](auto* s) {
              tvrng_set_full_precision(s, 0);
              return tvrng_set_full_precision(s, 4);
            },
            [](auto&) {}),
        then(
            "normal_method", [](auto* s) { return tvrng_set_normal_method(s, "polar"); },
            [](auto& s) { s.set_normal_method("Polar"); })),
    [](auto const& row) { return row.param.name; });

// Beyond its own range a type has the nearest value that it can hold.
TEST(Integers, Saturate) {
  tvrng_stream* stream;
  ASSERT_EQ(tvrng_create("mrg32k3a", 7, 0, 1, &stream), TVRNG_OK);
  std::vector<double> wide(kMany);
  std::vector<std::int8_t> narrow(kMany);
  tvrng_integers(stream, -300, 250, kMany, wide.data());
  tvrng_reset(stream, 7);
  tvrng_integers_int8(stream, -300, 250, kMany, narrow.data());
  for (double& value : wide) value = std::clamp(value, -128.0, 127.0);
  EXPECT_EQ(asDoubles(narrow), wide);
  tvrng_destroy(stream);
}

TEST(Generators, AreThoseOfCpp) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < tvrng_generator_count(); ++i)
    names.push_back(tvrng_generator_name(i));
  EXPECT_EQ(names, std::vector<std::string>(generators().begin(), generators().end()));
}

// Every pointer that must not be null, by its name in the header.
TEST(Failures, NameThePointerThatIsMissing) {
  tvrng_stream *s, *made;
  ASSERT_EQ(tvrng_create("mrg32k3a", 0, 0, 1, &s), TVRNG_OK);
  tvrng_stream* const none = nullptr;
  std::uint64_t k;
  std::size_t size;
  ASSERT_EQ(tvrng_snapshot_size(s, &size), TVRNG_OK);
  double d;
  float f;
  char text = 'x';
  struct {
    tvrng_status status;
    char const* name;
    std::string told = tvrng_error_text();
    std::string identifier = tvrng_error_identifier();
  } const calls[] = {
      {tvrng_create(nullptr, 0, 0, 1, &made), "generator"},
      {tvrng_create("mrg32k3a", 0, 0, 1, nullptr), "stream"},
      {tvrng_at_substream(none, 1, &made), "stream"},
      {tvrng_at_substream(s, 1, nullptr), "item"},
      {tvrng_uniform(none, 1, &d), "stream"},
      {tvrng_uniform(none, 0, nullptr), "stream"},
      {tvrng_uniform(s, 1, nullptr), "out"},
      {tvrng_uniform_float(none, 1, &f), "stream"},
      {tvrng_uniform_float(s, 1, nullptr), "out"},
      {tvrng_normal(s, 1, nullptr), "out"},
      {tvrng_normal_float(s, 1, nullptr), "out"},
      {tvrng_normal_complex(s, 1, nullptr), "out"},
      {tvrng_normal_complex_float(s, 1, nullptr), "out"},
      {tvrng_integers(none, 1, 6, 1, &d), "stream"},
      {tvrng_integers(s, 1, 6, 1, nullptr), "out"},
      {tvrng_permutation(s, 1, nullptr), "out"},
      {tvrng_sample(none, 5, 1, &d), "stream"},
      {tvrng_sample(s, 5, 1, nullptr), "out"},
      {tvrng_reset(none, 1), "stream"},
      {tvrng_set_substream(none, 1), "stream"},
      {tvrng_get_substream(none, &k), "stream"},
      {tvrng_get_substream(s, nullptr), "k"},
      {tvrng_advance(none, 1), "stream"},
      {tvrng_snapshot_size(none, &size), "stream"},
      {tvrng_snapshot_size(s, nullptr), "size"},
      {tvrng_snapshot(none, 1, &text), "stream"},
      {tvrng_snapshot(s, size, nullptr), "text"},
      {tvrng_from_snapshot(1, nullptr, &made), "text"},
      {tvrng_from_snapshot(1, &text, nullptr), "stream"},
      {tvrng_restore(none, 1, &text), "stream"},
      {tvrng_restore(s, 1, nullptr), "text"},
      {tvrng_set_normal_method(none, "polar"), "stream"},
      {tvrng_set_normal_method(s, nullptr), "name"},
      {tvrng_set_antithetic(none, 1), "stream"},
      {tvrng_set_full_precision(none, 1), "stream"},
  };
  for (auto const& call : calls) {
    EXPECT_EQ(call.status, TVRNG_ERROR);
    EXPECT_EQ(call.told, "The argument '" + std::string(call.name) + "' is a null pointer.");
    EXPECT_EQ(call.identifier, "TALVOR:c:NullPointer");
  }
  tvrng_destroy(s);
}

TEST(Failures, LeaveNullWhereAStreamWasAskedFor) {
  tvrng_stream* stream = nullptr;
  ASSERT_EQ(tvrng_create("mt19937ar", 0, 0, 1, &stream), TVRNG_OK);
  auto const isNulled = [&](auto const& make) {
    tvrng_stream* made = stream;
    return make(&made) == TVRNG_ERROR && !made;
  };
  EXPECT_TRUE(isNulled([](auto** made) { return tvrng_create("mersenne", 0, 0, 1, made); }));
  EXPECT_TRUE(isNulled([](auto** made) { return tvrng_create(nullptr, 0, 0, 1, made); }));
  EXPECT_TRUE(isNulled([&](auto** made) { return tvrng_at_substream(stream, 1, made); }));
  EXPECT_TRUE(isNulled([](auto** made) { return tvrng_at_substream(nullptr, 1, made); }));
  EXPECT_TRUE(isNulled([](auto** made) { return tvrng_from_snapshot(1, "x", made); }));
  EXPECT_TRUE(isNulled([](auto** made) { return tvrng_from_snapshot(1, nullptr, made); }));
  tvrng_destroy(stream);
}

// The library's texts have no bound, the room for them has.
TEST(Failures, TextsOfAnyLengthAreKeptAsFarAsTheirRoomGoes) {
  for (std::size_t const length :
       {10U, 480U, 481U, 482U, 483U, 484U, 485U, 486U, 600U, 5000U, 3U}) {
    std::string const name(length, 'x');
    tvrng_stream* stream;
    EXPECT_EQ(tvrng_create(name.c_str(), 0, 0, 1, &stream), TVRNG_ERROR);
    std::string whole;
    try {
      Stream{name};
    } catch (Error const& error) {
      whole = error.what();
    }
    ASSERT_NE(whole, "");
    EXPECT_EQ(tvrng_error_text(), whole.substr(0, 511)) << length;
    EXPECT_STREQ(tvrng_error_identifier(), "TALVOR:RandStream:create:UnknownRNGType");
  }
}

TEST(Failures, AreToldToTheThreadThatHadThem) {
  tvrng_uniform(nullptr, 1, nullptr);
  std::string const text = tvrng_error_text();
  std::thread([] {
    EXPECT_STREQ(tvrng_error_text(), "");
    tvrng_stream* stream;
    tvrng_create("mersenne", 0, 0, 1, &stream);
    EXPECT_NE(std::strstr(tvrng_error_text(), "mersenne"), nullptr);
  }).join();
  EXPECT_EQ(tvrng_error_text(), text);
  EXPECT_STREQ(tvrng_error_identifier(), "TALVOR:c:NullPointer");
}

}  // namespace
