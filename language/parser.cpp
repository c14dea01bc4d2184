#include "language/parser.h"

#include <algorithm>
#include <utility>

#include "language/expression_parser.h"
#include "language/lexer.h"

namespace language {

namespace {

using enum TokenKind;

class StatementParser {
 public:
  StatementParser(TokenReader& reader, std::span<std::string const> commands)
      : reader_(reader), expressions_(reader), commands_(commands) {}

  Block program() {
    Block body = statements();
    if (!reader_.at(endOfSource)) {
      Token const& token = reader_.peek();
      raiseSyntax(token.span, reader_.quoted(token) + " has no beginning.");
    }
    return body;
  }

 private:
  // Statements up to a keyword that ends a block.
  Block statements() {
    Block block;
    for (;;) {
      while (reader_.at(newline) || reader_.at(semicolon) || reader_.at(comma)) reader_.take();
      switch (reader_.peek().kind) {
        case endOfSource:
        case kwEnd:
        case kwElse:
        case kwElseif:
        case kwCatch:
          return block;
        default:
          block.push_back(statement());
      }
    }
  }

  Block body() {
    TokenReader::Level const level(reader_, reader_.peek().span);
    return statements();
  }

  void endOfBlock(SourceSpan opening, std::string const& keyword) {
    if (reader_.at(endOfSource)) {
      raiseSyntax(opening, "This '" + keyword + "' has no 'end'.", "", true);
    }
    if (!reader_.takeIf(kwEnd)) reader_.unexpected(reader_.peek(), "'end'");
  }

  Statement statement() {
    Token const& first = reader_.peek();
    switch (first.kind) {
      case kwIf:
        return ifStatement();
      case kwFor:
        return forStatement();
      case kwWhile:
        return whileStatement();
      case kwTry:
        return tryStatement();
      case kwBreak:
      case kwContinue: {
        SourceSpan const span = reader_.take().span;
        if (loops_ == 0) raiseSyntax(span, "There is no loop here.");
        endOfStatement();
        if (first.kind == kwBreak) return {span, Break{}};
        return {span, Continue{}};
      }
      default:
        return simpleStatement();
    }
  }

  // `[` begins a list of targets when its closing bracket is followed by a lone `=`.
  bool atTargetList() const {
    if (!reader_.at(openSquare)) return false;
    int open = 0;
    for (std::size_t i = 0;; ++i) {
      switch (reader_.peek(i).kind) {
        case openSquare:
        case openParen:
        case openBrace:
          ++open;
          break;
        case closeSquare:
        case closeParen:
        case closeBrace:
          if (--open == 0) return reader_.peek(i + 1).kind == assign;
          break;
        case endOfSource:
          return false;
        default:
          break;
      }
    }
  }

  static bool isTarget(Expression const& expression) {
    if (std::holds_alternative<Name>(expression.node)) return true;
    if (auto const* index = std::get_if<Index>(&expression.node)) return isTarget(*index->base);
    if (auto const* member = std::get_if<Member>(&expression.node)) return isTarget(*member->base);
    return false;
  }

  static ExpressionPtr make(SourceSpan span, int height, decltype(Expression::node) node) {
    return std::make_unique<Expression>(Expression{span, height, std::move(node)});
  }

  // Whether a command's name has been read and its word, or number, comes next.
  bool atCommandWord(Expression const& read) const {
    auto const* command = std::get_if<Name>(&read.node);
    return command && (reader_.at(name) || reader_.at(number)) &&
           std::ranges::find(commands_, command->name) != commands_.end();
  }

  // The rest of `name word`: a call of `command`. Words with points between them are one.
  ExpressionPtr commandCall(ExpressionPtr command) {
    Token const& first = reader_.take();
    SourceSpan span = first.span;
    std::vector<ExpressionPtr> arguments;
    if (first.kind == number) {
      arguments.push_back(make(span, 1, Number{first.value, first.imaginary}));
    } else {
      std::string_view const begin = reader_.spelling(first);
      std::u16string word(begin.begin(), begin.end());
      while (reader_.at(dot) && reader_.peek(1).kind == name) {
        reader_.take();
        std::string_view const part = reader_.spelling(reader_.peek());
        word.append(1, u'.').append(part.begin(), part.end());
        span = join(span, reader_.take().span);
      }
      arguments.push_back(make(span, 1, Text{std::move(word), false}));
    }
    SourceSpan const whole = join(command->span, span);
    return make(whole, 2, Index{std::move(command), std::move(arguments), false});
  }

