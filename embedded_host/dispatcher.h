#pragma once

// The functions of one VM by name: what Tdispatcher (host/tdispatcher.h) calls.

#include <functional>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/closest_name.h"
#include "host/export.h"
#include "host/tx_array.h"

namespace embedded_host {

// A builtin or native method; any callable of the builtin signature, a plain txBuiltin included.
using Function = std::function<void(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs)>;

class TV_EXPORT Functions {
 public:
  // Adds or replaces.
  void add(std::string name, Function function);
  // Returns false when there was none.
  bool remove(std::string_view name);
  // Null when there is none. The function stays alive while it is in the table.
  Function const* find(std::string_view name) const;
  // In alphabetical order.
  std::vector<std::string> names() const;

  // What those who call a name that is no function are told to write instead; "" where nothing was
  // added for the name.
  void addAdvice(std::string name, std::string advice);
  std::string adviceFor(std::string_view name) const;

 private:
  struct Hash : std::hash<std::string_view> {
    using is_transparent = void;
  };

  // Hashed: every call of a program looks its name up here.
  std::unordered_map<std::string, Function, Hash, std::equal_to<>> functions_;
  std::map<std::string, std::string, std::less<>> advice_;
};

// Calls with the arguments in the form that the builtin signature wants.
TV_EXPORT void callFunction(Function const& function, int nlhs, txArrayPtr* plhs,
                            std::span<txArray const* const> args);

// What a call name(args...) in the host language means: the method of the first argument that is an
// object whose class has that method and takes the call (ClassDefinition::objectFirst), else the
// function, else the constructor of the class of that name. Returns false, with nothing called,
// when there is none.
TV_EXPORT bool dispatch(std::string_view name, int nlhs, txArrayPtr* plhs,
                        std::span<txArray const* const> args);

// For "did you mean" texts.
using names::closestName;

}  // namespace embedded_host
