#include "language/expression_parser.h"

#include <algorithm>
#include <utility>

namespace language {

namespace {

using enum TokenKind;

struct BinaryRow {
  TokenKind token;
  Operator op;
  int power;  // higher binds tighter
};

constexpr int kRangePower = 6;
constexpr int kUnaryPower = 9;
constexpr int kPowerPower = 10;
constexpr BinaryRow kBinary[] = {{orElse, Operator::orElse, 1},
                                 {andAlso, Operator::andAlso, 2},
                                 {elementOr, Operator::elementOr, 3},
                                 {elementAnd, Operator::elementAnd, 4},
                                 {equal, Operator::equal, 5},
                                 {notEqual, Operator::notEqual, 5},
                                 {less, Operator::less, 5},
                                 {lessEqual, Operator::lessEqual, 5},
                                 {greater, Operator::greater, 5},
                                 {greaterEqual, Operator::greaterEqual, 5},
                                 {plus, Operator::add, 7},
                                 {minus, Operator::subtract, 7},
                                 {times, Operator::multiply, 8},
                                 {elementTimes, Operator::elementMultiply, 8},
                                 {divide, Operator::divide, 8},
                                 {elementDivide, Operator::elementDivide, 8},
                                 {leftDivide, Operator::leftDivide, 8},
                                 {elementLeftDivide, Operator::elementLeftDivide, 8},
                                 {power, Operator::power, kPowerPower},
                                 {elementPower, Operator::elementPower, kPowerPower}};

BinaryRow const* binaryRow(TokenKind kind) {
  auto const row = std::find_if(std::begin(kBinary), std::end(kBinary),
                                [&](BinaryRow const& r) { return r.token == kind; });
  return row == std::end(kBinary) ? nullptr : row;
}

int highest(std::vector<ExpressionPtr> const& list) {
  int height = 0;
  for (auto const& item : list) height = std::max(height, item->height);
  return height;
}

template <class T>
class Restore {
 public:
  Restore(T& variable, T value) : variable_(variable), old_(std::exchange(variable, value)) {}
  ~Restore() { variable_ = old_; }
  Restore(Restore const&) = delete;
  Restore& operator=(Restore const&) = delete;

