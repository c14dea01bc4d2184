// The library as users get it in a host that is not ours: the draws of the golden table, settings,
// the older syntax, refused calls. The rows and their expected hashes are those of
// golden/golden_table.txt; golden/cases.cpp says what each draws.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <link.h>

#include <array>
#include <fstream>
#include <functional>
#include <optional>
#include <span>

#include "builtins/builtins.h"
#include "builtins/stream_methods.h"
#include "host/tdispatcher.h"
#include "tests/second_host/second_host.h"
#include "tests/support/data_folder.h"
#include "tests/support/identifiers.h"
#include "vmstate/global_stream.h"

namespace {

using second_host::Vm;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing_support::identifierOf;

using Values = std::vector<txArrayPtr>;

constexpr std::uint64_t kCount = 10007;
constexpr std::uint64_t kLarge = 150001;  // a parallel fill

// Values of the host.

template <class T>
txArrayPtr row(std::initializer_list<T> values, txClassID classID) {
  txArrayPtr result =
      txCreateUninitialized(std::array<std::uint64_t, 2>{1, values.size()}, classID);
  std::ranges::copy(values, result->dataAs<T>());
  return result;
}
txArrayPtr valueOf(char const* text) { return txCreateText(std::string_view(text)); }
txArrayPtr valueOf(double number) { return txCreateDouble(number); }
txArrayPtr valueOf(std::uint64_t number) { return row({number}, txClassUint64); }
txArrayPtr valueOf(std::uint32_t number) { return row({number}, txClassUint32); }
txArrayPtr valueOf(txArrayPtr value) { return value; }
txArrayPtr valueOf(txArray const* value) { return txShare(*value); }

// Calls `invoke(plhs, arguments)`; the first output, null when there is none.
template <class Invoke, class... Args>
txArrayPtr pass(Invoke const& invoke, Args... arguments) {
  std::array<txArrayPtr, sizeof...(Args)> const owned{valueOf(std::move(arguments))...};
  std::array<txArray const*, sizeof...(Args)> borrowed;
  std::ranges::transform(owned, borrowed.begin(), [](auto const& value) { return value.get(); });
  txArrayPtr output;
  invoke(&output, std::span<txArray const*>(borrowed));
  return output;
}
// A native function.
template <class... Args>
txArrayPtr call(txBuiltin function, int nlhs, Args... arguments) {
  return pass(
      [&](txArrayPtr* plhs, std::span<txArray const*> args) {
        function(nlhs, plhs, static_cast<int>(args.size()), args.data());
      },
      std::move(arguments)...);
}
// A function of the host language.
template <class... Args>
txArrayPtr named(char const* name, int nlhs, Args... arguments) {
  return pass(
      [&](txArrayPtr* plhs, std::span<txArray const*> args) {
        if (!Tdispatcher::call(name, nlhs, plhs, args)) ADD_FAILURE() << "no function " << name;
      },
      std::move(arguments)...);
}

struct Machine : Vm {
  Machine() {
    addFunction("rand", mathrngRandFcn);
    addFunction("randn", mathrngRandnFcn);
    addFunction("randi", mathrngRandiFcn);
    addFunction("randperm", mathrngRandpermFcn);
  }
};

// A stream object as a class RandStream of the host would make it, by the handle of its stream.
class Stream {
 public:
  explicit Stream(txArrayPtr handle) : handle_(std::move(handle)) {
    second_host::Properties properties;
    properties.emplace("StreamID", txShare(*handle_));
    object_ = second_host::makeObject("RandStream", std::move(properties));
  }
  Stream(std::string const& type, std::uint32_t seed, std::uint64_t streams, std::uint64_t index)
      : Stream(call(RandStream::create, 1, type.c_str(), streams, index, seed,
                    txCreateUninitialized(std::array<std::uint64_t, 2>{0, 0}, txClassDouble))) {}
  ~Stream() {
    txArray const* args[] = {handle_.get()};
    RandStream::deletefcn(0, nullptr, 1, args);
  }
  Stream(Stream const&) = delete;
  Stream& operator=(Stream const&) = delete;

  txArray const* handle() const { return handle_.get(); }
  template <class... Args>
  txArrayPtr draw(txBuiltin method, Args... arguments) const {
    return call(method, 1, object_.get(), std::move(arguments)...);
  }
  template <class Value>
  void set(char const* property, Value value) const {
    call(RandStream::getset, 0, property, object_.get(), std::move(value));
  }
  txArrayPtr get(char const* property) const {
    return call(RandStream::getset, 1, property, object_.get());
  }

