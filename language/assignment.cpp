#include "embedded_host/object_system.h"
#include "language/cells.h"
#include "language/evaluator.h"
#include "language/lexer.h"

namespace language {

namespace {

// `x(i) = []` with the brackets written out deletes.
bool isEmptyBrackets(Expression const& expression) {
  auto const* matrix = std::get_if<Matrix>(&expression.node);
  return matrix && !matrix->brace && matrix->rows.empty();
}

bool isParenIndex(Expression const& target) {
  auto const* index = std::get_if<Index>(&target.node);
  return index && !index->brace;
}

// The steps from the variable to the part: a(1).b{2} is a, (1), .b, {2}.
std::vector<Expression const*> pathOf(Expression const& target) {
  std::vector<Expression const*> path;
  for (Expression const* at = &target; at;) {
    path.insert(path.begin(), at);
    auto const* index = std::get_if<Index>(&at->node);
    auto const* member = std::get_if<Member>(&at->node);
    at = index ? index->base.get() : member ? member->base.get() : nullptr;
  }
  return path;
}

}  // namespace

void Evaluator::runAssignment(Assignment const& node) {
  if (!node.many) {
    Expression const& target = *node.targets.front();
    bool const deletes = isEmptyBrackets(*node.value) && isParenIndex(target);
    NewValue value{evaluate(*node.value), node.value->span, deletes};
    checkInterrupt(node.value->span);
    show(assign(target, std::move(value)), node.show);
    return;
  }
  Values values = evaluateMany(*node.value, static_cast<int>(node.targets.size()));
  checkInterrupt(node.value->span);
  std::size_t wanted = node.targets.size();
  if (values.size() < wanted) {
    raiseFaultAt(node.value->span, "fewValues",
                 std::to_string(wanted) + " values were expected, " +
                     std::to_string(values.size()) + " came.");
  }
  for (std::size_t i = 0; i < wanted; ++i) {
    Expression const& target = *node.targets[i];
    if (std::holds_alternative<Ignored>(target.node)) continue;
    if (!values[i]) {
      raiseFaultAt(node.value->span, "fewValues",
                   "Value " + std::to_string(i + 1) + " did not come.");
    }
    show(assign(target, {std::move(values[i]), node.value->span}), node.show);
  }
}

std::string const& Evaluator::assign(Expression const& target, NewValue value) {
  if (auto const* name = std::get_if<Name>(&target.node)) {
    auto const found = session_.variables_.find(name->name);
    if (found != session_.variables_.end()) {
      found->second = std::move(value.array);
    } else {
      session_.setVariable(name->name, std::move(value.array));
    }
    return name->name;
  }
  std::vector<Expression const*> const path = pathOf(target);
  std::string const& root = std::get<Name>(path.front()->node).name;
  auto const steps = std::span<Expression const* const>(path).subspan(1);
  auto const found = session_.variables_.find(root);
  if (found != session_.variables_.end()) {
    assignPath(found->second, steps, std::move(value));
    return root;
  }
  txArrayPtr fresh;
  assignPath(fresh, steps, std::move(value));
  session_.setVariable(root, std::move(fresh));
  return root;
}

// Stores `value` at the end of the path below `slot`, reading each part on the way, changing it and
// writing it back.
void Evaluator::assignPath(txArrayPtr& slot, std::span<Expression const* const> path,
                           NewValue value) {
  Expression const& step = *path.front();
  bool const last = path.size() == 1;
  if (auto const* member = std::get_if<Member>(&step.node)) {
    if (!slot || slot->classID() != txClassObject) {
      raiseFaultAt(step.span, "member",
                   slot ? "A " + describe(*slot) + " has no properties."
                        : std::string("There is no object here."));
    }
    auto const definition = embedded_host::classOf(*slot);
    auto const* const property = definition ? definition->findProperty(member->name) : nullptr;
    if (definition && !property) unknownMember(*slot, *member);
    // At fault is the value, or the name of a property that takes none.
    bool const takesNone = property && property->readOnly;
    SourceSpan const fault = takesNone ? member->nameSpan : value.span;
    txArrayPtr part;
    if (!last) {
      part = located(step.span, [&] { return txGetProperty(*slot, member->name); });
      if (!part) unknownMember(*slot, *member);
      assignPath(part, path.subspan(1), std::move(value));
    } else {
      part = std::move(value.array);
    }
    auto const outer = std::exchange(session_.callInProgress_, step.span);
    located(fault, [&] { embedded_host::setProperty(*slot, member->name, *part); });
    session_.callInProgress_ = outer;
    return;
  }
  Index const& index = std::get<Index>(step.node);
  Arguments const arguments = evaluateArguments(index.arguments, slot.get(), true);
  try {
    Subscripts const list = subscripts(arguments);
    if (!last) {
      // A part that does not exist yet is made by the steps behind it.
      txArrayPtr part;
      bool exists = slot != nullptr && !slot->isEmpty();
      Shape const extents = exists ? foldedExtents(*slot, list.size()) : Shape(list.size(), 0);
      for (std::size_t d = 0; d < list.size(); ++d)
        exists = exists && list[d].reach() <= extents[d];
      if (exists) {
        Values parts;
        if (index.brace) {
          parts = readCells(*slot, list);
        } else {
          parts.push_back(readElements(*slot, list));
        }
        if (parts.size() != 1) raiseFault("index", "One part was expected here.");
        part = std::move(parts.front());
      }
      bool const deletes = value.deletes;
      SourceSpan const span = value.span;
      assignPath(part, path.subspan(1), std::move(value));
      value = {std::move(part), span, deletes};
      // Handles are changed where they are; only values are written back.
      if (!index.brace && slot && slot->classID() == txClassObject) return;
    }
    if (value.deletes && last) {
      deleteElements(slot, list);
    } else if (index.brace) {
      writeCell(slot, list, std::move(value.array));
    } else {
      writeElements(slot, list, *value.array);
    }
  } catch (...) {
    rethrowLocated(step.span, arguments.spans);
  }
}

}  // namespace language