 private:
  T& variable_;
  T old_;
};

}  // namespace

// The levels around the expression and those below it are walked on one stack.
template <class Node>
ExpressionPtr ExpressionParser::make(SourceSpan span, int heightBelow, Node node) const {
  if (reader_.depth() + heightBelow > kMaxNesting) TokenReader::tooDeep(span);
  auto expression = std::make_unique<Expression>();
  expression->span = span;
  expression->height = heightBelow + 1;
  expression->node = std::move(node);
  return expression;
}

void ExpressionParser::neverClosed(SourceSpan opening) const {
  raiseSyntax(opening, "This bracket is never closed.", "", true);
}

// Inside a matrix `a -b` are two elements, `a - b` and `a-b` are one; likewise `a (1)` and `a'b'`.
bool ExpressionParser::startsNewElement() const {
  if (context_ != Context::matrix) return false;
  Token const& token = reader_.peek();
  if (!token.spaceBefore) return false;
  switch (token.kind) {
    case plus:
    case minus:
    case logicalNot:
      return !reader_.peek(1).spaceBefore;
    case openParen:
    case openBrace:
    case dot:
      return true;
    default:
      return false;
  }
}

ExpressionPtr ExpressionParser::binary(int minimum) {
  TokenReader::Level const level(reader_, reader_.peek().span);
  ExpressionPtr left = unary();
  for (;;) {
    if (startsNewElement()) return left;
    Token const& token = reader_.peek();
    if (token.kind == colon && kRangePower >= minimum) {
      left = range(std::move(left), kRangePower);
      continue;
    }
    BinaryRow const* row = binaryRow(token.kind);
    if (!row || row->power < minimum) return left;
    reader_.take();
    // The operators of one row bind from the left; a power takes a signed exponent: 2^-1.
    ExpressionPtr right = binary(row->power + 1);
    SourceSpan const span = join(left->span, right->span);
    int const height = std::max(left->height, right->height);
    left = make(span, height, Binary{row->op, std::move(left), std::move(right)});
  }
}

ExpressionPtr ExpressionParser::range(ExpressionPtr first, int power) {
  reader_.take();
  ExpressionPtr second = binary(power + 1);
  ExpressionPtr third;
  if (reader_.at(colon)) {
    reader_.take();
    third = binary(power + 1);
  }
  Range node{std::move(first), nullptr, nullptr};
  int height = std::max(node.first->height, second->height);
  if (third) {
    height = std::max(height, third->height);
    node.step = std::move(second);
    node.last = std::move(third);
  } else {
    node.last = std::move(second);
  }
  SourceSpan const span = join(node.first->span, node.last->span);
  return make(span, height, std::move(node));
}

ExpressionPtr ExpressionParser::unary() {
  constexpr std::pair<TokenKind, Operator> kPrefix[] = {
      {plus, Operator::plus}, {minus, Operator::negate}, {logicalNot, Operator::logicalNot}};
  for (auto const& [kind, op] : kPrefix) {
    if (!reader_.at(kind)) continue;
    SourceSpan const start = reader_.take().span;
    ExpressionPtr operand = binary(kUnaryPower);  // -2^2 is -(2^2)
    SourceSpan const span = join(start, operand->span);
    int const height = operand->height;
    return make(span, height, Unary{op, std::move(operand)});
  }
  return postfix(primary());
}

ExpressionPtr ExpressionParser::postfix(ExpressionPtr base) {
  for (;;) {
    if (startsNewElement()) return base;
    Token const token = reader_.peek();
    switch (token.kind) {
      case openParen:
      case openBrace: {
        reader_.take();
        bool const brace = token.kind == openBrace;
        auto [list, closing] = arguments(token, brace ? closeBrace : closeParen);
        SourceSpan const span = join(base->span, closing);
        int const height = std::max(base->height, highest(list));
        base = make(span, height, Index{std::move(base), std::move(list), brace});
        break;
      }
      case dot:
        base = member(std::move(base));
        break;
      case transpose:
      case conjugateTranspose: {
        reader_.take();
        SourceSpan const span = join(base->span, token.span);
        int const height = base->height;
        Operator const op =
            token.kind == transpose ? Operator::transpose : Operator::conjugateTranspose;
        base = make(span, height, Unary{op, std::move(base)});
        break;
      }
      default:
        return base;
    }
  }
}

ExpressionPtr ExpressionParser::member(ExpressionPtr base) {
  reader_.take();
  Token const& word = reader_.peek();
  if (word.kind != TokenKind::name) reader_.unexpected(word, "a name after the point");
  reader_.take();
  SourceSpan const span = join(base->span, word.span);
  int const height = base->height;
  return make(span, height,
              Member{std::move(base), std::string(reader_.spelling(word)), word.span});
}

ExpressionParser::Arguments ExpressionParser::arguments(Token const& opening, TokenKind closing) {
  Restore const context(context_, Context::plain);
  Restore const depth(indexDepth_, indexDepth_ + 1);
  std::vector<ExpressionPtr> list;
  while (reader_.at(newline)) reader_.take();
  while (!reader_.at(closing)) {
    Token const& token = reader_.peek();
    TokenKind const after = reader_.peek(1).kind;
    if (token.kind == colon && (after == comma || after == closing)) {
      list.push_back(make(reader_.take().span, 0, WholeDimension{}));
    } else {
      if (token.kind == endOfSource) neverClosed(opening.span);
      list.push_back(parse());
    }
    while (reader_.at(newline)) reader_.take();
    if (reader_.at(closing)) break;
    if (reader_.at(endOfSource)) neverClosed(opening.span);
    if (reader_.at(assign)) {
      raiseSyntax(reader_.peek().span, "An argument is no assignment.",
                  "to compare, write ==; options are passed as 'Name',value");
    }
    if (!reader_.takeIf(comma)) reader_.unexpected(reader_.peek(), "a comma or a closing bracket");
    while (reader_.at(newline)) reader_.take();
    if (reader_.at(closing)) reader_.unexpected(reader_.peek(), "another argument");
  }
  return {std::move(list), reader_.take().span};
}

ExpressionPtr ExpressionParser::primary() {
  Token const& token = reader_.peek();
  switch (token.kind) {
    case number:
      reader_.take();
      return make(token.span, 0, Number{token.value, token.imaginary});
    case integer:
      reader_.take();
      return make(token.span, 0, IntegerLiteral{token.bits, token.integerClass});
    case text:
    case string:
      reader_.take();
      return make(token.span, 0, Text{token.content, token.kind == string});
    case TokenKind::name:
      reader_.take();
      return make(token.span, 0, Name{std::string(reader_.spelling(token))});
    case endIndex:
      if (indexDepth_ == 0) reader_.unexpected(token, "a value");
      reader_.take();
      return make(token.span, 0, EndValue{});
    case openParen:
      return parenthesized();
    case openSquare:
      return matrix(closeSquare, false);
    case openBrace:
      return matrix(closeBrace, true);
    default:
      reader_.unexpected(token, "a value");
  }
}

ExpressionPtr ExpressionParser::parenthesized() {
  SourceSpan const opening = reader_.take().span;
  Restore const context(context_, Context::plain);
  if (reader_.at(endOfSource)) neverClosed(opening);
  ExpressionPtr inner = parse();
  if (reader_.at(endOfSource)) neverClosed(opening);
  if (reader_.at(assign)) {
    raiseSyntax(reader_.peek().span, "An assignment is no value.", "to compare, write ==");
  }
  if (!reader_.at(closeParen)) reader_.unexpected(reader_.peek(), "a closing parenthesis");
  inner->span = join(opening, reader_.take().span);
  return inner;
}

ExpressionPtr ExpressionParser::matrix(TokenKind closing, bool brace) {
  SourceSpan const opening = reader_.take().span;
  Restore const context(context_, Context::matrix);
  Matrix node{{}, brace};
  int height = 0;
  std::vector<ExpressionPtr> row;
  bool afterComma = false;
  auto const endRow = [&] {
    height = std::max(height, highest(row));
    if (!row.empty()) node.rows.push_back(std::exchange(row, {}));
  };
  while (!reader_.at(closing)) {
    Token const& token = reader_.peek();
    if (token.kind == endOfSource) neverClosed(opening);
    if (token.kind == semicolon || token.kind == newline) {
      if (afterComma && token.kind == semicolon) reader_.unexpected(token, "another element");
      reader_.take();
      endRow();
      afterComma = false;
    } else if (token.kind == comma) {
      if (afterComma || row.empty()) reader_.unexpected(token, "an element");
      reader_.take();
      afterComma = true;
    } else {
      row.push_back(parse());
      afterComma = false;
      if (reader_.at(assign)) {
        raiseSyntax(reader_.peek().span, "An assignment is no value.", "to compare, write ==");
      }
    }
  }
  endRow();
  return make(join(opening, reader_.take().span), height, std::move(node));
}

std::vector<ExpressionPtr> ExpressionParser::targets() {
  SourceSpan const opening = reader_.take().span;
  Restore const context(context_, Context::matrix);
  std::vector<ExpressionPtr> list;
  while (!reader_.at(closeSquare)) {
    Token const& token = reader_.peek();
    if (token.kind == logicalNot) {
      list.push_back(make(reader_.take().span, 0, Ignored{}));
    } else if (token.kind == TokenKind::name) {
      list.push_back(postfix(primary()));
    } else {
      reader_.unexpected(token, "a variable");
    }
    reader_.takeIf(comma);
  }
  if (list.empty()) raiseSyntax(opening, "No variable to assign to.");
  reader_.take();
  return list;
}

}  // namespace language
