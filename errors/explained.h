#pragma once

// Errors that are told otherwise than by the text of their own identifier.

#include <string>
#include <utility>

#include "host/messages.h"

namespace errors {

// Raises the error of a key, its text followed by a sentence ("" for none).
template <class K>
[[noreturn]] void raiseExplained(K key, std::string const& sentence, int faultyArgument = 0) {
  key.setFaultyArgument(faultyArgument);
  std::string text = renderMessage(key);
  if (!sentence.empty()) text += ' ' + sentence;
  throw foundation::core::except::Exception<K>(std::move(key), std::move(text));
}

// Raises the error of a key under the text of another one.
template <class K>
[[noreturn]] void raiseWithTextOf(foundation::core::except::MessageId const& other, K key) {
  throw foundation::core::except::Exception<K>(std::move(key), renderMessage(other));
}

// The sentence for a name that was probably meant, "" for none.
inline std::string didYouMean(std::string const& name) {
  return name.empty() ? name : "Did you mean \"" + name + "\"?";
}

}  // namespace errors
