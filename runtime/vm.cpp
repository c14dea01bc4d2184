#include "runtime/vm.h"

#include <algorithm>
#include <string>
#include <utility>

#include "embedded_host/dispatcher.h"
#include "embedded_host/interrupt.h"
#include "embedded_host/messages.h"
#include "embedded_host/text.h"
#include "errors/key.h"
#include "host/tcos.h"
#include "plugin_rng/interruption.h"
#include "runtime/loaded.h"
#include "tfl_rng/float_environment.h"

namespace runtime {

// A session whose output can go to another place with each evaluation.
class EvaluationSession final : private language::Output {
 public:
  explicit EvaluationSession(embedded_host::VmContext& vm) : session_(vm, *this) {}

  txArrayPtr run(std::string_view source, language::Output* output) {
    output_ = output;
    session_.forgetLastValue();
    session_.run(source);
    txArray const* const value = session_.lastValue();
    return value ? txShare(*value) : nullptr;
  }

 private:
  void show(std::string_view name, txArray const& value) override {
    if (output_) output_->show(name, value);
  }
  void print(std::string_view utf8) override {
    if (output_) output_->print(utf8);
  }
  void printValue(txArray const& value) override {
    if (output_) output_->printValue(value);
  }

  language::Output* output_ = nullptr;
  language::Session session_;
};

namespace {

bool callNamed(std::string_view name, int nlhs, txArrayPtr* plhs,
               std::span<txArray const* const> args) {
  std::size_t const dot = name.find('.');
  if (dot != std::string_view::npos &&
      tcos::callStaticMethod(embedded_host::utf8ToUtf16(name.substr(0, dot)), name.substr(dot + 1),
                             nlhs, plhs, args))
    return true;
  return embedded_host::dispatch(name, nlhs, plhs, args);
}

// A key of the library's kind: the guards of its streams let it pass.
struct Interrupted final : errors::Key {
  Interrupted() : Key("TALVOR:language", "interrupted") {}
};

}  // namespace

Vm::Vm()
    : context_(std::make_unique<embedded_host::VmContext>()),
      loaded_(std::make_shared<Loaded>(Loaded{context_.get()})) {
  plugin_rng::endDrawsWhen(&embedded_host::interruptRequestFlag(),
                           [] { errors::raise(Interrupted()); });
  addFunctions(loaded_);
  addRandStreamClass(loaded_);
}

Vm::~Vm() {
  {
    embedded_host::EnterVm const inside(*context_);
    session_.reset();
    loaded_->globalObject.reset();
  }
  context_.reset();
  loaded_->vm = nullptr;
}

std::vector<txArrayPtr> Vm::call(std::string_view name, std::span<txArray const* const> args,
                                 int nlhs) {
  tfl_rng::FloatEnvironment const environment;
  embedded_host::EnterVm const inside(*context_);
  std::vector<txArrayPtr> outputs(static_cast<std::size_t>(std::max(nlhs, 1)));
  if (!callNamed(name, nlhs, outputs.data(), args))
    embedded_host::raiseHostError("TALVOR:UndefinedFunction", name);
  return outputs;
}

txArrayPtr Vm::call(std::string_view name, std::initializer_list<txArray const*> args, int nlhs) {
  return std::move(call(name, std::span(args.begin(), args.size()), nlhs).front());
}

txArrayPtr Vm::evaluate(std::string_view source, language::Output* output) {
  tfl_rng::FloatEnvironment const environment;
  embedded_host::EnterVm const inside(*context_);
  return language::located({0, static_cast<std::uint32_t>(source.size())}, [&] {
    if (!session_) session_ = std::make_unique<EvaluationSession>(*context_);
    return session_->run(source, output);
  });
}

}  // namespace runtime
