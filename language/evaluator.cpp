#include "language/evaluator.h"

#include "embedded_host/interrupt.h"
#include "embedded_host/object_system.h"
#include "language/cells.h"
#include "language/operators.h"
#include "language/truth.h"

namespace language {

void Evaluator::run(Block const& block) {
  for (Statement const& statement : block) {
    if (session_.statementHook_) session_.statementHook_();
    runStatement(statement);
  }
}

void Evaluator::checkInterrupt(SourceSpan span) {
  if (embedded_host::interruptRequested()) [[unlikely]]
    located(span, embedded_host::raiseInterrupted);
}

Evaluator::Flow Evaluator::runBlock(Block const& block) {
  for (Statement const& statement : block) {
    Flow const flow = runStatement(statement);
    if (flow != Flow::next) return flow;
  }
  return Flow::next;
}

Evaluator::Flow Evaluator::runStatement(Statement const& statement) {
  checkInterrupt(statement.span);
  ends_.clear();
  return located(statement.span, [&] {
    return std::visit(Overloaded{[&](ExpressionStatement const& node) {
                                   runExpression(node);
                                   return Flow::next;
                                 },
                                 [&](Assignment const& node) {
                                   runAssignment(node);
                                   return Flow::next;
                                 },
                                 [&](If const& node) { return runIf(node); },
                                 [&](For const& node) { return runFor(node); },
                                 [&](While const& node) { return runWhile(node); },
                                 [&](Try const& node) { return runTry(node); },
                                 [](Break const&) { return Flow::breakLoop; },
                                 [](Continue const&) { return Flow::continueLoop; }},
                      statement.node);
  });
}

bool Evaluator::isTrueAt(Expression const& condition) {
  Operand const value = operand(condition);
  return located(condition.span, [&] { return isTrue(*value); });
}

Evaluator::Flow Evaluator::runIf(If const& node) {
  for (auto const& branch : node.branches) {
    if (isTrueAt(*branch.condition)) return runBlock(branch.body);
  }
  return runBlock(node.otherwise);
}

// The loop's variable takes the columns of the value in turn; those of a range are made one by one.
Evaluator::Flow Evaluator::runFor(For const& node) {
  SourceSpan const span = node.values->span;
  auto const loop = [&](std::uint64_t count, auto&& valueAt) {
    for (std::uint64_t i = 0; i < count; ++i) {
      session_.setVariable(node.variable, located(span, [&] { return valueAt(i); }));
      checkInterrupt(span);
      if (runBlock(node.body) == Flow::breakLoop) break;
    }
    return Flow::next;
  };
  if (auto const* range = std::get_if<Range>(&node.values->node)) {
    RangeValues const values = evaluateRange(*range, span);
    return loop(values.count(), [&](std::uint64_t i) { return values.at(i); });
  }
  txArrayPtr const values = evaluate(*node.values);
  if (values->classID() == txClassObject) {
    return loop(1, [&](std::uint64_t) { return txShare(*values); });
  }
  Shape const extents = foldedExtents(*values, 2);
  return loop(extents[0] == 0 ? 0 : extents[1], [&](std::uint64_t i) {
    txArrayPtr const column = makeDouble(static_cast<double>(i + 1));
    return readElements(*values, {Subscript(nullptr, 1), Subscript(column.get(), 2)});
  });
}

Evaluator::Flow Evaluator::runWhile(While const& node) {
  while (isTrueAt(*node.condition)) {
    checkInterrupt(node.condition->span);
    if (runBlock(node.body) == Flow::breakLoop) break;
  }
  return Flow::next;
}

namespace {

// The value that `catch e` gives: its properties are read with a point.
txArrayPtr makeErrorObject(SourceError const& error) {
  static embedded_host::ClassPtr const definition = [] {
    embedded_host::ClassDefinition made;
    made.name = "Error";
    made.properties = {{.name = "identifier"}, {.name = "message"}};
    return std::make_shared<embedded_host::ClassDefinition const>(std::move(made));
  }();
  txArrayPtr object = embedded_host::makeObject(definition);
  embedded_host::setStoredProperty(*object, "identifier", makeText(error.identifier()));
  embedded_host::setStoredProperty(*object, "message", makeText(error.cause().text()));
  return object;
}

}  // namespace

Evaluator::Flow Evaluator::runTry(Try const& node) {
  try {
    return runBlock(node.body);
  } catch (SourceError const& error) {
    if (error.identifier() == "TALVOR:language:interrupted") throw;
    if (!node.errorName.empty()) session_.setVariable(node.errorName, makeErrorObject(error));
  }
  ends_.clear();
  return runBlock(node.handler);
}

void Evaluator::show(std::string const& variable, bool shown) {
  session_.forgetLastValue();
  session_.lastIsVariable_ = true;
  session_.lastName_ = variable;
  session_.lastShown_ = shown;
  if (shown) session_.output_.show(variable, *session_.lastValue());
}

void Evaluator::runExpression(ExpressionStatement const& node) {
  Expression const& expression = *node.expression;
  auto const* name = std::get_if<Name>(&expression.node);
  if (name && isVariable(name->name)) return show(name->name, node.show);
  Values values = evaluateMany(expression, 0);
  checkInterrupt(node.expression->span);
  for (txArrayPtr& value : values) {
    if (!value) continue;
    session_.setVariable("ans", std::move(value));
    show("ans", node.show);
  }
}

}  // namespace language
