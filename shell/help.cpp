#include "shell/help.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <vector>

#include "embedded_host/dispatcher.h"
#include "embedded_host/object_system.h"
#include "embedded_host/text.h"
#include "language/fault.h"
#include "language/functions.h"
#include "shell/help_texts.h"
#include "shell/wrapped_text.h"

namespace shell {

namespace {

using Lines = std::vector<std::string>;

struct Entry {
  std::string name;
  Lines forms;
  std::string what;
  Lines arguments;
  std::string draws = "nothing";
  Lines examples;  // at the prompt
  Lines commands;  // of the system's shell
  Lines also;
};

// The parts of `text` between separators, none of them empty.
Lines split(std::string_view text, std::string_view separator) {
  Lines parts;
  while (!text.empty()) {
    std::size_t const end = std::min(text.find(separator), text.size());
    if (end > 0) parts.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + separator.size(), text.size()));
  }
  return parts;
}

// streams.txt: entries with an empty line between two, the name, then lines that begin with a key.
void addStreamEntries(std::vector<Entry>& entries) {
  for (std::string const& block : split(kStreamHelp, "\n\n")) {
    Lines const lines = split(block, "\n");
    Entry entry;
    entry.name = lines.front();
    for (std::string const& line : std::span(lines).subspan(1)) {
      std::size_t const space = line.find(' ');
      std::string_view const key = std::string_view(line).substr(0, space);
      std::string value = line.substr(space + 1);
      if (key == "use") entry.forms.push_back(std::move(value));
      if (key == "what") entry.what = std::move(value);
      if (key == "arg") entry.arguments.push_back(std::move(value));
      if (key == "draws") entry.draws = std::move(value);
      if (key == "try") entry.examples.push_back(std::move(value));
      if (key == "run") entry.commands.push_back(std::move(value));
      if (key == "also") entry.also = split(value, " ");
    }
    entries.push_back(std::move(entry));
  }
}

// language.txt: name | forms | second example | see also; the rest stands in the function's row.
void addLanguageEntries(std::vector<Entry>& entries) {
  for (std::string const& line : split(kLanguageHelp, "\n")) {
    if (line.starts_with('#')) continue;
    Lines const columns = split(line, " | ");
    for (auto const table : language::functionTables()) {
      auto const row = std::ranges::find(table, columns[0], &language::FunctionRow::name);
      if (row == table.end()) continue;
      Entry entry;
      entry.name = columns[0];
      entry.forms = {columns[1]};
      entry.what = row->what;
      entry.examples = {row->example, columns[2]};
      entry.also = split(columns[3], " ");
      entries.push_back(std::move(entry));
    }
  }
}

std::vector<Entry> const& entries() {
  static std::vector<Entry> const all = [] {
    std::vector<Entry> made;
    addStreamEntries(made);
    addLanguageEntries(made);
    return made;
  }();
  return all;
}

Entry const* find(std::string_view topic) {
  auto const named = std::ranges::find(entries(), topic, &Entry::name);
  auto const found =
      named != entries().end() ? named : std::ranges::find_if(entries(), [&](Entry const& entry) {
        return embedded_host::equalIgnoringAsciiCase(entry.name, topic);
      });
  return found == entries().end() ? nullptr : &*found;
}

std::string textOf(Entry const& entry, std::size_t width) {
  std::string out;
  for (std::string const& form : entry.forms) out += "  " + form + '\n';
  out += wrapped("  ", entry.what, 2, width);
  for (std::string const& argument : entry.arguments) out += wrapped("    ", argument, 6, width);
  out += wrapped("  draws ", entry.draws, 8, width);
  for (std::string const& example : entry.examples) out += "    > " + example + '\n';
  for (std::string const& command : entry.commands) out += "    $ " + command + '\n';
  return out + wrapped("  see also ", fmt::format("{}", fmt::join(entry.also, " ")), 4, width);
}

std::string listOf(std::set<std::string> const& names, std::size_t width) {
  std::string out;
  std::size_t column = 0;
  for (std::string const& name : names) {
    if (column > 0 && column + 2 + name.size() >= width) {
      out += '\n';
      column = 0;
    }
    out += "  " + name;
    column += 2 + name.size();
  }
  return out + '\n';
}

// Functions and members of classes that have no entry: those of a program around the shell.
std::set<std::string> withoutEntry(language::Session const& session) {
  std::set<std::string> names;
  auto const add = [&](std::string const& name) {
    if (!find(name)) names.insert(name);
  };
  for (std::string const& name : session.vm().functions().names())
    if (name.find('.') == std::string::npos) add(name);  // others are the host's own
  for (std::string const& name : session.vm().classes().names()) {
    auto const definition = session.vm().classes().find(name);
    for (auto const& property : definition->properties)
      if (!property.hidden) add(property.name);
    for (auto const& [method, body] : definition->methods) add(method);
    for (auto const& [method, body] : definition->staticMethods) add(name + '.' + method);
  }
  return names;
}

std::string overview(std::size_t width, language::Session const& session) {
  std::string out =
      "  Type a statement; its value is shown unless a semicolon ends it.\n"
      "    x = rand(2,3)\n"
      "    s = RandStream('philox4x32_10','Seed',7); randn(s,1,5)\n"
      "    for k = 1:3, print(k, randi(6)), end\n"
      "  help('name') or help name tells more of one of these:\n";
  std::vector<Entry> streams;
  addStreamEntries(streams);
  std::set<std::string> names;
  for (Entry const& entry : streams) names.insert(entry.name);
  out += listOf(names, width) + "  and of the language's own functions:\n";
  std::set<std::string> others;
  for (Entry const& entry : entries())
    if (!names.contains(entry.name)) others.insert(entry.name);
  out += listOf(others, width);
  std::set<std::string> const rest = withoutEntry(session);
  return rest.empty() ? out : out + "  there are also, without a text:\n" + listOf(rest, width);
}

// Advice for a name of another system, with the help of the first topic that it names.
std::string adviceText(std::string_view topic, std::string const& advice, std::size_t width) {
  std::string out =
      wrapped("  ", fmt::format("There is no '{}' here; {}", topic, advice), 2, width);
  std::string name;
  for (char const c : advice + ' ') {
    if (std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '.') {
      name += c;
    } else if (Entry const* const entry = find(name)) {
      return out + textOf(*entry, width);
    } else {
      name.clear();
    }
  }
  return out;
}

}  // namespace

std::string helpText(std::string_view topic, int width, language::Session const& session) {
  auto const columns = static_cast<std::size_t>(width);
  if (topic.empty()) return overview(columns, session);
  if (Entry const* const entry = find(topic)) return textOf(*entry, columns);
  std::string lower(topic);
  for (char& c : lower)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  std::string const advice = session.vm().functions().adviceFor(lower);
  if (!advice.empty()) return adviceText(topic, advice, columns);
  std::vector<std::string> known;
  for (Entry const& entry : entries()) known.push_back(entry.name);
  std::string const closest = embedded_host::closestName(topic, known);
  language::raiseFault(
      "help", "There is no help on '" + std::string(topic) + "'.",
      closest.empty() ? "help alone lists the topics" : "did you mean " + closest + "?", 1);
}

}  // namespace shell
