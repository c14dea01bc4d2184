#pragma once

// The floating-point environment that the numbers are promised in: rounding to nearest, denormals
// as they are. A program may run in another one (interval arithmetic rounds upward, programs linked
// for fast mathematics flush denormals), and must not see that in what it draws.

#include <bit>
#include <cfenv>
#include <cstdint>

#if defined(__x86_64__)
#include <xmmintrin.h>
#endif

namespace tfl_rng {

// At the head of what computes: the environment is the default one while this lives, and afterwards
// the caller's again. Flags may be raised, as by any arithmetic.
class FloatEnvironment {
 public:
  FloatEnvironment() noexcept : changed_(!isDefault()) {
    if (changed_) [[unlikely]]
      setDefault();
  }
  ~FloatEnvironment() {
    if (changed_) [[unlikely]]
      putBack();
  }
  FloatEnvironment(FloatEnvironment const&) = delete;
  FloatEnvironment& operator=(FloatEnvironment const&) = delete;

  // Asked by sums that no other environment rounds so: reading the control register of x86-64 waits
  // for all arithmetic that is under way, which would double the time of a normal.
  static bool isDefault() noexcept {
    static double const volatile kOne = 1;
    static double const volatile kLittle = 0x1p-54;
    static double const volatile kDenormal = 0x1p-1074;
    double const one = kOne;
    double const little = kLittle;
    double const denormal = kDenormal;
    // Upward the first is more than 1; downward, and towards 0, the second is less.
    std::uint64_t const rounding =
        std::bit_cast<std::uint64_t>(one + little) ^ std::bit_cast<std::uint64_t>(one - little / 2);
    return rounding == 0 && std::bit_cast<std::uint64_t>(denormal + denormal) != 0;
  }

 private:
#if defined(__x86_64__)
  void setDefault() noexcept {
    callers_ = _mm_getcsr();
    _mm_setcsr(0x1F80);  // exceptions masked
  }
  void putBack() const noexcept { _mm_setcsr(callers_); }
  unsigned callers_;
#elif defined(__aarch64__)
  void setDefault() noexcept {
    asm volatile("mrs %0, fpcr" : "=r"(callers_));
    asm volatile("msr fpcr, %0" : : "r"(std::uint64_t{0}));
  }
  void putBack() const noexcept { asm volatile("msr fpcr, %0" : : "r"(callers_)); }
  std::uint64_t callers_;
#elif defined(FE_TONEAREST)
  void setDefault() noexcept {
    std::fegetenv(&callers_);
    std::fesetenv(FE_DFL_ENV);
  }
  void putBack() const noexcept { std::fesetenv(&callers_); }
  std::fenv_t callers_;
#else
  void setDefault() noexcept {}
  void putBack() const noexcept {}
#endif

  bool changed_;
};

}  // namespace tfl_rng
