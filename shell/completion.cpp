#include "shell/completion.h"

#include <algorithm>
#include <functional>

#include "embedded_host/object_system.h"
#include "embedded_host/text.h"
#include "tfl_rng/generator_catalogue.h"

namespace shell {

namespace {

// Texts that calls of this library take, beside the names of generators.
constexpr char const* kQuotedWords[] = {
    "Ziggurat",      "Polar", "Inversion", "single", "double", "like",  "Seed",   "NumStreams",
    "StreamIndices", "int8",  "uint8",     "int16",  "uint16", "int32", "uint32", "logical"};

constexpr char const* kKeywords[] = {"if",    "elseif", "else",  "end",   "for",
                                     "while", "try",    "catch", "break", "continue"};

bool isWord(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

std::size_t wordStart(std::string_view line, std::size_t end) {
  while (end > 0 && isWord(line[end - 1])) --end;
  return end;
}

// A quote that opens a text: one that follows no value, and is not closed again.
bool insideText(std::string_view line) {
  char open = '\0';
  for (std::size_t i = 0; i < line.size(); ++i) {
    char const c = line[i];
    if (open != '\0') {
      if (c == open) open = '\0';
    } else if (c == '"') {
      open = c;
    } else if (c == '\'') {
      char const before = i > 0 ? line[i - 1] : ' ';
      if (!isWord(before) && before != ')' && before != ']' && before != '}' && before != '\'')
        open = c;
    }
  }
  return open != '\0';
}

// Properties and methods of the variable or class before the point.
std::vector<std::string> membersOf(std::string_view owner, language::Session const& session) {
  std::vector<std::string> names;
  if (txArray const* value = session.variable(owner)) {
    if (auto const definition = embedded_host::classOf(*value)) {
      for (auto const& property : definition->properties) {
        if (!property.hidden) names.push_back(property.name);
      }
      for (auto const& [name, method] : definition->methods) names.push_back(name);
    }
  } else if (auto const definition = session.vm().classes().find(owner)) {
    for (auto const& [name, method] : definition->staticMethods) names.push_back(name);
  }
  return names;
}

}  // namespace

Completion complete(std::string_view line, language::Session const& session) {
  Completion completion{wordStart(line, line.size()), {}};
  std::string_view const word = line.substr(completion.start);
  std::vector<std::string> candidates;
  if (insideText(line)) {
    candidates.assign(std::begin(kQuotedWords), std::end(kQuotedWords));
    for (tfl_rng::Generator const& generator : tfl_rng::generators()) {
      candidates.emplace_back(generator.name);
      if (*generator.traits.shortName) candidates.emplace_back(generator.traits.shortName);
    }
  } else if (completion.start > 0 && line[completion.start - 1] == '.') {
    std::size_t const end = completion.start - 1;
    std::size_t const owner = wordStart(line, end);
    candidates = membersOf(line.substr(owner, end - owner), session);
  } else {
    candidates = session.knownNames();
    candidates.insert(candidates.end(), std::begin(kKeywords), std::end(kKeywords));
  }
  // The internal names of the host have points in them and are nobody's to type.
  std::erase_if(candidates, [&](std::string const& name) {
    return name.size() < word.size() || name.find('.') != std::string::npos ||
           !embedded_host::equalIgnoringAsciiCase(std::string_view(name).substr(0, word.size()),
                                                  word);
  });
  // Where some are spelled as they were typed, the others are not meant.
  auto const asTyped = [&](std::string const& name) { return name.starts_with(word); };
  if (std::ranges::any_of(candidates, asTyped)) std::erase_if(candidates, std::not_fn(asTyped));
  std::sort(candidates.begin(), candidates.end());
  candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
  completion.words = std::move(candidates);
  return completion;
}

std::string commonPrefix(std::vector<std::string> const& words) {
  if (words.empty()) return "";
  std::string prefix = words.front();
  for (std::string const& word : words) {
    auto const [a, b] = std::mismatch(prefix.begin(), prefix.end(), word.begin(), word.end());
    prefix.erase(a, prefix.end());
  }
  return prefix;
}

}  // namespace shell
