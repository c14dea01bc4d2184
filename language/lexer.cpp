#include "language/lexer.h"

#include <utility>

#include "language/fault.h"
#include "language/limits.h"
#include "language/literals.h"
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

bool isBlank(char c) { return c == ' ' || c == '\t'; }

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

  void push(TokenKind kind) {
    Token token;
    token.kind = kind;
    token.span = span(begin_, at_ > begin_ ? at_ : begin_);
    push(std::move(token));
  }

  void push(Token token) {
    token.spaceBefore = spaceBefore_;
    at_ = token.span.end;
    tokens_.push_back(std::move(token));
    spaceBefore_ = false;
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
      push(readNumber(source_, at_));
    } else if (isLetter(c)) {
      word();
    } else if (c == '"') {
      push(readText(source_, at_));
    } else if (c == '\'') {
      quoteIsTranspose() ? (++at_, push(conjugateTranspose)) : push(readText(source_, at_));
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
