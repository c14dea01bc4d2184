#include "language/evaluator.h"

#include "embedded_host/object_system.h"
#include "language/cells.h"
#include "language/interrupt.h"
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
  if (takeInterrupt()) {
    raiseFaultAt(span, "interrupted", "Interrupted.");
  }
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

// The loop's variable takes the columns of the value in turn.
Evaluator::Flow Evaluator::runFor(For const& node) {
  txArrayPtr const values = evaluate(*node.values);
  if (values->classID() == txClassObject) {
    session_.setVariable(node.variable, txShare(*values));
    Flow const flow = runBlock(node.body);
    return flow == Flow::continueLoop || flow == Flow::breakLoop ? Flow::next : flow;
  }
  Shape const extents = foldedExtents(*values, 2);
  std::uint64_t const columns = extents[0] == 0 ? 0 : extents[1];
  for (std::uint64_t j = 0; j < columns; ++j) {
    txArrayPtr const column = makeDouble(static_cast<double>(j + 1));
    session_.setVariable(
        node.variable, located(node.values->span, [&] {
          return readElements(*values, {Subscript(nullptr, 1), Subscript(column.get(), 2)});
        }));
    checkInterrupt(node.values->span);
    if (runBlock(node.body) == Flow::breakLoop) break;
  }
  return Flow::next;
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

void Evaluator::show(std::string_view name, txArray const& value, bool shown) {
  session_.lastValue_ = txShare(value);
  session_.lastName_ = name;
  session_.lastShown_ = shown;
  if (shown) session_.output_.show(name, value);
}

void Evaluator::runExpression(ExpressionStatement const& node) {
  Expression const& expression = *node.expression;
  auto const* name = std::get_if<Name>(&expression.node);
  if (name && isVariable(name->name)) {
    show(name->name, *session_.variable(name->name), node.show);
    return;
  }
  for (txArrayPtr& value : evaluateMany(expression, 0)) {
    if (!value) continue;
    session_.setVariable("ans", txShare(*value));
    show("ans", *value, node.show);
  }
}

}  // namespace language
