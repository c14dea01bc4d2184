// Values of expressions.

#include "embedded_host/array.h"
#include "language/cells.h"
#include "language/evaluator.h"
#include "language/operators.h"

namespace language {

namespace {

txArrayPtr numberValue(Number const& node) {
  return node.imaginary ? embedded_host::makeComplex(0, node.value) : makeDouble(node.value);
}

txArrayPtr integerValue(IntegerLiteral const& node) {
  txArrayPtr result = embedded_host::makeUninitialized(Shape{1, 1}, node.classID);
  visitElementType(node.classID,
                   [&]<class T>(T) { result->dataAs<T>()[0] = static_cast<T>(node.bits); });
  return result;
}

txArrayPtr textValue(Text const& node) {
  return node.isString ? embedded_host::makeString(node.content)
                       : txCreateText(std::u16string_view(node.content));
}

[[noreturn]] void noValue(SourceSpan span) {
  raiseFaultAt(span, "noValue", "This call gives no value.");
}

}  // namespace

void Evaluator::Arguments::add(txArrayPtr value, SourceSpan span) {
  values.push_back(value.get());
  owners.push_back(std::move(value));
  spans.push_back(span);
}

Evaluator::Operand Evaluator::operand(Expression const& expression) {
  if (auto const* name = std::get_if<Name>(&expression.node)) {
    if (txArray const* value = session_.variable(name->name)) return {value, nullptr};
  }
  txArrayPtr owner = evaluate(expression);
  txArray const* value = owner.get();
  return {value, std::move(owner)};
}

txArrayPtr Evaluator::evaluate(Expression const& expression) {
  if (txArrayPtr value = singleValue(expression)) return value;
  Values values = severalValues(expression, 1);
  if (values.empty() || !values.front()) noValue(expression.span);
  if (values.size() > 1) {
    raiseFaultAt(expression.span, "manyValues",
                 "One value was expected, not " + std::to_string(values.size()) + ".",
                 "[c{:}] puts them together");
  }
  return std::move(values.front());
}

Values Evaluator::evaluateMany(Expression const& expression, int outputs) {
  txArrayPtr value = singleValue(expression);
  if (!value) return severalValues(expression, outputs);
  Values values;
  values.push_back(std::move(value));
  return values;
}

Values Evaluator::severalValues(Expression const& expression, int outputs) {
  SourceSpan const span = expression.span;
  if (auto const* name = std::get_if<Name>(&expression.node))
    return callFunction(name->name, span, span, {}, outputs);
  if (auto const* index = std::get_if<Index>(&expression.node))
    return evaluateIndex(expression, *index, outputs);
  if (auto const* member = std::get_if<Member>(&expression.node))
    return memberValues(*member, span, nullptr, outputs);
  return {};
}

txArrayPtr Evaluator::singleValue(Expression const& expression) {
  SourceSpan const span = expression.span;
  checkInterrupt(span);
  return std::visit(
      Overloaded{
          [&](Number const& node) { return numberValue(node); },
          [&](IntegerLiteral const& node) { return integerValue(node); },
          [&](Text const& node) { return textValue(node); },
          [&](Name const& node) {
            txArray const* const value = session_.variable(node.name);
            return value ? txShare(*value) : nullptr;
          },
          [&](Unary const& node) {
            Operand const value = operand(*node.operand);
            return located(span, [&] { return applyUnary(node.op, *value); });
          },
          [&](Binary const& node) {
            if (node.op == Operator::andAlso || node.op == Operator::orElse) {
              bool const stops = node.op == Operator::orElse;
              bool const answer = isTrueAt(*node.left) == stops ? stops : isTrueAt(*node.right);
              return txCreateLogical(answer);
            }
            Operand const left = operand(*node.left);
            Operand const right = operand(*node.right);
            return located(span, [&] { return applyBinary(node.op, *left, *right); });
          },
          [&](Range const& node) {
            RangeValues const range = evaluateRange(node, span);
            return located(span, [&] { return range.all(); });
          },
          [&](Matrix const& node) { return located(span, [&] { return evaluateMatrix(node); }); },
          [&](WholeDimension const&) { return makeText(":"); },
          [&](EndValue const&) { return endValue(span); },
          [](auto const&) { return txArrayPtr(); }},
      expression.node);
}

RangeValues Evaluator::evaluateRange(Range const& node, SourceSpan span) {
  txArrayPtr const first = evaluate(*node.first);
  txArrayPtr const step = node.step ? evaluate(*node.step) : nullptr;
  txArrayPtr const last = evaluate(*node.last);
  return located(span, [&] { return RangeValues(*first, step.get(), *last); });
}

txArrayPtr Evaluator::evaluateMatrix(Matrix const& node) {
  Values rows;
  for (auto const& row : node.rows) {
    Values parts;
    for (auto const& element : row) {
      for (txArrayPtr& value : evaluateMany(*element, 1)) {
        if (!value) noValue(element->span);
        // In braces each element becomes a cell; a cell array stays one element.
        if (node.brace) value = wrapInCell(std::move(value));
        parts.push_back(std::move(value));
      }
    }
    if (node.brace && parts.empty()) continue;
    rows.push_back(concatenate(parts, 1));
  }
  if (rows.empty() && node.brace) return txCreateCell(Shape{0, 0});
  txArrayPtr whole = concatenate(rows, 0);
  if (node.brace) checkCellContent(*whole);
  return whole;
}

txArrayPtr Evaluator::endValue(SourceSpan span) const {
  if (ends_.empty()) raiseSyntax(span, "'end' has no meaning outside an index.");
  EndContext const& context = ends_.back();
  if (!context.array) return makeDouble(0);
  Shape const extents = foldedExtents(*context.array, context.count);
  return makeDouble(static_cast<double>(extents[context.position]));
}

Evaluator::Arguments Evaluator::evaluateArguments(std::vector<ExpressionPtr> const& list,
                                                  txArray const* indexed, bool isIndex) {
  Arguments arguments;
  for (std::size_t i = 0; i < list.size(); ++i) {
    Expression const& argument = *list[i];
    if (isIndex && std::holds_alternative<WholeDimension>(argument.node)) {
      arguments.values.push_back(nullptr);
      arguments.spans.push_back(argument.span);
      continue;
    }
    if (isIndex) ends_.push_back({indexed, i, list.size()});
    for (txArrayPtr& value : evaluateMany(argument, 1)) {
      if (!value) noValue(argument.span);
      arguments.add(std::move(value), argument.span);
    }
    if (isIndex) ends_.pop_back();
  }
  return arguments;
}

}  // namespace language
