#pragma once

// A stream as Python objects share it: the library's stream, and the right to use it, which one
// thread has at a time.

#include <pybind11/pybind11.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "python/ahead.h"
#include "python/interpreter.h"
#include "python/objects.h"
#include "rng/randstream.h"

namespace tvpython {

class Stream {
 public:
  static constexpr char const* kNotOne = "NotAStream";

  explicit Stream(std::unique_ptr<randstream> stream)
      : stream_(std::move(stream)), lock_(PyThread_allocate_lock()) {
    if (!lock_) throw std::bad_alloc();
  }

  // The right to use the stream, for the life of this object. Errors: "TALVOR:python:StreamInUse"
  // when another thread has it, or this one in the middle of another use.
  class Use {
   public:
    explicit Use(Stream& owner) : owner_(owner) { owner.beginUse(); }
    ~Use() {
      owner_.used_ = false;
      owner_.release();
    }
    Use(Use const&) = delete;
    Use& operator=(Use const&) = delete;

    randstream& operator*() const noexcept { return *owner_.stream_; }
    randstream* operator->() const noexcept { return owner_.stream_.get(); }

   private:
    Stream& owner_;
  };

  // The same right for a caller that waits for it and gives it back by hand, as often as it took
  // it; meanwhile its thread may use the stream. Waiting leaves the interpreter to other threads
  // and ends with an error when a signal's handler raises one.
  void acquire();
  void release() noexcept {
    if (--holds_ > 0) return;
    holder_.store(kNobody, std::memory_order_relaxed);
    PyThread_release_lock(lock_.get());
  }
  bool heldHere() const noexcept {
    return holder_.load(std::memory_order_relaxed) == PyThread_get_thread_ident();
  }

  // What never changes by drawing: the name, seed, indices and settings. They change with the
  // interpreter's lock held, and are read with it.
  randstream const& constants() const noexcept { return *stream_; }

  // The stream for those who take uniforms one by one, with the right to use it.
  Ahead& ahead();

 private:
  static constexpr unsigned long kNobody = 0;

  bool tryToHold() noexcept {
    if (!heldHere()) {
      if (!PyThread_acquire_lock(lock_.get(), NOWAIT_LOCK)) return false;
      noteHolder();
    }
    ++holds_;
    return true;
  }
  void noteHolder() noexcept {
    holder_.store(PyThread_get_thread_ident(), std::memory_order_relaxed);
  }
  void beginUse() {
    if (!tryToHold()) refuseUse();
    if (used_) {
      release();
      refuseUse();
    }
    used_ = true;
    if (ahead_) ahead_->giveBack();
  }
  [[noreturn]] static void refuseUse();

  std::unique_ptr<randstream> const stream_;
  // The interpreter's own kind of lock: may be tried by the thread that holds it, and costs no
  // system call while nobody waits.
  struct FreeLock {
    void operator()(void* lock) const noexcept { PyThread_free_lock(lock); }
  };
  std::unique_ptr<void, FreeLock> const lock_;
  std::atomic<unsigned long> holder_ = kNobody;
  std::size_t holds_ = 0;  // the rest belongs to the holder
  bool used_ = false;
  std::unique_ptr<Ahead> ahead_;  // once somebody has asked for it
};

// Requests of this many values or more leave the interpreter to other threads meanwhile; below, the
// two hand-overs would cost more than the work.
inline constexpr std::size_t kReleaseFrom = 1000;

// Runs work(randstream&) with the right to use the stream.
template <class Work>
void draw(Stream& stream, std::size_t values, Work const& work) {
  Stream::Use const use(stream);
  if (values < kReleaseFrom) return work(*use);
  OtherThreads const meanwhile;
  work(*use);
}

// A new stream. `generator` in any of its spellings, any case. Errors: create:UnknownRNGType and
// those of the generator.
std::unique_ptr<Stream> makeStream(std::string const& generator, std::uint32_t seed,
                                   std::uint64_t streamIndex, std::uint64_t numStreams);

// The stream in a Python object of class RandStream or of one derived from it.
inline Stream& streamOf(PyObject* object) { return heldBy<Stream>(object); }

// The names of all generators.
pybind11::list generatorNames();

// The class RandStream without its sampling methods.
pybind11::class_<Stream> addStreamClass(pybind11::module_& module);

// Its snapshots, copies, comparison and representation.
void addStreamText(pybind11::class_<Stream>& type);

}  // namespace tvpython