  Statement simpleStatement() {
    bool const many = atTargetList();
    std::vector<ExpressionPtr> targets;
    if (many) {
      targets = expressions_.targets();
    } else {
      targets.push_back(expressions_.parse());
      if (atCommandWord(*targets.front())) {
        targets.front() = commandCall(std::move(targets.front()));
      }
    }
    if (!reader_.at(assign)) {
      if (reader_.at(name) || reader_.at(number) || reader_.at(text) || reader_.at(string)) {
        raiseSyntax(reader_.peek().span, "Here the statement should have ended.",
                    std::holds_alternative<Name>(targets.front()->node)
                        ? "arguments stand in parentheses"
                        : "an operator or a comma may be missing");
      }
      ExpressionPtr expression = std::move(targets.front());
      SourceSpan const span = expression->span;
      return {span, ExpressionStatement{std::move(expression), endOfStatement()}};
    }
    if (!many && !isTarget(*targets.front())) {
      raiseSyntax(targets.front()->span, "To this nothing can be assigned.",
                  "to compare, write ==");
    }
    reader_.take();
    ExpressionPtr value = expressions_.parse();
    if (reader_.at(assign)) {
      raiseSyntax(reader_.peek().span, "One assignment at a time.", "to compare, write ==");
    }
    SourceSpan const span = join(targets.front()->span, value->span);
    return {span, Assignment{std::move(targets), std::move(value), endOfStatement(), many}};
  }

  // Takes what ends a statement; true when its result is shown.
  bool endOfStatement() {
    switch (reader_.peek().kind) {
      case semicolon:
        reader_.take();
        return false;
      case comma:
      case newline:
        reader_.take();
        return true;
      case endOfSource:
      case kwEnd:
      case kwElse:
      case kwElseif:
      case kwCatch:
        return true;
      default:
        reader_.unexpected(reader_.peek(), "the end of the statement");
    }
  }

  ExpressionPtr condition(char const* keyword) {
    ExpressionPtr expression = expressions_.parse();
    if (reader_.at(assign)) {
      raiseSyntax(reader_.peek().span,
                  std::string("A condition of '") + keyword + "' is no assignment.",
                  "to compare, write ==");
    }
    return expression;
  }

  Statement ifStatement() {
    SourceSpan const opening = reader_.take().span;
    If node;
    ExpressionPtr test = condition("if");
    Block then = body();
    node.branches.push_back({std::move(test), std::move(then)});
    while (reader_.takeIf(kwElseif)) {
      test = condition("elseif");
      then = body();
      node.branches.push_back({std::move(test), std::move(then)});
    }
    if (reader_.takeIf(kwElse)) node.otherwise = body();
    endOfBlock(opening, "if");
    return {opening, std::move(node)};
  }

  Statement forStatement() {
    SourceSpan const opening = reader_.take().span;
    bool const parenthesized = reader_.at(openParen);
    if (parenthesized) reader_.take();
    Token const& variable = reader_.peek();
    if (variable.kind != name) reader_.unexpected(variable, "the name of the loop's variable");
    reader_.take();
    if (!reader_.takeIf(assign)) reader_.unexpected(reader_.peek(), "'='");
    For node{std::string(reader_.spelling(variable)), expressions_.parse(), {}};
    if (parenthesized && !reader_.takeIf(closeParen)) {
      reader_.unexpected(reader_.peek(), "a closing parenthesis");
    }
    ++loops_;
    node.body = body();
    --loops_;
    endOfBlock(opening, "for");
    return {opening, std::move(node)};
  }

  Statement whileStatement() {
    SourceSpan const opening = reader_.take().span;
    ExpressionPtr test = condition("while");
    ++loops_;
    Block block = body();
    --loops_;
    endOfBlock(opening, "while");
    return {opening, While{std::move(test), std::move(block)}};
  }

  Statement tryStatement() {
    SourceSpan const opening = reader_.take().span;
    Try node{body(), "", {}};
    if (reader_.takeIf(kwCatch)) {
      // A name on the same line is the error's.
      if (reader_.at(name) && (reader_.peek(1).kind == newline || reader_.peek(1).kind == comma ||
                               reader_.peek(1).kind == semicolon)) {
        node.errorName = std::string(reader_.spelling(reader_.take()));
      }
      node.handler = body();
    }
    endOfBlock(opening, "try");
    return {opening, std::move(node)};
  }

  TokenReader& reader_;
  ExpressionParser expressions_;
  std::span<std::string const> commands_;
  int loops_ = 0;
};

}  // namespace

Block parse(std::string_view source, std::span<std::string const> commands) {
  TokenReader reader(source, tokenize(source));
  return StatementParser(reader, commands).program();
}

}  // namespace language