 private:
  txArrayPtr handle_;
  txArrayPtr object_;
};

// The golden table.

// Braces keep the order of the draws.
struct List {
  template <class... Parts>
  List(Parts... parts) {  // NOLINT(google-explicit-constructor)
    (values.push_back(std::move(parts)), ...);
  }
  Values values;
};

// FNV-1a of the bytes, which are those of little-endian words on every machine that we build for.
std::uint64_t hashOf(List const& list) {
  std::uint64_t hash = 0xCBF2'9CE4'8422'2325;
  for (txArrayPtr const& value : list.values) {
    std::size_t const bytes = value->classID() == txClassUint8    ? 1
                              : value->classID() == txClassSingle ? 4
                                                                  : 8;
    std::span const all(std::as_const(*value).dataAs<unsigned char>(), value->numel() * bytes);
    for (unsigned char byte : all) hash = (hash ^ byte) * 0x100'0000'01B3;
  }
  return hash;
}

std::optional<std::uint64_t> goldenHash(std::string const& generator, std::string const& name) {
  std::ifstream file(dataFolder() + "/../golden/golden_table.txt");
  for (std::string line; std::getline(file, line);)
    if (line.starts_with(generator + ' ' + name + ' '))
      return std::stoull(line.substr(line.rfind(' ')), nullptr, 16);
  return std::nullopt;
}

struct Case {
  char const* name;
  std::function<List(Stream const&)> draw;
};

// From a stream that has drawn three numbers.
Case const kCases[] = {
    {"rand",
     [](Stream const& s) { return List{s.draw(RandStream::randstreamRand, 1.0, double{kCount})}; }},
    {"rand-single",
     [](Stream const& s) {
       return List{s.draw(RandStream::randstreamRand, 1.0, double{kCount}, "single")};
     }},
    {"rand-large",
     [](Stream const& s) { return List{s.draw(RandStream::randstreamRand, 1.0, double{kLarge})}; }},
    {"rand-antithetic",
     [](Stream const& s) {
       s.set("Antithetic", txCreateLogical(true));
       return List{s.draw(RandStream::randstreamRand, 1.0, double{kCount})};
     }},
    {"randn", [](Stream const& s) { return List{s.draw(RandStream::randn, 1.0, double{kCount})}; }},
    {"randn-polar",
     [](Stream const& s) {
       s.set("RandnAlg", "Polar");
       return List{s.draw(RandStream::randn, 1.0, double{kCount})};
     }},
    {"randi-double",
     [](Stream const& s) {
       return List{
           s.draw(RandStream::randi, row({-0x1p51, 0x1p51}, txClassDouble), 1.0, double{kCount})};
     }},
    {"randi-uint8",
     [](Stream const& s) {
       return List{s.draw(RandStream::randi, row({-3.0, 300.0}, txClassDouble), 1.0, double{kCount},
                          "uint8")};
     }},
    {"randperm",
     [](Stream const& s) { return List{s.draw(RandStream::randperm, double{kCount})}; }},
    {"randperm-sparse",
     [](Stream const& s) {
       return List{s.draw(RandStream::randperm, double{kCount}, 1000.0),
                   s.draw(RandStream::randperm, 0x1p52, 1000.0)};
     }},
    {"after-state",
     [](Stream const& s) {
       s.draw(RandStream::randstreamRand, 1.0, 1001.0);
       txArrayPtr state = s.get("State");
       s.draw(RandStream::randn, 1.0, double{kCount});
       s.set("State", std::move(state));
       return List{s.draw(RandStream::randstreamRand, 1.0, double{kCount})};
     }},
    {"rand-global",
     [](Stream const& s) {
       call(getsetGlobalRandStream, 0, s.handle());
       return List{named("rand", 1, 1.0, 9.0), named("randn", 1, 1.0, 9.0),
                   named("randi", 1, 9.0, 1.0, 9.0), named("randperm", 1, 9.0)};
     }},
};

struct Generator {
  char const* name;
  bool hasStreams;
};
constexpr bool kSingle = false, kSubstreams = true;
#define TFL_GENERATOR(name, core, otherSpelling, family, ...) {#name, k##family},
constexpr Generator kGenerators[] = {
#include "tfl_rng/generators.def"
};
#undef TFL_GENERATOR

class EachGenerator : public testing::TestWithParam<Generator> {};

TEST_P(EachGenerator, DrawsTheNumbersOfTheGoldenTable) {
  auto const [generator, hasStreams] = GetParam();
  for (Case const& row : kCases) {
    Machine const vm;
    Stream const stream(generator, 7, hasStreams ? 4 : 1, hasStreams ? 2 : 1);
    stream.draw(RandStream::randstreamRand, 1.0, 3.0);
    EXPECT_EQ(goldenHash(generator, row.name), hashOf(row.draw(stream))) << row.name;
  }
  EXPECT_EQ(second_host::blocksInUse(), 0);
}

INSTANTIATE_TEST_SUITE_P(SecondHost, EachGenerator, testing::ValuesIn(kGenerators),
                         [](auto const& tested) { return std::string(tested.param.name); });

// The program, this library and the loader's: nothing of the embedded host.
TEST(SecondHost, StandsInForTheEmbeddedHost) {
  std::vector<std::string> loaded;
  dl_iterate_phdr(
      [](dl_phdr_info* info, std::size_t, void* names) {
        std::string_view const path = info->dlpi_name;
        if (path.find("libtv") != path.npos)
          static_cast<decltype(loaded)*>(names)->emplace_back(path);
        return 0;
      },
      &loaded);
  EXPECT_THAT(loaded, testing::UnorderedElementsAre(HasSubstr("/second_host/libtvhost.so"),
                                                    HasSubstr("/lib/libtvmathrng.so")));
}

TEST(SecondHost, GlobalStreamIsThatOfTheSettings) {
  struct Row {
    char const* generator;
    char const* golden;
    char16_t const* algorithm;  // null: as shipped
    double seed;
  };
  constexpr Row kRows[] = {{"mt19937ar", "seed-0", nullptr, 0},
                           {"philox4x32_10", "other-seed", u"philox", 0x1p32 - 1}};
  for (Row const& row : kRows) {
    Machine vm;
    if (row.algorithm) {
      vm.set("DefaultAlgorithm", row.algorithm);
      vm.set("DefaultSeed", row.seed);
    }
    List const drawn =
        List{named("rand", 1, 1.0, double{kCount}), named("randn", 1, 1.0, double{kCount})};
    EXPECT_EQ(goldenHash(row.generator, row.golden), hashOf(drawn)) << row.generator;
  }
}

TEST(SecondHost, OlderSyntaxDrawsAndWarns) {
  struct Row {
    char const* golden;
    std::function<List()> draw;
  };
  Row const rows[] = {
      {"seed-state",
       [] {
         named("rand", 0, "seed", 5.0);
         named("rand", 1);
         return List{named("rand", 1, "seed"), named("rand", 1, 1.0, double{kCount})};
       }},
      {"state-normals",
       [] {
         named("randn", 0, "state", 5.0);
         named("randn", 1);
         return List{named("randn", 1, "state"), named("randn", 1, 1.0, double{kCount})};
       }},
      {"rand-large", [] { return List{named("rand", 1, 1.0, double{kLarge})}; }},
  };
  for (Row const& row : rows) {
    Machine const vm;
    named("rand", 0, "seed", 7.0);
    named("rand", 0, "state", 7.0);
    named("randn", 0, "seed", 7.0);
    named("randn", 0, "state", 7.0);
    named("rand", 0, "twister", 7.0);
    named("rand", 1, 1.0, 3.0);
    EXPECT_EQ(goldenHash("legacy", row.golden), hashOf(row.draw())) << row.golden;
    EXPECT_THAT(vm.warnings(),
                ElementsAre("TALVOR:RandStream:ActivatingLegacyGenerators RAND seed"));
  }
}

TEST(SecondHost, RefusedCallsKeepTheirIdentifiersAndDrawNothing) {
  Machine const vm;
  txArrayPtr const object = second_host::makeObject("Matrix", {});
  EXPECT_EQ(identifierOf([] { Stream const s("nosuch", 0, 1, 1); }),
            "TALVOR:RandStream:create:UnknownRNGType");
  EXPECT_EQ(testing_support::argumentsOf([] { Stream const s("nosuch", 0, 1, 1); }), "nosuch");
  EXPECT_EQ(identifierOf([] { named("randi", 1, 0.5); }), "TALVOR:RandStream:randi:invalidLimits");
  // A class that does not convert to sizes, and one that is no prototype.
  EXPECT_EQ(identifierOf([&] { named("rand", 1, object.get()); }), "TALVOR:rand:inputType");
  EXPECT_EQ(identifierOf([&] { named("rand", 1, "like", object.get()); }),
            "TALVOR:rand:invalidPrototype");
  // What the host itself refuses comes through as it is.
  EXPECT_EQ(identifierOf([] { named("rand", 1, 2.5); }), "TALVOR:size:NotWhole");
  EXPECT_EQ(identifierOf([] { named("rand", 1, 0x1p50, 0x1p50); }),
            "TALVOR:array:SizeLimitExceeded");
  EXPECT_EQ(identifierOf([] { named("rand", 2); }), "TALVOR:maxlhs");
  EXPECT_THAT(vm.warnings(), IsEmpty());
  EXPECT_EQ(named("rand", 1)->scalarAsDouble(), 0.81472368639317894);
}

}  // namespace
