#pragma once

// A random-number stream for C++ programs: a thin face of the library's stream class, with the
// draws of rand, randn, randi and randperm of the host language.

#include <tvmathrng/cxx20.h>

#include <algorithm>
#include <array>
#include <complex>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <tvmathrng/error.h>
#include <tvmathrng/values.h>
#include <tvmathrng/wide_integers.h>

#include "rng/create_stream.h"
#include "rng/snapshot.h"
#include "tfl_rng/generator_catalogue.h"

namespace tvmathrng {

template <class T, class... Choice>
concept OneOf = (std::same_as<T, Choice> || ...);

/// What uniforms are made of.
template <class T>
concept Real = OneOf<T, double, float>;

/// What normals are made of. A complex normal has variance 1, half of it in each part.
template <class T>
concept RealOrComplex = Real<T> || OneOf<T, std::complex<double>, std::complex<float>>;

/// What integers() fills.
template <class T>
concept Integer = OneOf<T, signed char, unsigned char, short, unsigned short, int, unsigned, long,
                        unsigned long, long long, unsigned long long, bool, double, float>;

/// What permutation() and sample() return: types that hold every whole number below 2^53.
template <class T>
concept Position = OneOf<T, double, long long, unsigned long long, std::int64_t, std::uint64_t>;

/// The names of all generators.
inline std::span<char const* const> generators() noexcept { return tfl_rng::generatorNames(); }

/// A source of random numbers. It belongs to one thread at a time, but for its const functions,
/// which several may call while none draws; threads that share work take a substream each, see
/// at_substream(). Numbers of draws are exact and do not depend on how a request is divided over
/// calls, but for normals made in pairs or by rejection. A stream that was moved from has nothing
/// to draw from: it may be assigned to and end, and all else is the error
/// "TALVOR:cpp:MovedFromStream".
class Stream {
 public:
  /// The first stream of a generator, called by a name of generators() or a short one ("twister",
  /// "philox", ...) in any case. Errors: create:UnknownRNGType.
  explicit Stream(std::string const& generator, Seed seed = Seed{0})
      : Stream(generator, seed, StreamIndex{0}, StreamCount{1}) {}

  /// One of several streams of a seed, which do not overlap. Errors: create:UnknownRNGType,
  /// create:BadNumStreams for a count of 0, create:BadStreamIndex for an index that is not below
  /// the count, and those of the generator, which may have one stream only.
  Stream(std::string const& generator, Seed seed, StreamIndex index, StreamCount count)
      : stream_(detail::withErrors([&] {
          return rng::createStream(generator, seed.value(), index.value(), count.value());
        })) {}

  /// @name Uniform values of the open interval (0,1): one draw each.
  ///@{
  template <Real T = double>
  T uniform() {
    T value;
    uniform(std::span<T>(&value, 1));
    return value;
  }
  void uniform(std::span<double> out) { fillUniform(out); }
  void uniform(std::span<float> out) { fillUniform(out); }
  template <Real T = double>
  std::vector<T> uniform(std::size_t n) {
    std::vector<T> values(n);
    fillUniform(std::span<T>(values));
    return values;
  }
  ///@}

  /// @name Standard normal values, by the stream's normal_method().
  ///@{
  template <RealOrComplex T = double>
  T normal() {
    T value;
    normal(std::span<T>(&value, 1));
    return value;
  }
  void normal(std::span<double> out) { fillNormal(out.data(), out.size(), false); }
  void normal(std::span<float> out) { fillNormal(out.data(), out.size(), false); }
  void normal(std::span<std::complex<double>> out) { fillComplexNormal(out); }
  void normal(std::span<std::complex<float>> out) { fillComplexNormal(out); }
  template <RealOrComplex T = double>
  std::vector<T> normal(std::size_t n) {
    std::vector<T> values(n);
    normal(std::span<T>(values));
    return values;
  }
  ///@}

