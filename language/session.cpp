#include "language/session.h"

#include "embedded_host/interrupt.h"
#include "language/evaluator.h"
#include "language/functions.h"
#include "language/lexer.h"
#include "language/parser.h"

namespace language {

Session::Session(embedded_host::VmContext& vm, Output& output) : vm_(vm), output_(output) {
  registerFunctions(*this);
}

Session::~Session() {
  embedded_host::EnterVm const entered(vm_);  // values may be objects with destroyers
  variables_.clear();
  lastValue_.reset();
  unregisterFunctions(*this);
}

void Session::run(std::string_view source) {
  embedded_host::RunningProgram const running;
  callInProgress_.reset();
  Block const program = parse(source, commands_);
  Evaluator(*this).run(program);
}

txArray const* Session::variable(std::string_view name) const {
  auto const found = variables_.find(name);
  return found == variables_.end() ? nullptr : found->second.get();
}

void Session::setVariable(std::string_view name, txArrayPtr value) {
  if (lastIsVariable_ && name == lastName_) keepLastValue();
  auto const found = variables_.find(name);
  if (found == variables_.end()) {
    variables_.emplace(name, std::move(value));
  } else {
    found->second = std::move(value);
  }
}

void Session::clearVariables() {
  if (lastIsVariable_) keepLastValue();
  variables_.clear();
}

txArray const* Session::lastValue() const noexcept {
  return lastIsVariable_ ? variable(lastName_) : lastValue_.get();
}

void Session::forgetLastValue() {
  lastIsVariable_ = false;
  lastValue_.reset();
}

// Its variable goes or becomes another.
void Session::keepLastValue() {
  lastValue_ = txShare(*variable(lastName_));
  lastIsVariable_ = false;
}

std::vector<std::string> Session::knownNames() const {
  std::vector<std::string> names = vm_.functions().names();
  for (auto& name : vm_.classes().names()) names.push_back(std::move(name));
  for (auto const& [name, value] : variables_) names.push_back(name);
  return names;
}

}  // namespace language
