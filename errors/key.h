#pragma once

// The base of every error and warning key of this library, and how one is raised.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "host/messages.h"

namespace errors {

// Marks the library's own keys: the stream's guard lets exactly these pass.
class Key : public foundation::core::except::MessageId {
 public:
  using MessageId::MessageId;
};

// Turns the spelling of a C++ namespace into the path of an identifier at compile time:
// "TALVOR::RandStream::create" becomes "TALVOR:RandStream:create".
template <std::size_t n>
class PathText {
 public:
  consteval PathText(char const (&qualified)[n]) {  // NOLINT(google-explicit-constructor)
    for (std::size_t i = 0; i + 1 < n; ++i) {
      if (qualified[i] == ' ') continue;
      if (qualified[i] == ':' && size_ > 0 && text_[size_ - 1] == ':') continue;
      text_[size_++] = qualified[i];
    }
    if (size_ > 0 && text_[size_ - 1] == ':') --size_;
  }
  constexpr std::string_view view() const { return {text_.data(), size_}; }

 private:
  std::array<char, n> text_{};
  std::size_t size_ = 0;
};

// Arguments of a key, kept as text or number.
inline std::string toArgument(char const* text) { return text ? text : ""; }
inline std::string toArgument(std::string const& text) { return text; }
inline std::string toArgument(std::u16string_view text) {
  std::string narrow(text.size(), '?');
  std::transform(text.begin(), text.end(), narrow.begin(),
                 [](char16_t c) { return c < 128 ? static_cast<char>(c) : '?'; });
  return narrow;
}
inline double toArgument(double number) { return number; }

// Raises the error of a key; `faultyArgument` (from 1) names the argument of the call at fault.
template <class K>
[[noreturn]] void raise(K key, int faultyArgument = 0) {
  key.setFaultyArgument(faultyArgument);
  txErrMsgId(key);
}

// The same, its text followed by the question whether `meant` was meant.
template <class K>
[[noreturn]] void raiseAsking(K key, int faultyArgument, std::string_view meant) {
  key.setFaultyArgument(faultyArgument);
  std::string text = renderMessage(key);
  text.append(" Did you mean '").append(meant).append("'?");
  throw foundation::core::except::Exception<K, std::exception, void>(std::move(key),
                                                                     std::move(text));
}

}  // namespace errors
