#include "embedded_host/settings_file.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <string_view>
#include <system_error>
#include <vector>

#include "embedded_host/dispatcher.h"
#include "embedded_host/messages.h"

namespace embedded_host {

namespace {

namespace fs = std::filesystem;

// Bounds that no settings come near: the parser and its tables go one call deeper with each level,
// and the stack of a host's thread may be small.
constexpr std::size_t kMostBytes = 65536;
constexpr std::size_t kMostLevels = 32;

[[noreturn]] void refuse(fs::path const& file, std::string const& reason) {
  raiseHostError("TALVOR:settings:UnreadableFile", file.string(), reason);
}

// Whether there is no file where none need be; a link that leads nowhere is one. What stands for no
// file at all is the device without contents.
bool isAbsent(UserSettingsFile const& file) {
  if (file.path == "/dev/null") return true;
  std::error_code ignored;
  return !file.mustExist &&
         fs::symlink_status(file.path, ignored).type() == fs::file_type::not_found;
}

std::string readText(fs::path const& file) {
  std::error_code error;
  // Asked for first: opening a folder succeeds, opening a pipe waits.
  fs::file_status const status = fs::status(file, error);
  if (!fs::is_regular_file(status)) refuse(file, error ? error.message() : "it is no file");
  std::ifstream stream(file, std::ios::binary);
  if (!stream.is_open()) refuse(file, std::generic_category().message(errno));
  std::string text(kMostBytes + 1, '\0');
  stream.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (stream.bad()) refuse(file, "reading fails");
  text.resize(static_cast<std::size_t>(stream.gcount()));
  if (text.size() > kMostBytes)
    raiseHostError("TALVOR:settings:TooLarge", file.string(), kMostBytes);
  return text;
}

// The place behind the text that opens at `at`. A text of one line that its line does not close
// ends the parser, so that what follows is of no account.
std::size_t behindText(std::string_view toml, std::size_t at) {
  char const quote = toml[at];
  std::string const three(3, quote);
  bool const ofLines = toml.substr(at, 3) == three;
  std::string_view const closing = std::string_view(three).substr(0, ofLines ? 3 : 1);
  for (at += closing.size(); at < toml.size(); ++at) {
    if (toml.substr(at, closing.size()) == closing) {
      at += closing.size();
      // Two quotes more belong to a text of lines that ends with them.
      for (int more = 0; ofLines && more < 2 && at < toml.size() && toml[at] == quote; ++more) ++at;
      return at;
    }
    if (toml[at] == '\\' && quote == '"') ++at;
  }
  return toml.size();
}

// Refuses statements that nest too deeply. What nests is counted from above: each point and bracket
// outside texts and comments.
void checkLevels(fs::path const& file, std::string_view toml) {
  std::size_t levels = 0, open = 0, line = 1;
  for (std::size_t at = 0; at < toml.size();) {
    char const c = toml[at];
    if (c == '"' || c == '\'') {
      std::size_t const end = behindText(toml, at);
      line += static_cast<std::size_t>(std::ranges::count(toml.substr(at, end - at), '\n'));
      at = end;
      continue;
    }
    if (c == '#') {
      at = std::min(toml.find('\n', at), toml.size());
      continue;
    }
    if (c == '[' || c == '{') ++open;
    if (c == '[' || c == '{' || c == '.') ++levels;
    if ((c == ']' || c == '}') && open > 0) --open;
    if (levels > kMostLevels)
      raiseHostError("TALVOR:settings:TooDeep", file.string(), line, kMostLevels);
    if (c == '\n') {
      ++line;
      if (open == 0) levels = 0;
    }
    ++at;
  }
}

std::string join(std::string const& group, std::string_view key) {
  return group.empty() ? std::string(key) : group + '.' + std::string(key);
}

// Adds the full names of all settings.
void addSettings(toml::table const& known, std::string const& group,
                 std::vector<std::string>& names) {
  for (auto const& [key, node] : known) {
    std::string name = join(group, key.str());
    if (node.is_table())
      addSettings(*node.as_table(), name, names);
    else
      names.push_back(std::move(name));
  }
}

// What to write instead of a name that is no setting: the one that is spelled alike, in whatever
// group, else all of them.
std::string suggestion(std::string const& given, toml::table const& known) {
  std::vector<std::string> names, keys;
  addSettings(known, "", names);
  auto const lastPart = [](std::string const& name) { return name.substr(name.rfind('.') + 1); };
  std::ranges::transform(names, std::back_inserter(keys), lastPart);
  auto const key = std::ranges::find(keys, closestName(lastPart(given), keys));
  if (key != keys.end())
    return "did you mean " + names[static_cast<std::size_t>(key - keys.begin())] + "?";
  std::string all = "the settings are ";
  for (std::string const& name : names) all += (&name == &names.front() ? "" : ", ") + name;
  return all;
}

void checkNames(fs::path const& file, toml::table const& user, toml::table const& known,
                toml::table const& all, std::string const& group = {}) {
  for (auto const& [key, node] : user) {
    std::string const name = join(group, key.str());
    toml::node const* const same = known.get(key.str());
    if (!same || (same->is_table() && !node.is_table())) {
      auto const& at = node.source().begin;
      raiseHostError("TALVOR:settings:UnknownSetting", file.string(), name, at.line, at.column,
                     suggestion(name, all));
    }
    if (same->is_table()) checkNames(file, *node.as_table(), *same->as_table(), all, name);
  }
}

}  // namespace

toml::table readSettingsFile(UserSettingsFile const& file, toml::table const& known) {
  if (isAbsent(file)) return {};
  std::string const text = readText(file.path);
  checkLevels(file.path, text);
  try {
    toml::table user = toml::parse(std::string_view(text), file.path.string());
    checkNames(file.path, user, known, known);
    return user;
  } catch (toml::parse_error const& error) {
    auto const& at = error.source().begin;
    raiseHostError("TALVOR:settings:BrokenFile", file.path.string(), at.line, at.column,
                   error.description());
  }
}

}  // namespace embedded_host
