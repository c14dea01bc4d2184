// Calls of functions and methods, properties, indices.

#include <algorithm>

#include "embedded_host/object_system.h"
#include "host/tcos.h"
#include "language/cells.h"
#include "language/evaluator.h"
#include "language/operators.h"

namespace language {

bool Evaluator::isVariable(std::string const& name) const {
  return session_.variable(name) != nullptr;
}

void Evaluator::unknownName(std::string const& name, SourceSpan span) const {
  std::string hint = session_.vm_.functions().adviceFor(name);
  std::string const closest = embedded_host::closestName(name, session_.knownNames());
  if (hint.empty() && !closest.empty()) hint = "did you mean " + closest + "?";
  raiseFaultAt(span, "unknownName", "There is no variable or function '" + name + "'.",
               std::move(hint));
}

void Evaluator::unknownMember(txArray const& object, Member const& node) const {
  std::vector<std::string> names;
  if (auto const definition = embedded_host::classOf(object)) {
    for (auto const& property : definition->properties) {
      if (!property.hidden) names.push_back(property.name);
    }
    for (auto const& [name, method] : definition->methods) names.push_back(name);
  }
  std::string const closest = embedded_host::closestName(node.name, names);
  raiseFaultAt(node.nameSpan, "unknownMember",
               "A " + classText(object) + " has no property or method '" + node.name + "'.",
               closest.empty() ? "" : "did you mean " + closest + "?");
}

Subscripts Evaluator::subscripts(Arguments const& arguments) {
  Subscripts list;
  for (std::size_t i = 0; i < arguments.values.size(); ++i) {
    list.emplace_back(arguments.values[i], static_cast<int>(i) + 1);
  }
  return list;
}

// Runs call(outputs, results, arguments) with its place known to warnings and errors.
template <class Call>
Values Evaluator::collect(SourceSpan whole, Arguments const& arguments, int outputs, Call&& call) {
  Values results(static_cast<std::size_t>(std::max(outputs, 1)));
  auto const outer = std::exchange(session_.callInProgress_, whole);
  try {
    call(outputs, results.data(), std::span<txArray const* const>(arguments.values));
  } catch (...) {
    session_.callInProgress_ = outer;
    rethrowLocated(whole, arguments.spans);
  }
  session_.callInProgress_ = outer;
  while (!results.empty() && !results.back()) results.pop_back();
  return results;
}

Values Evaluator::callFunction(std::string const& name, SourceSpan nameSpan, SourceSpan whole,
                               Arguments const& arguments, int outputs) {
  bool known = true;
  Values results = collect(whole, arguments, outputs, [&](int n, txArrayPtr* to, auto args) {
    known = embedded_host::dispatch(name, n, to, args);
  });
  if (!known) unknownName(name, nameSpan);
  return results;
}

Values Evaluator::indexValue(txArray const& value, Index const& node, SourceSpan whole) {
  Arguments const arguments = evaluateArguments(node.arguments, &value, true);
  try {
    if (node.brace) return readCells(value, subscripts(arguments));
    Values one;
    one.push_back(readElements(value, subscripts(arguments)));
    return one;
  } catch (...) {
    rethrowLocated(whole, arguments.spans);
  }
}

Values Evaluator::evaluateIndex(Expression const& expression, Index const& node, int outputs) {
  SourceSpan const span = expression.span;
  auto const* name = std::get_if<Name>(&node.base->node);
  if (name && !isVariable(name->name)) {
    if (node.brace) unknownName(name->name, node.base->span);
    Arguments const arguments = evaluateArguments(node.arguments, nullptr, false);
    return callFunction(name->name, node.base->span, span, arguments, outputs);
  }
  auto const* member = std::get_if<Member>(&node.base->node);
  if (member && !node.brace) return memberValues(*member, span, &node.arguments, outputs);
  Operand const base = operand(*node.base);
  return indexValue(*base, node, span);
}

Values Evaluator::memberValues(Member const& node, SourceSpan whole,
                               std::vector<ExpressionPtr> const* list, int outputs) {
  static std::vector<ExpressionPtr> const kNone;
  // Class.method(arguments)
  auto const* name = std::get_if<Name>(&node.base->node);
  if (name && !isVariable(name->name) && session_.vm_.classes().find(name->name)) {
    Arguments const arguments = evaluateArguments(list ? *list : kNone, nullptr, false);
    std::u16string const className(name->name.begin(), name->name.end());
    bool known = true;
    Values results = collect(whole, arguments, outputs, [&](int n, txArrayPtr* to, auto args) {
      known = tcos::callStaticMethod(className, node.name, n, to, args);
    });
    if (known) return results;
    raiseFaultAt(node.nameSpan, "unknownMember",
                 "The class " + name->name + " has no static method '" + node.name + "'.");
  }
  Operand const object = operand(*node.base);
  if ((*object).classID() != txClassObject) {
    raiseFaultAt(whole, "member", "A " + describe(*object) + " has no properties.",
                 "elementwise operators have the point before them: .* ./ .^");
  }
  // The property wins over a method of its name.
  txArrayPtr property = located(whole, [&] { return txGetProperty(*object, node.name); });
  if (property) {
    if (list) {
      Arguments const arguments = evaluateArguments(*list, property.get(), true);
      try {
        property = readElements(*property, subscripts(arguments));
      } catch (...) {
        rethrowLocated(whole, arguments.spans);
      }
    }
    Values one;
    one.push_back(std::move(property));
    return one;
  }
  Arguments arguments;
  arguments.add(txShare(*object), node.base->span);
  Arguments rest = evaluateArguments(list ? *list : kNone, nullptr, false);
  for (std::size_t i = 0; i < rest.owners.size(); ++i) {
    arguments.add(std::move(rest.owners[i]), rest.spans[i]);
  }
  bool known = true;
  Values results = collect(whole, arguments, outputs, [&](int n, txArrayPtr* to, auto args) {
    known = tcos::callMethod(node.name, n, to, args);
  });
  if (!known) unknownMember(*object, node);
  return results;
}

}  // namespace language
