// Standard normals of a stream: the generator's own, or one of three transformations of uniforms.

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <utility>

#include "errors/keys.h"
#include "host/tfl_rng.h"
#include "rng/chunks.h"
#include "rng/in_use.h"
#include "rng/kernels/accepted_run.h"
#include "rng/kernels/delivery.h"
#include "rng/randstream.h"
#include "rng/uniform_source.h"
#include "rng/whole_draw.h"
#include "rng/ziggurat_tables.h"
#include "tfl_rng/rejection.h"

namespace {

// Counts rejections in a row: a generator in a degenerate state may be rejected forever.
class Rejections {
 public:
  void count() {
    if (++inARow_ == tfl_rng::kMaxRejections)
      errors::raise(component_TALVOR::catalog_RandStream::key_UnexpectedPluginError());
  }

 private:
  int inARow_ = 0;
};

// The uniforms of randnZiggurat, kept in the output buffer behind the values written so far.
class UniformStore {
 public:
  UniformStore(UniformSource source, double* buffer, std::size_t n)
      : source_(source), buffer_(buffer), n_(n) {}

  // Two uniforms are unread afterwards. A refill at output slot `slot` keeps a single leftover in
  // front and draws as many as two for each normal still to produce need.
  void needTwo(std::size_t slot) {
    const std::size_t unread = end_ - next_;
    if (unread >= 2) return;
    if (unread == 1) buffer_[slot] = buffer_[next_];
    const std::size_t size = 2 * (n_ - slot);
    source_.randu(buffer_ + slot + unread, size - unread);
    next_ = slot;
    end_ = slot + size;
  }
  // One uniform is unread afterwards. A refill draws one less than needTwo would.
  void needOne(std::size_t slot) {
    if (next_ < end_) return;
    const std::size_t size = 2 * (n_ - slot) - 1;
    source_.randu(buffer_ + slot, size);
    next_ = slot;
    end_ = slot + size;
  }
  double read() { return buffer_[next_++]; }

  // The whole pairs that are unread.
  double const* pairs() const { return buffer_ + next_; }
  std::size_t pairCount() const { return (end_ - next_) / 2; }
  void skipPairs(std::size_t count) { next_ += 2 * count; }

 private:
  UniformSource source_;
  double* buffer_;
  std::size_t n_;
  std::size_t next_ = 0;  // buffer_[next_, end_) is unread
  std::size_t end_ = 0;
};

// A value beyond the tail's start, with the sign of the candidate x.
double zigguratTail(UniformStore& store, std::size_t slot, double x) {
  Rejections rejections;
  for (;;) {
    store.needTwo(slot);
    const double a = store.read();
    const double b = store.read();
    const double t = ziggurat::kInverseTailStart * tfl_rng::pinnedLog(a);
    const double y = -2 * tfl_rng::pinnedLog(b);
    if (t * t < y) return x < 0 ? t - ziggurat::kTailStart : ziggurat::kTailStart - t;
    rejections.count();
  }
}

}  // namespace

// Marsaglia and Tsang (2000), 256 layers. Runs of candidates inside their layers are taken
// in one go; the candidate that ends a run is decided here.
void randstream::randnZiggurat(double* buffer, std::size_t n) {
  using ziggurat::kF;
  UniformStore store(uniforms(), buffer, n);
  Rejections rejections;
  for (std::size_t slot = 0; slot < n;) {
    store.needTwo(slot);
    const std::size_t most = std::min<std::size_t>(store.pairCount(), n - slot);
    const std::size_t inside = ziggurat::acceptedRun(store.pairs(), most, buffer + slot);
    store.skipPairs(inside);
    slot += inside;
    if (inside > 0) rejections = {};
    if (inside == most) continue;

    const double u0 = store.read();
    const double u1 = store.read();
    const ziggurat::Candidate candidate(u0, u1);
    double x = candidate.x;
    if (candidate.layer == ziggurat::kLayers - 1) {
      x = zigguratTail(store, slot, x);
    } else {
      store.needOne(slot);
      const std::size_t i = candidate.layer;
      const double y = kF[i + 1] + (kF[i] - kF[i + 1]) * store.read();
      if (!(tfl_rng::pinnedExp(-0.5 * x * x) > y)) {
        rejections.count();
        continue;
      }
    }
    buffer[slot++] = x;
    rejections = {};
  }
}

