// The host language in a C++ program: a virtual machine runs text and gives back arrays.

#include <cstdio>
#include <utility>

#include <tvmathrng/random.h>
#include <tvmathrng/runtime/vm.h>

int main() {
  runtime::Vm vm;
  txArrayPtr const x = vm.evaluate("s = RandStream('mrg32k3a','Seed',7); rand(s,1,3)");
  double const* const values = std::as_const(*x).dataAs<double>();
  std::printf("the text drew: %.6f %.6f %.6f\n", values[0], values[1], values[2]);

  tvmathrng::Stream stream("mrg32k3a", tvmathrng::Seed{7});
  bool const same = stream.uniform() == values[0] && stream.uniform() == values[1];
  std::printf("and so does a stream: %s\n", same ? "yes" : "no");
  return same ? 0 : 1;
}
