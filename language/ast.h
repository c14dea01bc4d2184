#pragma once

// The tree that the parser makes of a program. Every node knows its place in the source.

#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "language/token.h"

namespace language {

struct Expression;
using ExpressionPtr = std::unique_ptr<Expression>;

enum class Operator : std::uint8_t {
  add,
  subtract,
  multiply,
  elementMultiply,
  divide,
  elementDivide,
  leftDivide,
  elementLeftDivide,
  power,
  elementPower,
  equal,
  notEqual,
  less,
  lessEqual,
  greater,
  greaterEqual,
  elementAnd,
  elementOr,
  andAlso,
  orElse,  // two operands
  plus,
  negate,
  logicalNot,
  transpose,
  conjugateTranspose  // one operand
};

struct Number {
  double value;
  bool imaginary;
};
struct IntegerLiteral {
  std::uint64_t bits;
  txClassID classID;
};
struct Text {
  std::u16string content;
  bool isString;  // "string" rather than 'char row'
};
struct Name {
  std::string name;
};
struct Unary {
  Operator op;
  ExpressionPtr operand;
};
struct Binary {
  Operator op;
  ExpressionPtr left;
  ExpressionPtr right;
};
struct Range {
  ExpressionPtr first;
  ExpressionPtr step;  // null: 1
  ExpressionPtr last;
};
struct Index {  // base(arguments), an element or a call, or base{arguments}
  ExpressionPtr base;
  std::vector<ExpressionPtr> arguments;
  bool brace;
};
struct Member {  // base.name
  ExpressionPtr base;
  std::string name;
  SourceSpan nameSpan;
};
struct Matrix {  // [rows] or {rows}
  std::vector<std::vector<ExpressionPtr>> rows;
  bool brace;
};
struct WholeDimension {};  // `:` alone as an index
struct EndValue {};        // `end` inside an index
struct Ignored {};         // `~` in a list of targets

struct Expression {
  SourceSpan span;
  int height = 1;  // of the tree below, bounded so that walking it cannot exhaust the stack
  std::variant<Number, IntegerLiteral, Text, Name, Unary, Binary, Range, Index, Member, Matrix,
               WholeDimension, EndValue, Ignored>
      node;
};

struct Statement;
using Block = std::vector<Statement>;

struct ExpressionStatement {
  ExpressionPtr expression;
  bool show;
};
struct Assignment {
  std::vector<ExpressionPtr> targets;
  ExpressionPtr value;
  bool show;
  bool many;  // written [a,b] = ...
};
struct If {
  struct Branch {
    ExpressionPtr condition;
    Block body;
  };
  std::vector<Branch> branches;
  Block otherwise;
};
struct For {
  std::string variable;
  ExpressionPtr values;
  Block body;
};
struct While {
  ExpressionPtr condition;
  Block body;
};
struct Try {
  Block body;
  std::string errorName;  // "" when the error is not named
  Block handler;
};
struct Break {};
struct Continue {};

struct Statement {
  SourceSpan span;
  std::variant<ExpressionStatement, Assignment, If, For, While, Try, Break, Continue> node;
};

template <class... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

}  // namespace language
