#pragma once

// Expressions by binding power.

#include "language/token_reader.h"

namespace language {

class ExpressionParser {
 public:
  explicit ExpressionParser(TokenReader& reader) : reader_(reader) {}

  ExpressionPtr parse() { return binary(0); }
  // The list [a, ~, b(2)] that stands left of an assignment.
  std::vector<ExpressionPtr> targets();

 private:
  // Where a token stands: white space separates elements inside a matrix and nowhere else.
  enum class Context { plain, matrix };

  template <class Node>
  ExpressionPtr make(SourceSpan span, int heightBelow, Node node) const;
  ExpressionPtr binary(int minimum);
  ExpressionPtr range(ExpressionPtr first, int power);
  ExpressionPtr unary();
  ExpressionPtr postfix(ExpressionPtr base);
  ExpressionPtr primary();
  ExpressionPtr parenthesized();
  ExpressionPtr matrix(TokenKind closing, bool brace);
  ExpressionPtr member(ExpressionPtr base);
  struct Arguments {
    std::vector<ExpressionPtr> list;
    SourceSpan closing;
  };
  Arguments arguments(Token const& opening, TokenKind closing);
  bool startsNewElement() const;
  [[noreturn]] void neverClosed(SourceSpan opening) const;

  TokenReader& reader_;
  Context context_ = Context::plain;
  int indexDepth_ = 0;  // `end` has a meaning when positive
};

}  // namespace language
