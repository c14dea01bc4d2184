#include "shell/error_text.h"

#include <fmt/format.h>

#include <algorithm>

#include "embedded_host/messages.h"
#include "shell/terminal.h"
#include "shell/wrapped_text.h"

namespace shell {

namespace {

using language::SourceSpan;

constexpr std::size_t kLongestMessage = 600;

// The part of a line around a span that fits the terminal, with the caret line's two numbers.
struct Excerpt {
  std::string text;
  std::size_t caret = 0;   // columns before it
  std::size_t length = 1;  // columns under the span
  std::size_t lineNumber = 1;
};

// One character per column: control characters and broken bytes would move the others.
std::string printable(std::string_view text) {
  std::string out;
  for (char const c : text) {
    auto const byte = static_cast<unsigned char>(c);
    out += c == '\t' ? ' ' : byte < 0x20 || byte == 0x7F ? '?' : c;
  }
  return out;
}

Excerpt excerpt(std::string_view source, SourceSpan spot, std::size_t width) {
  std::size_t const begin = std::min<std::size_t>(spot.begin, source.size());
  std::size_t const end = std::clamp<std::size_t>(spot.end, begin, source.size());
  std::size_t const before = begin == 0 ? std::string_view::npos : source.rfind('\n', begin - 1);
  std::size_t const lineBegin = before == std::string_view::npos ? 0 : before + 1;
  std::size_t const lineEnd = std::min(source.find('\n', begin), source.size());
  Excerpt found;
  found.lineNumber =
      1 + static_cast<std::size_t>(std::count(source.begin(), source.begin() + lineBegin, '\n'));
  // A line longer than the terminal is cut so that the caret stays in sight.
  std::size_t from = lineBegin;
  std::size_t to = lineEnd;
  if (to - from > width) {
    std::size_t const lead = width / 2;
    from = begin - lineBegin > lead ? begin - lead : lineBegin;
    while (from < begin && continues(source[from])) ++from;
    to = std::min(lineEnd, from + width - 6);
    while (to > from && to < lineEnd && continues(source[to])) --to;
  }
  std::string const lead = from > lineBegin ? "..." : "";
  found.text = lead + printable(source.substr(from, to - from)) + (to < lineEnd ? "..." : "");
  found.caret = lead.size() + displayWidth(source.substr(from, begin - from));
  std::size_t const shownEnd = std::clamp(end, begin, to);
  found.length = std::max<std::size_t>(1, displayWidth(source.substr(begin, shownEnd - begin)));
  return found;
}

std::string hintOf(language::SourceError const& error) {
  std::string const own = error.hint();
  return own.empty() ? embedded_host::renderHint(error.cause().GetBaseMsgIDObj()) : own;
}

std::string underline(Excerpt const& found) {
  return std::string(found.caret, ' ') + '^' + std::string(found.length - 1, '~');
}

// The name of the failing call, before the message: "rand: ...". The whole span must be the call.
std::string calledName(std::string_view source, SourceSpan whole) {
  std::string_view const text =
      source.substr(std::min<std::size_t>(whole.begin, source.size()), whole.end - whole.begin);
  std::size_t const open =
      text.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.");
  std::string_view const name = text.substr(0, open);
  bool const isName = !name.empty() && name.size() <= 64 && (name[0] < '0' || name[0] > '9');
  if (!isName) return "";
  if (open == std::string_view::npos) return std::string(name);
  if (text[open] != '(') return "";
  int depth = 0;
  for (std::size_t i = open; i < text.size(); ++i) {
    if (text[i] == '(') ++depth;
    if (text[i] == ')' && --depth == 0 && i + 1 < text.size()) return "";
  }
  return std::string(name);
}

}  // namespace

std::string describeError(language::SourceError const& error, ErrorPlace const& place,
                          std::optional<bool> drawn, std::string const& streams) {
  std::size_t const width = static_cast<std::size_t>(std::max(place.width, 40)) - 1;
  Excerpt const found = excerpt(place.source, error.spot(), width - 4);
  bool const interrupted = error.identifier() == "TALVOR:language:interrupted";
  std::string const name = interrupted ? "" : calledName(place.source, error.whole());
  std::string const where =
      place.fileName.empty() ? "" : fmt::format("{}:{}: ", place.fileName, found.lineNumber);
  std::string message = printable(error.what());
  bool const named = name.empty() || message.find(name) != std::string::npos;
  if (message.size() > kLongestMessage) message = message.substr(0, kLongestMessage) + " ...";
  std::string out = wrapped("  ", where + (named ? "" : name + ": ") + message, 2, width);
  std::string const hint = hintOf(error);
  if (!place.source.empty()) {
    out += "    " + found.text + "\n    " + underline(found);
    bool const fits = 4 + found.caret + found.length + 3 + displayWidth(hint) <= width;
    if (!hint.empty() && fits) out += "   " + hint;
    out += '\n';
    if (!hint.empty() && !fits) out += wrapped("    ", hint, 4, width);
  } else if (!hint.empty()) {
    out += wrapped("    ", hint, 4, width);
  }
  out += fmt::format("  [{}]", error.identifier());
  if (drawn) out += *drawn ? "  numbers were drawn before it" : "  nothing was drawn";
  if (!streams.empty()) out += ", from " + streams;
  // The terminal has written ^C on the line.
  return (interrupted ? "\n" : "") + out + '\n';
}

std::string describeError(foundation::core::except::AnyException const& error) {
  std::string const hint = embedded_host::renderHint(error.GetBaseMsgIDObj());
  std::string text = std::string("  ") + error.text() + '\n';
  if (!hint.empty()) text += "    " + hint + '\n';
  return text + "  [" + error.GetID() + "]\n";
}

ErrorFacts factsOf(language::SourceError const& error, std::string_view source, bool drawn) {
  ErrorFacts facts{error.identifier(), error.what(), hintOf(error), drawn};
  std::string_view const before = source.substr(0, error.spot().begin);
  if (!source.empty()) {
    auto const lines = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
    std::string_view const ofLine = before.substr(before.rfind('\n') + 1);  // npos + 1 is 0
    facts.place = {lines + 1, displayWidth(ofLine) + 1};
  }
  return facts;
}

std::string describeWarning(foundation::core::except::MessageId const& id, std::string const& text,
                            ErrorPlace const& place, std::optional<SourceSpan> call) {
  std::size_t const width = static_cast<std::size_t>(std::max(place.width, 40)) - 1;
  std::string out = wrapped("  ", "warning: " + text, 2, width);
  if (call && !place.source.empty()) {
    Excerpt const found = excerpt(place.source, *call, width - 4);
    out += "    " + found.text + "\n    " + underline(found) + '\n';
  }
  std::string const hint = embedded_host::renderHint(id);
  if (!hint.empty()) out += wrapped("    ", hint, 4, width);
  return out + fmt::format("  [{}]\n", id.identifier());
}

}  // namespace shell
