#include "language/literals.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string>
#include <utility>

#include "language/fault.h"
#include "language/unicode.h"

namespace language {

namespace {

using enum TokenKind;

int hexDigit(char c) {
  if (isDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

class LiteralReader {
 public:
  LiteralReader(std::string_view source, std::size_t begin)
      : source_(source), at_(begin), begin_(begin) {}

  Token number() {
    if (peek() == '0' && (peek(1) == 'x' || peek(1) == 'X')) return prefixedInteger(4);
    if (peek() == '0' && (peek(1) == 'b' || peek(1) == 'B')) return prefixedInteger(1);
    while (isDigit(peek())) ++at_;
    // In 1./x and 1.*x the point belongs to the operator.
    bool const pointIsOperator =
        peek() == '.' && (peek(1) == '*' || peek(1) == '/' || peek(1) == '\\' || peek(1) == '^' ||
                          peek(1) == '\'' || (peek(1) == '.' && peek(2) == '.'));
    if (peek() == '.' && !pointIsOperator) {
      ++at_;
      while (isDigit(peek())) ++at_;
    }
    std::size_t const sign = peek(1) == '+' || peek(1) == '-' ? 2 : 1;
    if ((peek() == 'e' || peek() == 'E') && isDigit(peek(sign))) {
      at_ += sign;
      while (isDigit(peek())) ++at_;
    }
    double value = 0;
    auto const [end, status] =
        std::from_chars(source_.data() + begin_, source_.data() + at_, value);
    if (status == std::errc::result_out_of_range) {
      // Too large or too small: the exponent, or else the number of digits, tells which.
      std::string_view const digits = source_.substr(begin_, at_ - begin_);
      std::size_t const exponent = digits.find_first_of("eE");
      bool const small =
          exponent != std::string_view::npos ? digits[exponent + 1] == '-' : digits.front() == '0';
      value = small ? 0.0 : HUGE_VAL;
    }
    bool const imaginary =
        (peek() == 'i' || peek() == 'j') && !isLetter(peek(1)) && !isDigit(peek(1));
    if (imaginary) ++at_;
    endOfNumber();
    Token token = finished(TokenKind::number);
    token.value = value;
    token.imaginary = imaginary;
    return token;
  }

  // A text in single quotes doubles its quote; one in double quotes does so too, and knows
  // backslash escapes.
  Token text() {
    char const quote = peek();
    std::u16string content;
    ++at_;
    for (;;) {
      char const c = peek();
      if (at_ >= source_.size() || c == '\n') {
        raiseSyntax(span(begin_, begin_ + 1), "This text is never closed.",
                    std::string("it ends with ") + quote + " on the same line");
      }
      if (c == '\0') raiseSyntax(span(at_, at_ + 1), "A NUL byte is no part of a text.");
      if (c == quote) {
        if (peek(1) != quote) break;
        content += static_cast<char16_t>(quote);
        at_ += 2;
      } else if (c == '\\' && quote == '"') {
        escape(content);
      } else {
        auto const decoded = decodeUtf8(source_, at_);
        if (!decoded) raiseSyntax(span(at_, at_ + 1), "This byte is not valid UTF-8.");
        appendUtf16(content, decoded->point);
        at_ = decoded->next;
      }
    }
    ++at_;
    Token token = finished(quote == '"' ? TokenKind::string : TokenKind::text);
    token.content = std::move(content);
    return token;
  }

 private:
  char peek(std::size_t ahead = 0) const {
    return at_ + ahead < source_.size() ? source_[at_ + ahead] : '\0';
  }

  Token finished(TokenKind kind) const {
    Token token;
    token.kind = kind;
    token.span = span(begin_, at_);
    return token;
  }

  void endOfNumber() {
    if (isLetter(peek()) || isDigit(peek())) {
      while (isLetter(peek()) || isDigit(peek())) ++at_;
      raiseSyntax(span(begin_, at_), "This is no number.",
                  "write the name and the number apart, or with an operator between");
    }
  }

  // 0xFF, 0b1010: the smallest unsigned class that holds the digits, or the class of a suffix u8 to
  // u64, s8 to s64.
  Token prefixedInteger(int bitsPerDigit) {
    at_ += 2;
    std::uint64_t value = 0;
    int used = 0;
    int digits = 0;
    for (; hexDigit(peek()) >= 0 && hexDigit(peek()) < (1 << bitsPerDigit); ++at_, ++digits) {
      if (value >> (64 - bitsPerDigit) != 0)
        raiseSyntax(span(begin_, at_ + 1), "More than 64 bits.");
      value = (value << bitsPerDigit) | static_cast<std::uint64_t>(hexDigit(peek()));
    }
    for (std::uint64_t rest = value; rest != 0; rest >>= 1) ++used;
    int width = used <= 8 ? 8 : used <= 16 ? 16 : used <= 32 ? 32 : 64;
    bool isSigned = false;
    if (peek() == 'u' || peek() == 's') {
      isSigned = peek() == 's';
      ++at_;
      int suffix = 0;
      while (isDigit(peek()) && suffix < 100) suffix = suffix * 10 + (source_[at_++] - '0');
      bool const known = suffix == 8 || suffix == 16 || suffix == 32 || suffix == 64;
      if (!known) {
        raiseSyntax(span(begin_, at_), "This is no number.",
                    "the suffixes are u8 to u64 and s8 to s64");
      }
      if (suffix < width && used > suffix) {
        raiseSyntax(span(begin_, at_), "The number has more bits than its class.");
      }
      width = suffix;
    }
    if (digits == 0) raiseSyntax(span(begin_, at_), "This is no number.", "digits follow 0x or 0b");
    endOfNumber();
    constexpr std::array<txClassID, 4> kUnsigned{txClassUint8, txClassUint16, txClassUint32,
                                                 txClassUint64};
    constexpr std::array<txClassID, 4> kSigned{txClassInt8, txClassInt16, txClassInt32,
                                               txClassInt64};
    std::size_t const row = width == 8 ? 0 : width == 16 ? 1 : width == 32 ? 2 : 3;
    Token token = finished(integer);
    token.bits = value;
    token.integerClass = (isSigned ? kSigned : kUnsigned)[row];
    return token;
  }

  void escape(std::u16string& content) {
    constexpr std::pair<char, char16_t> kEscapes[] = {{'n', u'\n'}, {'t', u'\t'},  {'r', u'\r'},
                                                      {'"', u'"'},  {'\\', u'\\'}, {'\'', u'\''}};
    std::size_t const start = at_++;
    char const letter = peek();
    for (auto const& [key, meaning] : kEscapes) {
      if (letter == key) {
        content += meaning;
        ++at_;
        return;
      }
    }
    if (letter == 'u') {
      ++at_;
      unsigned unit = 0;
      for (int i = 0; i < 4; ++i, ++at_) {
        int const digit = hexDigit(peek());
        if (digit < 0) raiseSyntax(span(start, at_), "\\u takes four hexadecimal digits.");
        unit = unit * 16 + static_cast<unsigned>(digit);
      }
      content += static_cast<char16_t>(unit);
      return;
    }
    raiseSyntax(span(start, at_ + 1), "Unknown escape.",
                "known are \\n \\t \\r \\\" \\' \\\\ and \\uXXXX; single quotes know none");
  }

  std::string_view source_;
  std::size_t at_;
  std::size_t begin_;
};

}  // namespace

Token readNumber(std::string_view source, std::size_t begin) {
  return LiteralReader(source, begin).number();
}

Token readText(std::string_view source, std::size_t begin) {
  return LiteralReader(source, begin).text();
}

}  // namespace language
