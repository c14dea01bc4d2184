// Calls through a virtual machine: argument parsing, the global stream and a fresh result included.

#include <cstdlib>
#include <cstring>
#include <vector>

#include "benchmarks/benchmarks.h"
#include "benchmarks/peers.h"
#include "builtins/builtins.h"
#include "embedded_host/vm_context.h"
#include "runtime/vm.h"

namespace benchmarks {

namespace {

// A VM that this thread has entered.
struct EnteredVm {
  runtime::Vm vm{};
  embedded_host::EnterVm entered{vm.context()};
};

// Calls a builtin for an n-by-1 result, which is dropped at once.
struct Builtin {
  std::unique_ptr<EnteredVm> machine = std::make_unique<EnteredVm>();
  char const* name;

  void operator()(double* /*out*/, std::size_t n) {
    const txArrayPtr rows = txCreateDouble(static_cast<double>(n));
    const txArrayPtr columns = txCreateDouble(1.0);
    benchmark::DoNotOptimize(machine->vm.call(name, {rows.get(), columns.get()}));
  }
};

// What a fresh block of that size costs that is only written to.
struct Allocated {
  void operator()(double* /*out*/, std::size_t n) {
    void* const memory = std::malloc(n * sizeof(double));
    if (!memory) std::abort();
    benchmark::DoNotOptimize(std::memset(memory, 1, n * sizeof(double)));
    std::free(memory);
  }
};

// A new vector filled by an engine of the standard library.
struct NewVector {
  peers::ByHand53<std::mt19937_64> draw{};

  void operator()(double* /*out*/, std::size_t n) {
    std::vector<double> values(n);
    for (double& value : values) value = draw();
    benchmark::DoNotOptimize(values.data());
  }
};

}  // namespace

void addCalls() {
  const std::string work = "n-by-1 result of a builtin";
  for (char const* name : {"rand", "randn"})
    add<double>(work, name, kOurs, kSizes, [name] { return Builtin{.name = name}; });
  add<double>(work, "rand", "std::vector by std::mt19937_64", kSizes, [] { return NewVector(); });
  add<double>(work, kAny, "memset after malloc", kSizes, [] { return Allocated(); });

  const std::string one = "one uniform of the global stream";
  addOneValue(one, "mrRandu", kOurs, [] {
    return [machine = std::make_unique<EnteredVm>()] {
      double value;
      mrRandu(&value, 1);
      return value;
    };
  });
  addOneValue(one, "mathrng::randVariant", kOurs, [] {
    return [machine = std::make_unique<EnteredVm>()] {
      return *mathrng::randVariant(1.0)->dataAs<double>();
    };
  });
}

}  // namespace benchmarks