  /// @name Whole numbers from limits.lowest to limits.highest, both included.
  /// One draw each; 64-bit integers whose limits, or their number, are 2^53 or more take two draws
  /// a try, and reach every value equally often. Errors: randi:invalidLimits; for doubles and
  /// floats randi:LimitsTooLarge, randi:RangeTooLarge.
  ///@{
  template <Integer T>
  T integer(Limits<std::type_identity_t<T>> limits) {
    T value;
    integers<T>(limits, std::span<T>(&value, 1));
    return value;
  }
  template <Integer T>
  void integers(Limits<std::type_identity_t<T>> limits, std::span<T> out) {
    detail::withErrors([&] {
      if constexpr (std::is_integral_v<T> && sizeof(T) == 8) {
        // As doubles they may be in order.
        if (limits.highest < limits.lowest)
          return native().randiFcn(1, 0, static_cast<double*>(nullptr), 0);
        if (detail::isWide(limits)) return detail::fillWide(native(), limits, out);
      }
      auto const lowest = static_cast<double>(limits.lowest);
      auto const highest = static_cast<double>(limits.highest);
      if constexpr (OneOf<T, long, unsigned long, long long, unsigned long long>) {
        fillThroughDoubles(out, [&](double* chunk, std::size_t n) {
          native().randiFcn(lowest, highest, chunk, n);
        });
      } else {
        native().randiFcn(lowest, highest, out.data(), out.size());
      }
    });
  }
  template <Integer T>
  requires(!std::same_as<T, bool>) std::vector<T> integers(Limits<std::type_identity_t<T>> limits,
                                                           std::size_t n) {
    std::vector<T> values(n);
    integers<T>(limits, std::span<T>(values));
    return values;
  }
  ///@}

  /// The numbers 1 to n in random order, n the size of `out`: n draws.
  void permutation(std::span<double> out) {
    detail::withErrors([&] { native().randpermFcn(out.data(), out.size()); });
  }
  template <Position T = std::uint64_t>
  std::vector<T> permutation(std::size_t n) {
    return positions<T>(n, [this](std::span<double> out) { permutation(out); });
  }

  /// Distinct numbers of 1 to `population` in random order, as many as `out` holds, with a number
  /// of draws that depends on both sizes. Errors: randperm:inputKTooLarge, randperm:inputNTooLarge.
  void sample(std::span<double> out, Population population) {
    detail::withErrors([&] {
      native().randkpermFcn(out.data(), out.size(), static_cast<double>(population.value()));
    });
  }
  template <Position T = std::uint64_t>
  std::vector<T> sample(std::size_t n, Population population) {
    return positions<T>(n, [&](std::span<double> out) { sample(out, population); });
  }

  /// A stream of its own with this one's generator, seed and settings, at the start of substream k:
  /// what work item k draws from, whoever works on it. Where this stream stands does not matter,
  /// and another thread may draw from it meanwhile. Errors: set:SubstreamsNotSupported.
  Stream at_substream(Substream k) const {
    return Stream(detail::withErrors([&] { return native().atSubstream(k.value()); }));
  }

  /// Moves to the start of substream k. Errors: set:SubstreamsNotSupported.
  void set_substream(Substream k) {
    detail::withErrors([&] { native().setSubstream(k.value()); });
  }
  Substream substream() const {
    return detail::withErrors([&] { return Substream{native().getSubstream()}; });
  }

  /// Back to the start of the stream, or to that of another seed. Settings stay.
  void reset() { reset(seed()); }
  void reset(Seed seed) {
    detail::withErrors([&] { native().reset(seed.value()); });
  }
  /// Passes over n draws as if they had been drawn. Every generator jumps.
  void advance(std::uint64_t n) {
    detail::withErrors([&] { native().advance(n); });
  }

