#pragma once

// Walks the tree of a program.

#include <span>
#include <string>
#include <vector>

#include "language/ast.h"
#include "language/indexing.h"
#include "language/range.h"
#include "language/session.h"

namespace language {

using Values = std::vector<txArrayPtr>;

class Evaluator {
 public:
  explicit Evaluator(Session& session) : session_(session) {}

  void run(Block const& block);

 private:
  enum class Flow { next, breakLoop, continueLoop };

  // A value that is either a variable's, borrowed, or owned by this.
  struct Operand {
    txArray const* value;
    txArrayPtr owner;
    txArray const& operator*() const { return *value; }
  };

  // Arguments of a call or of an index; a null entry is `:`.
  struct Arguments {
    Values owners;
    std::vector<txArray const*> values;
    std::vector<SourceSpan> spans;
    void add(txArrayPtr value, SourceSpan span);
  };

  // The array that `end` refers to.
  struct EndContext {
    txArray const* array;  // null: nothing there yet
    std::size_t position;
    std::size_t count;
  };

  // Statements (evaluator.cpp).
  Flow runBlock(Block const& block);
  Flow runStatement(Statement const& statement);
  Flow runIf(If const& node);
  Flow runFor(For const& node);
  Flow runWhile(While const& node);
  Flow runTry(Try const& node);
  void runExpression(ExpressionStatement const& node);
  bool isTrueAt(Expression const& condition);
  // The statement's value is that of a variable; writes it to the output.
  void show(std::string const& variable, bool shown);
  static void checkInterrupt(SourceSpan span);

  // Values (expressions.cpp).
  txArrayPtr evaluate(Expression const& expression);
  Operand operand(Expression const& expression);
  // All values of an expression that may have several (calls, c{:}); at least `outputs` are asked
  // for. A statement asks for 0: a call may then give none or one.
  Values evaluateMany(Expression const& expression, int outputs);
  // The value of an expression that always has one; null for calls and members, and for names of
  // functions.
  txArrayPtr singleValue(Expression const& expression);
  Values severalValues(Expression const& expression, int outputs);
  txArrayPtr evaluateMatrix(Matrix const& node);
  RangeValues evaluateRange(Range const& node, SourceSpan span);
  txArrayPtr endValue(SourceSpan span) const;
  Arguments evaluateArguments(std::vector<ExpressionPtr> const& list, txArray const* indexed,
                              bool isIndex);

  // Calls and indices (calls.cpp).
  bool isVariable(std::string const& name) const;
  Values evaluateIndex(Expression const& expression, Index const& node, int outputs);
  Values callFunction(std::string const& name, SourceSpan nameSpan, SourceSpan whole,
                      Arguments const& arguments, int outputs);
  Values memberValues(Member const& node, SourceSpan whole, std::vector<ExpressionPtr> const* list,
                      int outputs);
  Values indexValue(txArray const& value, Index const& node, SourceSpan whole);
  template <class Call>
  Values collect(SourceSpan whole, Arguments const& arguments, int outputs, Call&& call);
  [[noreturn]] void unknownName(std::string const& name, SourceSpan span) const;
  [[noreturn]] void unknownMember(txArray const& object, Member const& node) const;

  // Assignments (assignment.cpp).
  void runAssignment(Assignment const& node);
  // What is assigned, and where it stands in the source.
  struct NewValue {
    txArrayPtr array;
    SourceSpan span;
    bool deletes = false;
  };
  // Returns the name of the variable that was changed.
  std::string const& assign(Expression const& target, NewValue value);
  void assignPath(txArrayPtr& slot, std::span<Expression const* const> path, NewValue value);
  static Subscripts subscripts(Arguments const& arguments);

  Session& session_;
  std::vector<EndContext> ends_;
};

}  // namespace language
