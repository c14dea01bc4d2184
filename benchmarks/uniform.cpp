// Uniform doubles and singles: each registered generator in both precision modes, and peers with
// the same algorithm.

#include "benchmarks/benchmarks.h"
#include "benchmarks/peers.h"

namespace benchmarks {

namespace {

template <class T>
void addOurs(std::string const& work, char const* name, bool fullPrecision,
             bool antithetic = false) {
  add<T>(work, name, kOurs, kSizes, [name, fullPrecision, antithetic] {
    auto stream = makeStream(name);
    stream->setFullPrecision(fullPrecision);
    stream->setAntithetic(antithetic);
    return [stream = std::move(stream)](T* out, std::size_t n) { stream->randuFcn(out, n); };
  });
}

template <class T, class Draw>
void addPeer(std::string const& work, char const* generator, char const* who) {
  add<T>(work, generator, who, kSizes, [] { return peers::filling(Draw{}); });
}

void addGsl(std::string const& work, char const* generator, char const* who,
            gsl_rng_type const* type) {
  add<double>(work, generator, who, kSizes,
              [type] { return peers::filling(peers::Gsl<peers::gslUniform>(type)); });
}

}  // namespace

void addUniform() {
  const std::string full = "uniform double";
  const std::string reduced = "uniform double, reduced precision";
  const std::string single = "uniform single";
  const std::string mirrored = "uniform double, antithetic";

  for (char const* const name : tfl_rng::generatorNames()) {
    addOurs<double>(full, name, true);
    addOurs<double>(reduced, name, false);
    addOurs<float>(single, name, true);
    addOurs<double>(mirrored, name, true, true);
  }

  using StdDouble = std::uniform_real_distribution<double>;
  using StdSingle = std::uniform_real_distribution<float>;
  char const* twister = "mt19937ar";
  addPeer<double, peers::Drawn<std::mt19937, StdDouble>>(full, twister, "std::mt19937");
  addPeer<double, peers::Drawn<std::mt19937_64, StdDouble>>(full, twister, "std::mt19937_64");
  addPeer<double, peers::ByHand53<std::mt19937>>(full, twister, "std::mt19937 by hand");
  addPeer<double, peers::ByHand53<std::mt19937_64>>(full, twister, "std::mt19937_64 by hand");
  addPeer<double, peers::BoostCanonical<double, 53>>(full, twister, "Boost 53 bits");
  addPeer<double, peers::Drawn<boost::random::mt19937, boost::random::uniform_01<double>>>(
      reduced, twister, "Boost 32 bits");
  addGsl(reduced, twister, "GSL 32 bits", gsl_rng_mt19937);
  addPeer<float, peers::Drawn<std::mt19937, StdSingle>>(single, twister, "std::mt19937");
  addPeer<float, peers::BoostCanonical<float, 24>>(single, twister, "Boost 24 bits");

  add<double>(full, "dsfmt19937", "libdsfmt", kSizes, [] { return peers::Dsfmt(); });
  add<double>(full, "philox4x32_10", "Random123", kSizes,
              [] { return peers::Random123<r123::Philox4x32>(); });
  add<double>(full, "threefry4x64_20", "Random123", kSizes,
              [] { return peers::Random123<r123::Threefry4x64>(); });
  addPeer<double, peers::TextbookMrg32k3a>(reduced, "mrg32k3a", "textbook, integers");
  addPeer<double, peers::TextbookMrg32k3aInDoubles>(reduced, "mrg32k3a", "textbook, doubles");
  addGsl(reduced, "mrg32k3a", "GSL cmrg", gsl_rng_cmrg);
  addPeer<double, peers::MinimalStandard>(reduced, "mcg16807", "std::minstd_rand0");
  addPeer<double, peers::Drawn<std::minstd_rand0, StdDouble>>(full, "mcg16807",
                                                              "std::minstd_rand0");
}

}  // namespace benchmarks
