#pragma once

// The words of the host language, each with its place in the source text.

#include <cstdint>
#include <string>

#include "host/tx_array.h"

namespace language {

// Bytes [begin, end) of the source text.
struct SourceSpan {
  std::uint32_t begin = 0;
  std::uint32_t end = 0;
};

constexpr SourceSpan join(SourceSpan a, SourceSpan b) {
  return {a.begin < b.begin ? a.begin : b.begin, a.end > b.end ? a.end : b.end};
}

enum class TokenKind : std::uint8_t {
  number,   // value, imaginary
  integer,  // bits, integerClass: a hexadecimal or binary literal
  text,     // content: 'char row'
  string,   // content: "string scalar"
  name,     // between span.begin and span.end
  // Keywords.
  kwIf,
  kwElseif,
  kwElse,
  kwEnd,
  kwFor,
  kwWhile,
  kwTry,
  kwCatch,
  kwBreak,
  kwContinue,
  endIndex,  // `end` inside an index
  // Brackets.
  openParen,
  closeParen,
  openSquare,
  closeSquare,
  openBrace,
  closeBrace,
  // Separators; a newline inside parentheses is no token.
  comma,
  semicolon,
  newline,
  // Operators.
  assign,
  plus,
  minus,
  times,
  elementTimes,
  divide,
  elementDivide,
  leftDivide,
  elementLeftDivide,
  power,
  elementPower,
  transpose,
  conjugateTranspose,
  equal,
  notEqual,
  less,
  lessEqual,
  greater,
  greaterEqual,
  elementAnd,
  elementOr,
  andAlso,
  orElse,
  logicalNot,
  colon,
  dot,
  endOfSource,
};

struct Token {
  TokenKind kind = TokenKind::endOfSource;
  bool spaceBefore = false;  // white space separates it from the token before
  bool imaginary = false;
  txClassID integerClass = txClassUnknown;
  SourceSpan span;
  double value = 0;
  std::uint64_t bits = 0;
  std::u16string content;
};

}  // namespace language
