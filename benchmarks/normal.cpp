// Normals: each registered generator by each method (its own where it brings that method), and
// peers with the same method.

#include <absl/random/gaussian_distribution.h>

#include <boost/math/distributions/normal.hpp>

#include "benchmarks/benchmarks.h"
#include "benchmarks/peers.h"

namespace benchmarks {

namespace {

template <class T>
void addOurs(std::string const& work, char const* name, char const* method) {
  add<T>(work, name, kOurs, kSizes, [name, method] {
    auto stream = makeStream(name);
    stream->setRandnAlg(method);
    return [stream = std::move(stream)](T* out, std::size_t n) { stream->randnFcn(out, n, false); };
  });
}

// Boost's quantile function of a 53-bit uniform.
struct BoostQuantile {
  peers::ByHand53<std::mt19937_64> uniform{};
  boost::math::normal normal{};
  double operator()() { return boost::math::quantile(normal, uniform() + 0x1p-54); }
};

template <class Draw>
void addPeer(std::string const& work, char const* who) {
  add<double>(work, kAny, who, kSizes, [] { return peers::filling(Draw{}); });
}

}  // namespace

void addNormal() {
  const std::string ziggurat = "normal, Ziggurat";
  const std::string polar = "normal, Polar";
  const std::string inversion = "normal, Inversion";

  for (char const* const name : tfl_rng::generatorNames()) {
    addOurs<double>(ziggurat, name, "Ziggurat");
    addOurs<double>(polar, name, "Polar");
    addOurs<double>(inversion, name, "Inversion");
    addOurs<float>(ziggurat + " single", name, "Ziggurat");
  }

  addPeer<peers::Drawn<boost::random::mt19937, boost::random::normal_distribution<double>>>(
      ziggurat, "Boost, mt19937");
  addPeer<peers::Drawn<boost::random::mt19937_64, boost::random::normal_distribution<double>>>(
      ziggurat, "Boost, mt19937_64");
  addPeer<peers::Drawn<std::mt19937_64, absl::gaussian_distribution<double>>>(
      ziggurat, "Abseil, std::mt19937_64");
  add<double>(ziggurat, kAny, "GSL, mt19937", kSizes,
              [] { return peers::filling(peers::Gsl<peers::gslNormal>(gsl_rng_mt19937)); });
  add<float>(ziggurat + " single", kAny, "Boost, mt19937", kSizes, [] {
    using Draw = peers::Drawn<boost::random::mt19937, boost::random::normal_distribution<float>>;
    return peers::filling(Draw{});
  });
  addPeer<peers::Drawn<std::mt19937, std::normal_distribution<double>>>(polar, "std::mt19937");
  addPeer<peers::Drawn<std::mt19937_64, std::normal_distribution<double>>>(polar,
                                                                           "std::mt19937_64");
  add<double>(inversion, "philox4x32_10", "Random123 and AS 241", kSizes,
              [] { return peers::Random123Inversion<r123::Philox4x32>(); });
  add<double>(inversion, "threefry4x64_20", "Random123 and AS 241", kSizes,
              [] { return peers::Random123Inversion<r123::Threefry4x64>(); });
  addPeer<BoostQuantile>(inversion, "Boost.Math quantile");
}

}  // namespace benchmarks
