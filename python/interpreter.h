#pragma once

// Threads and the interpreter.

#include <Python.h>
#include <cxxabi.h>
#include <unistd.h>

namespace tvpython {

// body(), which uses the interpreter. When the interpreter ends, the threads that it still has end
// by unwinding their stacks, which neither destructors nor noexcept functions let pass: here they
// sleep until the process is gone.
template <class Body>
decltype(auto) withInterpreter(Body const& body) {
  try {
    return body();
  } catch (abi::__forced_unwind const&) {
    for (;;) pause();
  }
}

// Leaves the interpreter to other threads for the life of this object.
class OtherThreads {
 public:
  OtherThreads() noexcept : own_(PyEval_SaveThread()) {}
  ~OtherThreads() {
    withInterpreter([this] { PyEval_RestoreThread(own_); });
  }
  OtherThreads(OtherThreads const&) = delete;
  OtherThreads& operator=(OtherThreads const&) = delete;

 private:
  PyThreadState* own_;
};

}  // namespace tvpython
