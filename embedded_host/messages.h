#pragma once

// The message catalogue and the host's own errors. Texts live in messages.toml, which is compiled
// into the library.

#include <concepts>
#include <string>
#include <string_view>
#include <vector>

#include "host/except.h"
#include "host/export.h"
#include "host/messages.h"

namespace embedded_host {

// True when the catalogue has a text for this identifier.
TV_EXPORT bool hasMessage(std::string_view identifier);

// What would work instead, with the arguments filled in; empty when the catalogue has no hint.
TV_EXPORT std::string renderHint(foundation::core::except::MessageId const& id);

// Every identifier with a text of its own, in alphabetical order. A row for a family of identifiers
// has a "*" in its place.
TV_EXPORT std::vector<std::string> messageIdentifiers();

// The number of {0}, {1}, ... that the identifier's text and hint use: one more than the highest.
TV_EXPORT std::size_t messageArguments(std::string_view identifier);

// The key type of the host's own errors.
class TV_EXPORT HostKey final : public foundation::core::except::MessageId {
 public:
  explicit HostKey(std::string_view identifier,
                   std::vector<foundation::core::except::Argument> arguments = {});
  ~HostKey() override;
};

[[noreturn]] TV_EXPORT void raiseHostKey(HostKey const& key);

inline std::string toArgument(std::string_view text) { return std::string(text); }
inline double toArgument(std::integral auto number) { return static_cast<double>(number); }
inline double toArgument(double number) { return number; }

// Raises a host error: raiseHostError("TALVOR:nomem", bytes). Arguments are texts or numbers.
template <class... Args>
[[noreturn]] void raiseHostError(std::string_view identifier, Args const&... arguments) {
  raiseHostKey(HostKey(identifier, {toArgument(arguments)...}));
}

}  // namespace embedded_host
