#pragma once

// The host's exception framework. An error is a message identifier with arguments; its text comes
// from the host's message catalogue (host/messages.h). The host defines the two destructors, and
// with them the types that errors are caught by.

#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "host/export.h"

namespace foundation::core::except {

using Argument = std::variant<std::string, double>;

// A message identifier "path:key" with the arguments of its text.
class TV_EXPORT MessageId {
 public:
  MessageId(std::string path, std::string key, std::vector<Argument> arguments = {})
      : path_(std::move(path)), key_(std::move(key)), arguments_(std::move(arguments)) {}
  MessageId(MessageId const&) = default;
  MessageId& operator=(MessageId const&) = default;
  virtual ~MessageId();

  std::string const& path() const noexcept { return path_; }  // "TALVOR:RandStream:randi"
  std::string const& key() const noexcept { return key_; }    // "LimitsTooLarge"
  std::vector<Argument> const& arguments() const noexcept { return arguments_; }
  std::string identifier() const { return path_ + ':' + key_; }

  // Which argument of the failing call is at fault, from 1; 0 when that is not known.
  int faultyArgument() const noexcept { return faultyArgument_; }
  void setFaultyArgument(int position) noexcept { faultyArgument_ = position; }

 private:
  std::string path_;
  std::string key_;
  std::vector<Argument> arguments_;
  int faultyArgument_ = 0;
};

// What every host exception offers, whatever its key.
class TV_EXPORT AnyException {
 public:
  virtual std::string GetID() const = 0;
  virtual MessageId const& GetBaseMsgIDObj() const noexcept = 0;
  virtual void setFaultyArgument(int position) noexcept = 0;
  virtual const char* text() const noexcept = 0;
  [[noreturn]] virtual void rethrow() const = 0;
  virtual std::unique_ptr<AnyException> clone() const = 0;
  virtual ~AnyException();

 protected:
  AnyException() = default;
  AnyException(AnyException const&) = default;
  AnyException& operator=(AnyException const&) = default;
};

// The exception that carries key type `Key` (derived from MessageId). `Base` is the standard
// exception it is caught as; `Context` is reserved by the host.
template <class Key, class Base = std::exception, class Context = void>
class Exception final : public Base, public AnyException {
 public:
  Exception(Key key, std::string message) : key_(std::move(key)), message_(std::move(message)) {}

  const char* what() const noexcept override { return message_.c_str(); }
  const char* text() const noexcept override { return message_.c_str(); }
  std::string GetID() const override { return key_.identifier(); }
  MessageId const& GetBaseMsgIDObj() const noexcept override { return key_; }
  void setFaultyArgument(int position) noexcept override { key_.setFaultyArgument(position); }
  [[noreturn]] void rethrow() const override { throw *this; }
  std::unique_ptr<AnyException> clone() const override {
    return std::make_unique<Exception>(*this);
  }

  Key const& key() const noexcept { return key_; }

 private:
  Key key_;
  std::string message_;
};

}  // namespace foundation::core::except
