#include "embedded_host/messages.h"

#include <fmt/args.h>
#include <fmt/format.h>
#include <toml++/toml.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <functional>
#include <map>

#include "embedded_host/embedded_text.h"

using foundation::core::except::AnyException;
using foundation::core::except::Argument;
using foundation::core::except::MessageId;

MessageId::~MessageId() = default;
AnyException::~AnyException() = default;

namespace embedded_host {

namespace {

struct Message {
  std::string text;
  std::string hint;
  std::size_t arguments;  // one more than the highest {0}, {1}, ... of both
};

std::size_t countArguments(std::string_view pattern) {
  std::size_t count = 0;
  for (std::size_t at = pattern.find('{'); at != std::string_view::npos;
       at = pattern.find('{', at + 1)) {
    std::size_t number = 0;
    if (std::from_chars(pattern.data() + at + 1, pattern.data() + pattern.size(), number).ec ==
        std::errc()) {
      count = std::max(count, number + 1);
    }
  }
  return count;
}

// The catalogue by identifier. The file groups its rows by path: a table "path" holds key.text and
// key.hint, or `same = "other path"`, which gives it that path's rows where it has none of its own.
class Catalogue {
 public:
  static Catalogue const& instance() {
    static Catalogue const catalogue;
    return catalogue;
  }

  // The row of an identifier: its own, else that of its family, "path:*:key". Null without one.
  Message const* find(std::string_view identifier) const {
    if (auto const own = rows_.find(identifier); own != rows_.end()) return &own->second;
    auto const key = identifier.rfind(':');
    auto const member = key == std::string_view::npos || key == 0 ? std::string_view::npos
                                                                  : identifier.rfind(':', key - 1);
    if (member == std::string_view::npos) return nullptr;
    std::string family(identifier.substr(0, member + 1));
    family.append("*").append(identifier.substr(key));
    auto const row = rows_.find(family);
    return row == rows_.end() ? nullptr : &row->second;
  }

  // The row of an identifier that comes with the arguments it needs. Null without one.
  Message const* find(MessageId const& id) const {
    Message const* const message = find(id.identifier());
    return message && message->arguments <= id.arguments().size() ? message : nullptr;
  }

  std::vector<std::string> identifiers() const {
    std::vector<std::string> result;
    for (auto const& [identifier, message] : rows_) result.push_back(identifier);
    return result;
  }

 private:
  Catalogue() {
    toml::table const file = toml::parse(kMessages);
    for (auto const& [path, node] : file) {
      toml::table const* rows = node.as_table();
      for (; rows; rows = file[(*rows)["same"].value_or("")].as_table()) addRows(path.str(), *rows);
    }
  }

  void addRows(std::string_view path, toml::table const& rows) {
    for (auto const& [key, node] : rows) {
      toml::table const* const row = node.as_table();
      if (!row) continue;  // same = ...
      std::string const text = (*row)["text"].value_or(std::string());
      std::string const hint = (*row)["hint"].value_or(std::string());
      rows_.try_emplace(std::string(path) + ':' + std::string(key.str()),
                        Message{text, hint, countArguments(text + hint)});
    }
  }

  std::map<std::string, Message, std::less<>> rows_;
};

// An argument as users write it.
std::string written(Argument const& argument) {
  if (auto const* const text = std::get_if<std::string>(&argument)) return *text;
  double const number = std::get<double>(argument);
  if (std::isnan(number)) return "NaN";
  if (std::isinf(number)) return number < 0 ? "-Inf" : "Inf";
  return fmt::format("{}", number);
}

// Fills {0}, {1}, ... with the arguments and {family} with the last part of the path: the function,
// generator or method that the identifier belongs to. Needs all arguments that the pattern has.
std::string fillIn(std::string const& pattern, MessageId const& id) {
  fmt::dynamic_format_arg_store<fmt::format_context> values;
  for (Argument const& argument : id.arguments()) values.push_back(written(argument));
  std::string const family = id.path().substr(id.path().rfind(':') + 1);
  values.push_back(fmt::arg("family", family));
  return fmt::vformat(pattern, values);
}

// The text of an identifier that has none, or whose arguments do not fit its text.
std::string bareText(MessageId const& id) {
  std::string text = "There is no text for \"" + id.identifier() + "\"";
  for (std::size_t i = 0; i < id.arguments().size(); ++i) {
    text += i == 0 ? " with " : ", ";
    text += written(id.arguments()[i]);
  }
  return text + '.';
}

}  // namespace

bool hasMessage(std::string_view identifier) {
  return Catalogue::instance().find(identifier) != nullptr;
}

std::string renderHint(MessageId const& id) {
  Message const* const message = Catalogue::instance().find(id);
  return message ? fillIn(message->hint, id) : std::string();
}

std::vector<std::string> messageIdentifiers() { return Catalogue::instance().identifiers(); }

std::size_t messageArguments(std::string_view identifier) {
  Message const* const message = Catalogue::instance().find(identifier);
  return message ? message->arguments : 0;
}

HostKey::HostKey(std::string_view identifier, std::vector<Argument> arguments)
    : MessageId(std::string(identifier.substr(0, identifier.rfind(':'))),
                std::string(identifier.substr(identifier.rfind(':') + 1)), std::move(arguments)) {}
HostKey::~HostKey() = default;

void raiseHostKey(HostKey const& key) { txErrMsgId(key); }

}  // namespace embedded_host

std::string renderMessage(MessageId const& id) {
  using namespace embedded_host;
  Message const* const message = Catalogue::instance().find(id);
  return message ? fillIn(message->text, id) : bareText(id);
}