  /// @name Snapshots: the whole stream as text, for a file or another machine. Draw nothing.
  ///@{
  std::string snapshot() const {
    return detail::withErrors([&] { return takeSnapshot(native()); });
  }
  /// Errors: snapshot:NotASnapshot, OtherVersion, Truncated, Damaged, InvalidLine.
  static Stream from_snapshot(std::string_view text) {
    return Stream(
        std::unique_ptr<randstream>(detail::withErrors([&] { return createFromSnapshot(text); })));
  }
  /// Goes back to where the snapshot was taken. Errors: the same, and snapshot:OtherGenerator; the
  /// stream then stays as it is.
  void restore(std::string_view text) {
    detail::withErrors([&] { restoreSnapshot(native(), text); });
  }
  /// A stream that goes on as this one will.
  Stream copy() const {
    return Stream(detail::withErrors([&] { return native().clone(); }));
  }
  ///@}

  std::string_view generator() const { return native().generatorType(); }
  Seed seed() const { return Seed{native().seed()}; }
  StreamIndex index() const { return StreamIndex{native().streamIndex()}; }
  StreamCount count() const { return StreamCount{native().numStreams()}; }

  /// "Ziggurat", "Polar" or "Inversion". Errors: set:UnknownRandnAlg.
  void set_normal_method(std::string name) {
    std::ranges::replace(name, '\0', '?');  // would end the name, and is in none
    detail::withErrors([&] { native().setRandnAlg(name.c_str()); });
  }
  std::string_view normal_method() const { return native().getRandnAlg(); }
  /// Draws 1 - u for u, -z for z.
  void set_antithetic(bool on) { native().setAntithetic(on); }
  bool antithetic() const { return native().antithetic(); }
  /// Off: some generators make a double of fewer bits, in less time.
  void set_full_precision(bool on) {
    detail::withErrors([&] { native().setFullPrecision(on); });
  }
  bool full_precision() const { return native().fullPrecision(); }

  /// The library's own object, for what this face leaves out.
  randstream& native() { return *require(stream_); }
  randstream const& native() const { return *require(stream_); }

 private:
  explicit Stream(std::unique_ptr<randstream> stream) noexcept : stream_(std::move(stream)) {}

  static std::unique_ptr<randstream> const& require(std::unique_ptr<randstream> const& stream) {
    if (!stream) {
      throw Error("TALVOR:cpp:MovedFromStream", {},
                  "This stream has been moved from: draw from the one that it went to.");
    }
    return stream;
  }

  template <class T>
  void fillUniform(std::span<T> out) {
    detail::withErrors([&] { native().randuFcn(out.data(), out.size()); });
  }
  template <class T>
  void fillNormal(T* out, std::size_t n, bool halfVariance) {
    detail::withErrors([&] { native().randnFcn(out, n, halfVariance); });
  }
  template <class T>
  void fillComplexNormal(std::span<std::complex<T>> out) {
    // The standard lets an array of complex numbers be used as one of their parts.
    fillNormal(reinterpret_cast<T*>(out.data()), 2 * out.size(), true);
  }

  // Fills `out` with whole doubles, a chunk at a time; an empty one too, so that limits are
  // checked.
  template <class T, class Fill>
  static void fillThroughDoubles(std::span<T> out, Fill const& fill) {
    std::array<double, 256> chunk;
    std::size_t at = 0;
    do {
      std::size_t const n = std::min(chunk.size(), out.size() - at);
      fill(chunk.data(), n);
      std::transform(chunk.data(), chunk.data() + n, out.data() + at,
                     [](double value) { return static_cast<T>(value); });
      at += n;
    } while (at < out.size());
  }

  template <class T, class Fill>
  static std::vector<T> positions(std::size_t n, Fill const& fill) {
    std::vector<double> values(n);
    fill(std::span<double>(values));
    if constexpr (std::same_as<T, double>)
      return values;
    else
      return std::vector<T>(values.begin(), values.end());
  }

  std::unique_ptr<randstream> stream_;
};

}  // namespace tvmathrng
