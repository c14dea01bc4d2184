// A generator of this library behind a stream draws what it would draw, and stands where it would
// stand, as a plug-in from elsewhere, which is asked in short requests.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/ascii_case.h"
#include "rng/mr_functions.h"
#include "tests/support/scripted_plugin.h"
#include "tfl_rng/generator_catalogue.h"

namespace {

using Stream = std::unique_ptr<randstream>;

// Another stream as the generator of one, without a sign of being from here.
class Disguised final : public testing_support::ScriptedPlugin {
 public:
  Disguised(testing_support::Script& script, randstream& inner)
      : ScriptedPlugin(script), inner_(inner) {}
  void randu(double* out, std::size_t n) override {
    script_.requests.push_back(n);
    inner_.randuFcn(out, n);
  }

 private:
  randstream& inner_;
};

template <class T>
using FillOf = std::function<void(randstream&, T*, std::size_t)>;

template <class T>
std::vector<T> drawn(randstream& stream, FillOf<T> const& draw, std::size_t n) {
  std::vector<T> values(n);
  draw(stream, values.data(), n);
  return values;
}

std::vector<unsigned char> stateOf(randstream const& stream) {
  std::vector<unsigned char> state(stream.getStateBufLen());
  stream.getStateBuf(state.data(), state.size());
  return state;
}

template <class T>
FillOf<T> normals(char const* method) {
  return [method](randstream& stream, T* out, std::size_t n) {
    stream.setRandnAlg(method);
    stream.randnFcn(out, n, n % 2 != 0);
  };
}

class LongRequests : public testing::TestWithParam<tfl_rng::Generator const*> {
 protected:
  template <class T>
  void compare(char const* what, FillOf<T> const& draw) {
    SCOPED_TRACE(what);
    for (bool const antithetic : {false, true}) {
      Stream const own = make(), inner = make();
      testing_support::Script script;
      randstream foreign("foreign", 5, new Disguised(script, *inner), 1, 0);
      own->setAntithetic(antithetic);
      foreign.setAntithetic(antithetic);
      for (std::size_t const n : {1, 2, 3, 7, 99, 100, 101, 250, 999, 1001, 2001, 4000, 20001}) {
        ASSERT_EQ(drawn(*own, draw, n), drawn(foreign, draw, n)) << n;
        ASSERT_EQ(stateOf(*own), stateOf(*inner)) << n;
        ASSERT_EQ(own->drawCounts().uniforms, inner->drawCounts().uniforms) << n;
        ASSERT_EQ(own->pendingNormal(), foreign.pendingNormal()) << n;
      }
      EXPECT_LE(std::ranges::max(script.requests), 200U);
    }
  }
  static Stream make() { return Stream(mrCreateRNGStream(GetParam()->name, 1, 0, 5, nullptr, 0)); }
};

TEST_P(LongRequests, DrawWhatShortOnesDo) {
  compare<float>("singles", [](auto& s, auto* out, auto n) { s.randuFcn(out, n); });
  compare<int>("int32", [](auto& s, auto* out, auto n) { s.randiFcn(-3, 1e9, out, n); });
  compare<double>("integers", [](auto& s, auto* out, auto n) { s.randiFcn(1, 6, out, n); });
  for (char const* const method : {"Ziggurat", "Polar", "Inversion"}) {
    if (ascii_case::equal(GetParam()->nativeNormals, method)) continue;
    compare(method, normals<double>(method));
    compare(method, normals<float>(method));
  }
}

std::vector<tfl_rng::Generator const*> allGenerators() {
  std::vector<tfl_rng::Generator const*> all;
  for (auto const& row : tfl_rng::generators()) all.push_back(&row);
  return all;
}
INSTANTIATE_TEST_SUITE_P(Generators, LongRequests, testing::ValuesIn(allGenerators()),
                         [](auto const& row) { return std::string(row.param->name); });

}  // namespace
