#include "language/lexer.h"

#include <array>
#include <charconv>
#include <cmath>
#include <utility>

#include "language/fault.h"
#include "language/limits.h"
#include "language/unicode.h"

namespace language {

namespace {

using enum TokenKind;

constexpr std::pair<std::string_view, TokenKind> kKeywords[] = {
    {"if", kwIf},       {"elseif", kwElseif},    {"else", kwElse}, {"end", kwEnd},
    {"for", kwFor},     {"while", kwWhile},      {"try", kwTry},   {"catch", kwCatch},
    {"break", kwBreak}, {"continue", kwContinue}};

// Longest first: the first that matches is the operator.
constexpr std::pair<std::string_view, TokenKind> kOperators[] = {{"==", equal},
                                                                 {"~=", notEqual},
                                                                 {"!=", notEqual},
                                                                 {"<=", lessEqual},
                                                                 {">=", greaterEqual},
                                                                 {"&&", andAlso},
                                                                 {"||", orElse},
                                                                 {".*", elementTimes},
                                                                 {"./", elementDivide},
                                                                 {".\\", elementLeftDivide},
                                                                 {".^", elementPower},
                                                                 {".'", transpose},
                                                                 {"=", assign},
                                                                 {"+", plus},
                                                                 {"-", minus},
                                                                 {"*", times},
                                                                 {"/", divide},
                                                                 {"\\", leftDivide},
                                                                 {"^", power},
                                                                 {"<", less},
                                                                 {">", greater},
                                                                 {"&", elementAnd},
                                                                 {"|", elementOr},
                                                                 {"~", logicalNot},
                                                                 {"!", logicalNot},
                                                                 {":", colon},
                                                                 {".", dot},
                                                                 {",", comma},
                                                                 {";", semicolon},
                                                                 {"(", openParen},
                                                                 {")", closeParen},
                                                                 {"[", openSquare},
                                                                 {"]", closeSquare},
                                                                 {"{", openBrace},
                                                                 {"}", closeBrace}};

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool isBlank(char c) { return c == ' ' || c == '\t'; }

int hexDigit(char c) {
  if (isDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Places fit 32 bits, since the length of the source is limited.
SourceSpan span(std::size_t begin, std::size_t end) {
  return {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(end)};
}

class Lexer {
 public:
  explicit Lexer(std::string_view source) : source_(source) {}

  std::vector<Token> run() {
    if (source_.size() > kMaxSourceBytes) {
      raiseSyntax(span(0, 0), "The source text is too long (more than 4 MiB).");
    }
    if (source_.starts_with("\xEF\xBB\xBF")) at_ = 3;  // byte-order mark
    if (source_.substr(at_).starts_with("#!")) skipLine();
    while (skipBlanks(), at_ < source_.size()) next();
    spaceBefore_ = true;
    begin_ = source_.size();
    push(endOfSource);
    return std::move(tokens_);
  }

 private:
  char peek(std::size_t ahead = 0) const {
    return at_ + ahead < source_.size() ? source_[at_ + ahead] : '\0';
  }
  bool insideMatrix() const { return !brackets_.empty() && brackets_.back() != '('; }

  Token& push(TokenKind kind) {
    Token token;
    token.kind = kind;
    token.spaceBefore = spaceBefore_;
    token.span = span(begin_, at_ > begin_ ? at_ : begin_);
    tokens_.push_back(std::move(token));
    spaceBefore_ = false;
    return tokens_.back();
  }

  void skipLine() {
    while (at_ < source_.size() && source_[at_] != '\n') ++at_;
  }

  // True when the line at_ stands on holds nothing but `mark` (block comments).
  bool lineIsOnly(std::string_view mark) const {
    std::size_t first = at_;
    while (first > 0 && isBlank(source_[first - 1])) --first;
    if (first > 0 && source_[first - 1] != '\n') return false;
    std::size_t last = at_ + mark.size();
    while (last < source_.size() && (isBlank(source_[last]) || source_[last] == '\r')) ++last;
    return source_.substr(at_).starts_with(mark) &&
           (last >= source_.size() || source_[last] == '\n');
  }

  void skipBlockComment() {
    std::size_t const start = at_;
    int depth = 0;
    do {
      while (isBlank(peek())) ++at_;
      if (lineIsOnly("%{")) ++depth;
      if (lineIsOnly("%}")) --depth;
      skipLine();
      if (depth > 0 && at_ >= source_.size()) {
        raiseSyntax(span(start, start + 2), "This comment is never closed.",
                    "a line with %} alone closes it", true);
      }
      if (depth > 0) ++at_;
    } while (depth > 0);
  }

  void skipBlanks() {
    for (;;) {
      char const c = peek();
      if (isBlank(c) || c == '\r') {
        ++at_;
      } else if (c == '%') {
        lineIsOnly("%{") ? skipBlockComment() : skipLine();
      } else if (source_.substr(at_).starts_with("...")) {
        skipLine();
        if (at_ < source_.size()) {
          ++at_;
        } else {
          raiseSyntax(span(at_ - 1, at_), "The line goes on after '...', but the source ends.", "",
                      true);
        }
      } else if (c == '\n' && !brackets_.empty() && brackets_.back() == '(') {
        ++at_;
      } else {
        return;
      }
      spaceBefore_ = true;
    }
  }

  void next() {
    begin_ = at_;
    char const c = peek();
    if (c == '\n') {
      ++at_;
      push(newline);
      spaceBefore_ = true;
    } else if (isDigit(c) || (c == '.' && isDigit(peek(1)))) {
      number();
    } else if (isLetter(c)) {
      word();
    } else if (c == '"') {
      quoted('"', string);
    } else if (c == '\'') {
      quoteIsTranspose() ? (++at_, void(push(conjugateTranspose))) : quoted('\'', text);
    } else {
      operatorOrBracket();
    }
  }

  // A quote after a value is the transpose; inside a matrix white space before it starts a text.
  bool quoteIsTranspose() const {
    if (tokens_.empty() || (spaceBefore_ && insideMatrix())) return false;
    switch (tokens_.back().kind) {
      case TokenKind::number:
      case integer:
      case name:
      case endIndex:
      case closeParen:
      case closeSquare:
      case closeBrace:
      case transpose:
      case conjugateTranspose:
      case text:
      case string:
        return true;
      default:
        return false;
    }
  }

  void number() {
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
    Token& token = push(TokenKind::number);
    token.value = value;
    token.imaginary = imaginary;
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
  void prefixedInteger(int bitsPerDigit) {
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
    Token& token = push(integer);
    token.bits = value;
    token.integerClass = (isSigned ? kSigned : kUnsigned)[row];
  }

  void word() {
    while (isLetter(peek()) || isDigit(peek())) ++at_;
    std::string_view const spelled = source_.substr(begin_, at_ - begin_);
    bool const afterDot = !tokens_.empty() && tokens_.back().kind == dot && !spaceBefore_;
    TokenKind kind = name;
    for (auto const& [keyword, keywordKind] : kKeywords) {
      if (!afterDot && spelled == keyword) kind = keywordKind;
    }
    if (kind == kwEnd && !brackets_.empty()) kind = endIndex;
    push(kind);
  }

  // A text in single quotes doubles its quote; one in double quotes does so too, and knows
  // backslash escapes.
  void quoted(char quote, TokenKind kind) {
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
    push(kind).content = std::move(content);
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

  void operatorOrBracket() {
    std::string_view const rest = source_.substr(at_);
    for (auto const& [spelling, kind] : kOperators) {
      if (!rest.starts_with(spelling)) continue;
      at_ += spelling.size();
      trackBracket(spelling[0], kind);
      push(kind);
      return;
    }
    unknownCharacter();
  }

  void trackBracket(char spelling, TokenKind kind) {
    if (kind == openParen || kind == openSquare || kind == openBrace) {
      brackets_.push_back(spelling);
    } else if ((kind == closeParen || kind == closeSquare || kind == closeBrace) &&
               !brackets_.empty()) {
      brackets_.pop_back();  // the parser tells a wrong one
    }
  }

  [[noreturn]] void unknownCharacter() {
    auto const decoded = decodeUtf8(source_, at_);
    if (!decoded) raiseSyntax(span(at_, at_ + 1), "This byte is not valid UTF-8.");
    if (decoded->point < 0x20 || decoded->point == 0x7F) {
      raiseSyntax(span(at_, at_ + 1), "A control character is no part of a program.");
    }
    bool const curlyQuote = decoded->point >= 0x2018 && decoded->point <= 0x201F;
    raiseSyntax(span(at_, decoded->next), "This character is no part of the language.",
                curlyQuote      ? "texts stand in straight quotes: 'text'"
                : peek() == '#' ? "comments start with %"
                                : "");
  }

  std::string_view source_;
  std::size_t at_ = 0;
  std::size_t begin_ = 0;
  bool spaceBefore_ = false;
  std::vector<char> brackets_;
  std::vector<Token> tokens_;
};

}  // namespace

std::vector<Token> tokenize(std::string_view source) { return Lexer(source).run(); }

}  // namespace language
