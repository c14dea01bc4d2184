// Integers of a small range.

#include <cstdint>

#include "benchmarks/benchmarks.h"
#include "benchmarks/peers.h"

namespace benchmarks {

namespace {

constexpr int kFaces = 6;

template <class T>
void addOurs(std::string const& work, char const* name) {
  add<T>(work, name, kOurs, kSizes, [name] {
    return [stream = makeStream(name)](T* out, std::size_t n) {
      stream->randiFcn(1.0, double{kFaces}, out, n);
    };
  });
}

template <class T, class Engine, class Distribution>
void addPeer(std::string const& work, char const* who) {
  add<T>(work, kAny, who, kSizes, [] {
    return
        [engine = Engine(), distribution = Distribution(1, kFaces)](T* out, std::size_t n) mutable {
          for (std::size_t i = 0; i < n; ++i) out[i] = static_cast<T>(distribution(engine));
        };
  });
}

}  // namespace

void addIntegers() {
  const std::string int32 = "integers 1 to 6 as int32";
  const std::string real = "integers 1 to 6 as double";

  for (char const* const name : tfl_rng::generatorNames()) {
    addOurs<std::int32_t>(int32, name);
    addOurs<double>(real, name);
  }

  using StdInteger = std::uniform_int_distribution<int>;
  using BoostInteger = boost::random::uniform_int_distribution<int>;
  addPeer<std::int32_t, std::mt19937, StdInteger>(int32, "std::mt19937");
  addPeer<std::int32_t, std::mt19937_64, StdInteger>(int32, "std::mt19937_64");
  addPeer<std::int32_t, boost::random::mt19937, BoostInteger>(int32, "Boost, mt19937");
  addPeer<double, std::mt19937, StdInteger>(real, "std::mt19937");
  addPeer<double, std::mt19937_64, StdInteger>(real, "std::mt19937_64");
}

}  // namespace benchmarks
