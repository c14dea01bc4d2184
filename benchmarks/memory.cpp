// The yardstick: what it costs only to write the values.

#include <cstdlib>
#include <cstring>
#include <new>

#include "benchmarks/benchmarks.h"

namespace benchmarks {

void* sharedBuffer() {
  struct Free {
    void operator()(void* memory) const noexcept { std::free(memory); }
  };
  static const std::unique_ptr<void, Free> buffer = [] {
    constexpr std::size_t kPage = 4096;
    constexpr std::size_t kBytes = (kLargest * sizeof(double) / kPage + 1) * kPage;
    std::unique_ptr<void, Free> memory(std::aligned_alloc(kPage, kBytes));
    if (!memory) throw std::bad_alloc();
    std::memset(memory.get(), 1, kBytes);
    return memory;
  }();
  return buffer.get();
}

void addMemory() {
  add<double>("memset double", kAny, "memset", kSizes, [] {
    return [](double* out, std::size_t n) { std::memset(out, 0, n * sizeof *out); };
  });
  add<float>("memset single", kAny, "memset", kSizes, [] {
    return [](float* out, std::size_t n) { std::memset(out, 0, n * sizeof *out); };
  });
}

}  // namespace benchmarks