// Marsaglia's polar method. The uniforms stand in the buffer from the output slot on, two for each
// pair still to produce.
void randstream::randnPolar(double* buffer, std::size_t n) {
  if (n == 0) return;
  std::size_t slot = 0;
  if (std::exchange(pendingNormalValid_, false)) buffer[slot++] = pendingNormal_;
  Rejections rejections;
  std::size_t next = 0;
  std::size_t end = 0;
  while (slot < n) {
    if (next == end) {
      const std::size_t left = n - slot;
      next = slot;
      end = slot + left + left % 2;
      uniforms().randu(buffer + slot, end - next);
    }
    const double a = 2 * buffer[next++] - 1;
    const double b = 2 * buffer[next++] - 1;
    const double s = a * a + b * b;
    if (s > 1 || s == 0) {  // s == 1 is kept: the sequence depends on it
      rejections.count();
      continue;
    }
    rejections = {};
    const double m = std::sqrt(-2 * tfl_rng::pinnedLog(s) / s);
    buffer[slot++] = a * m;
    if (slot < n) {
      buffer[slot++] = b * m;
    } else {
      pendingNormal_ = b * m;
      pendingNormalValid_ = true;
    }
  }
}

void randstream::randnInversion(double* buffer, std::size_t n) {
  uniforms().randu(buffer, n);
  tfl_rng::normalQuantileInPlace(buffer, n);
}

void randstream::drawNativeNormals(double* out, std::uint64_t n) {
  counts_.normals += n;
  counts_.latest = drawsInThread += n;
  normalView_->randn(out, static_cast<std::size_t>(n));
}

namespace {

// Stores normals as T: negated for an antithetic stream, then divided for half the variance.
template <class T>
void deliver(double const* normals, T* out, std::size_t n, delivery::Change change) {
  bool const asTheyAre = !change.negate && !change.halfVariance;
  if (std::is_same_v<T, float> || !asTheyAre) delivery::toNormals(normals, change, out, n);
}

}  // namespace

template <>
void randstream::randnFcn(double* out, std::uint64_t n, bool halfVariance) {
  const InUse inUse(*this);
  const delivery::Change change{antithetic_, halfVariance};
  if (nativeNormals_ && n <= plugin_rng::kUninterrupted) {
    drawNativeNormals(out, n);
    return deliver(out, out, static_cast<std::size_t>(n), change);
  }
  const WholeDraw whole(*this, n);
  if (nativeNormals_) {
    drawNativeNormals(out, n);
    return plugin_rng::inInterruptibleParts(
        n, [&](std::size_t at, std::size_t len) { deliver(out + at, out + at, len, change); });
  }
  double scratch[2 * kChunk];
  forEachChunk(n, kChunk, [&](std::size_t at, std::size_t len) {
    (this->*normalGenerator_)(scratch, len);
    std::copy_n(scratch, len, out + at);
    deliver(scratch, out + at, len, change);
  });
}

template <>
void randstream::randnFcn(float* out, std::uint64_t n, bool halfVariance) {
  const InUse inUse(*this);
  const WholeDraw whole(*this, n);
  double scratch[kLongChunk];
  forEachChunk(n, nativeNormals_ ? chunk() : kChunk, [&](std::size_t at, std::size_t len) {
    if (nativeNormals_)
      drawNativeNormals(scratch, len);
    else
      (this->*normalGenerator_)(scratch, len);
    deliver(scratch, out + at, len, {antithetic_, halfVariance});
  });
}
