// Ctrl-C while a program runs.

#include <gtest/gtest.h>

#include "embedded_host/dispatcher.h"
#include "embedded_host/interrupt.h"
#include "runtime/vm.h"
#include "tests/support/identifiers.h"

namespace {

using embedded_host::EnterVm;
using embedded_host::requestInterrupt;
using testing_support::identifierOf;

constexpr char kInterrupted[] = "TALVOR:language:interrupted";

// Calls with x, that take as long as x is long.
struct Call {
  char const* function;
  char const* arguments;
};
constexpr Call kLongCalls[] = {
    {"sort", "x"},         {"sort", "x,'descend'"}, {"sort", "single(x)"},
    {"unique", "x"},       {"median", "x"},         {"sum", "x"},
    {"cumsum", "x"},       {"mean", "x"},           {"std", "x"},
    {"max", "x"},          {"max", "x,2"},          {"any", "x"},
    {"find", "x"},         {"diff", "x"},           {"histcounts", "x,0:1"},
    {"sin", "x"},          {"sqrt", "x"},           {"sqrt", "-x"},
    {"abs", "x"},          {"power", "x,2"},        {"mod", "x,2"},
    {"isnan", "x"},        {"real", "x+1i"},        {"complex", "x,x"},
    {"int8", "x"},         {"logical", "x"},        {"repmat", "x,2,1"},
    {"linspace", "0,1,9"}, {"ones", "3"},           {"zeros", "3"},
    {"eps", "x"},          {"horzcat", "x,x"},      {"randperm", "100"},
    {"rand", "1,3e5"},     {"randi", "6,1,3e5"},
};

TEST(Interrupt, EndsLongFunctionsInTheirMiddle) {
  runtime::Vm vm;
  EnterVm const inside(vm.context());
  vm.evaluate("x = 1:100;");
  for (Call const& call : kLongCalls) {
    txArrayPtr const cell = vm.evaluate("{" + std::string(call.arguments) + "}");
    std::vector<txArray const*> arguments;
    for (std::uint64_t i = 0; i < cell->numel(); ++i) arguments.push_back(cell->cell(i));
    embedded_host::RunningProgram const running;
    requestInterrupt();
    txArrayPtr result;
    EXPECT_EQ(identifierOf([&] { embedded_host::dispatch(call.function, 1, &result, arguments); }),
              kInterrupted)
        << call.function << '(' << call.arguments << ')';
  }
}

TEST(Interrupt, AssignsNothingAndIsNeitherCaughtNorKept) {
  runtime::Vm vm;
  EnterVm const inside(vm.context());
  vm.context().functions().add("interrupt", [](int, txArrayPtr* plhs, int, txArray const**) {
    requestInterrupt();
    plhs[0] = txCreateDouble(1);
  });
  vm.evaluate("x = 5; y = 6; ans = 7;");
  for (char const* const program :
       {"x = interrupt()", "interrupt()", "[x, y] = max(interrupt())", "x(2) = interrupt();",
        "try, x = interrupt(); catch e, y = 1; end", "x = interrupt() + zeros(1,3);",
        "for k = interrupt():3, x = k; end", "if interrupt(), x = 8; end",
        "while interrupt(), x = 9; end", "x = [interrupt(), 4];"}) {
    try {
      vm.evaluate(program);
      ADD_FAILURE() << program;
    } catch (language::SourceError const& error) {
      EXPECT_EQ(error.identifier(), kInterrupted) << program;
    }
    EXPECT_EQ(vm.evaluate("[x y ans]")->numel(), 3U) << program;
    EXPECT_TRUE(txToLogical(*vm.evaluate("all([x y] == [5 6])"))) << program;
  }
}

TEST(Interrupt, IsNoneWhileNothingRuns) {
  runtime::Vm vm;
  requestInterrupt();
  EXPECT_EQ(identifierOf([&] { vm.call("rand", {txCreateDouble(1000).get()}); }), "no error");
  EXPECT_EQ(identifierOf([&] { vm.evaluate("sort(rand(1,100));"); }), "no error");
}

}  // namespace
