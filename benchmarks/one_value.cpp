// One value a call, as programs without arrays draw them.

#include "benchmarks/benchmarks.h"
#include "benchmarks/peers.h"

namespace benchmarks {

void addOneValue() {
  const std::string uniform = "one uniform a call";
  const std::string normal = "one normal a call";

  for (char const* const name : tfl_rng::generatorNames()) {
    addOneValue(uniform, name, kOurs, [name] {
      return [stream = makeStream(name)] {
        double value;
        stream->randuFcn(&value, 1);
        return value;
      };
    });
    addOneValue(normal, name, kOurs, [name] {
      return [stream = makeStream(name)] {
        double value;
        stream->randnFcn(&value, 1, false);
        return value;
      };
    });
  }

  using StdDouble = std::uniform_real_distribution<double>;
  using StdNormal = std::normal_distribution<double>;
  using BoostNormal = boost::random::normal_distribution<double>;
  addOneValue(uniform, kAny, "std::mt19937",
              [] { return peers::Drawn<std::mt19937, StdDouble>{}; });
  addOneValue(uniform, kAny, "std::mt19937_64 by hand",
              [] { return peers::ByHand53<std::mt19937_64>{}; });
  addOneValue(uniform, kAny, "Boost 53 bits", [] { return peers::BoostCanonical<double, 53>{}; });
  addOneValue(uniform, kAny, "GSL 32 bits",
              [] { return peers::Gsl<peers::gslUniform>(gsl_rng_mt19937); });
  addOneValue(normal, kAny, "std::mt19937_64",
              [] { return peers::Drawn<std::mt19937_64, StdNormal>{}; });
  addOneValue(normal, kAny, "Boost, mt19937",
              [] { return peers::Drawn<boost::random::mt19937, BoostNormal>{}; });
}

}  // namespace benchmarks
