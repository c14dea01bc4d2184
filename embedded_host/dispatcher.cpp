#include "embedded_host/dispatcher.h"

#include <algorithm>

#include "embedded_host/vm_context.h"
#include "host/tcos.h"
#include "host/tdispatcher.h"

namespace embedded_host {

void Functions::add(std::string name, Function function) {
  functions_.insert_or_assign(std::move(name), std::move(function));
}

bool Functions::remove(std::string_view name) {
  auto const found = functions_.find(name);
  if (found == functions_.end()) return false;
  functions_.erase(found);
  return true;
}

Function const* Functions::find(std::string_view name) const {
  auto const found = functions_.find(name);
  return found == functions_.end() ? nullptr : &found->second;
}

std::vector<std::string> Functions::names() const {
  std::vector<std::string> result;
  result.reserve(functions_.size());
  for (auto const& [name, function] : functions_) result.push_back(name);
  std::ranges::sort(result);
  return result;
}

void Functions::addAdvice(std::string name, std::string advice) {
  advice_.insert_or_assign(std::move(name), std::move(advice));
}

std::string Functions::adviceFor(std::string_view name) const {
  auto const found = advice_.find(name);
  return found == advice_.end() ? std::string() : found->second;
}

void callFunction(Function const& function, int nlhs, txArrayPtr* plhs,
                  std::span<txArray const* const> args) {
  // The builtin signature lets a callee replace its argument pointers, so it gets its own.
  constexpr std::size_t kFew = 8;
  txArray const* few[kFew];
  std::vector<txArray const*> many(args.size() > kFew ? args.size() : 0);
  txArray const** const own = many.empty() ? few : many.data();
  std::copy(args.begin(), args.end(), own);
  function(nlhs, plhs, static_cast<int>(args.size()), own);
}

bool dispatch(std::string_view name, int nlhs, txArrayPtr* plhs,
              std::span<txArray const* const> args) {
  for (txArray const* argument : args) {
    ClassPtr const definition = classOf(*argument);
    if (!definition || (definition->objectFirst && argument != args.front())) continue;
    auto const method = definition->methods.find(name);
    if (method == definition->methods.end()) continue;
    callFunction(method->second, nlhs, plhs, args);
    return true;
  }
  return Tdispatcher::call(name, nlhs, plhs, args);
}

}  // namespace embedded_host

namespace {

using namespace embedded_host;

struct Callee {
  Function const* function = nullptr;  // null: there is none
  ClassPtr owner = nullptr;            // of a constructor, which lives as long as its class
};

// What a name alone calls in the current VM.
Callee findCallee(std::string_view name) {
  VmContext* const vm = VmContext::current();
  if (!vm) return {};
  if (Function const* const function = vm->functions().find(name)) return {function};
  ClassPtr definition = vm->classes().find(name);
  if (!definition || !definition->constructor) return {};
  return {&definition->constructor, definition};
}

}  // namespace

bool Tdispatcher::has(std::string_view name) { return findCallee(name).function != nullptr; }

bool Tdispatcher::call(std::string_view name, int nlhs, txArrayPtr* plhs,
                       std::span<txArray const* const> args) {
  Callee const callee = findCallee(name);
  if (!callee.function) return false;
  callFunction(*callee.function, nlhs, plhs, args);
  return true;
}
