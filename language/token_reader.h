#pragma once

// What the two halves of the parser share: the tokens and the place among them.

#include <string>
#include <string_view>
#include <vector>

#include "language/ast.h"
#include "language/fault.h"
#include "language/limits.h"

namespace language {

class TokenReader {
 public:
  TokenReader(std::string_view source, std::vector<Token> tokens)
      : source_(source), tokens_(std::move(tokens)) {}

  Token const& peek(std::size_t ahead = 0) const {
    return tokens_[at_ + ahead < tokens_.size() ? at_ + ahead : tokens_.size() - 1];
  }
  bool at(TokenKind kind) const { return peek().kind == kind; }
  Token const& take() { return at_ + 1 < tokens_.size() ? tokens_[at_++] : tokens_.back(); }
  bool takeIf(TokenKind kind) {
    if (!at(kind)) return false;
    take();
    return true;
  }
  std::string_view spelling(Token const& token) const {
    return source_.substr(token.span.begin, token.span.end - token.span.begin);
  }
  std::string quoted(Token const& token) const {
    return token.kind == TokenKind::newline       ? "the end of the line"
           : token.kind == TokenKind::endOfSource ? "the end"
                                                  : "'" + std::string(spelling(token)) + "'";
  }
  // Raises: `token` cannot stand where it does.
  [[noreturn]] void unexpected(Token const& token, std::string const& wanted) const {
    raiseSyntax(token.span, "Here " + wanted + " was expected, not " + quoted(token) + ".", "",
                token.kind == TokenKind::endOfSource);
  }

  int depth() const { return depth_; }
  // Counts one level of nesting while it lives.
  class Level {
   public:
    Level(TokenReader& reader, SourceSpan span) : reader_(reader) {
      if (++reader_.depth_ > kMaxNesting) {
        --reader_.depth_;
        tooDeep(span);
      }
    }
    ~Level() { --reader_.depth_; }
    Level(Level const&) = delete;
    Level& operator=(Level const&) = delete;

   private:
    TokenReader& reader_;
  };
  [[noreturn]] static void tooDeep(SourceSpan span) {
    raiseSyntax(
        span, "This is nested too deeply (more than " + std::to_string(kMaxNesting) + " levels).");
  }

 private:
  std::string_view source_;
  std::vector<Token> tokens_;
  std::size_t at_ = 0;
  int depth_ = 0;
};

}  // namespace language
