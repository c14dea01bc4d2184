#pragma once

// Errors of the language itself, and errors of any kind with their place in the source.

#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "host/except.h"
#include "host/export.h"
#include "language/token.h"

namespace language {

// The identifier of an error of the language: "TALVOR:language:<key>". Its text is made where it is
// raised, where the names and sizes are known; `hint` says what would work.
class TV_EXPORT Fault final : public foundation::core::except::MessageId {
 public:
  explicit Fault(std::string key, std::string hint = {})
      : MessageId("TALVOR:language", std::move(key)), hint_(std::move(hint)) {}
  std::string const& hint() const noexcept { return hint_; }

 private:
  std::string hint_;
};

[[noreturn]] TV_EXPORT void raiseFault(char const* key, std::string message, std::string hint = {},
                                       int faultyArgument = 0);

// An error raised by a program with an identifier of its own.
[[noreturn]] void raiseUserError(std::string identifier, std::string message);

// Any host error, with the part of the source that it belongs to.
class TV_EXPORT SourceError final : public std::exception {
 public:
  // `whole` is the failing call or operation; `spot` the part at fault, the same when not known.
  SourceError(SourceSpan whole, SourceSpan spot,
              std::shared_ptr<foundation::core::except::AnyException const> cause)
      // NOLINTNEXTLINE(bugprone-throw-keyword-missing): moves a pointer
      : whole_(whole), spot_(spot), cause_(std::move(cause)) {}

  char const* what() const noexcept override { return cause_->text(); }
  SourceSpan whole() const noexcept { return whole_; }
  SourceSpan spot() const noexcept { return spot_; }
  foundation::core::except::AnyException const& cause() const noexcept { return *cause_; }
  std::string identifier() const { return cause_->GetID(); }
  // What would work, as far as the language itself knows; "" otherwise.
  std::string hint() const;
  // The source ended inside a bracket, block or text: more input may complete it.
  bool incomplete() const noexcept { return incomplete_; }
  void setIncomplete() noexcept { incomplete_ = true; }

 private:
  SourceSpan whole_;
  SourceSpan spot_;
  std::shared_ptr<foundation::core::except::AnyException const> cause_;
  bool incomplete_ = false;
};

// A fault of the language with its place known.
[[noreturn]] void raiseFaultAt(SourceSpan spot, char const* key, std::string message,
                               std::string hint = {});
// A fault of the source text itself.
[[noreturn]] void raiseSyntax(SourceSpan spot, std::string message, std::string hint = {},
                              bool incomplete = false);

// The error being handled (called inside a catch block) as a SourceError; one that has its place
// already keeps it. `arguments` are the places of the arguments of a failing call.
[[noreturn]] void rethrowLocated(SourceSpan whole, std::vector<SourceSpan> const& arguments = {});

// Runs `work`; errors without a place get `whole`.
template <class Work>
decltype(auto) located(SourceSpan whole, Work&& work) {
  try {
    return work();
  } catch (...) {
    rethrowLocated(whole);
  }
}

}  // namespace language
