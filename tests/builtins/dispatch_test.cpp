// Calls that are offered to the host's classes, against a class of the embedded host.

#include <gmock/gmock.h>

#include "builtins/builtins.h"
#include "embedded_host/allocator.h"
#include "embedded_host/messages.h"
#include "embedded_host/object_system.h"
#include "tests/support/calls.h"
#include "tests/support/identifiers.h"

namespace {

using namespace testing_support;
using embedded_host::ClassDefinition;

constexpr auto rand = mathrngRandFcn;
constexpr auto randn = mathrngRandnFcn;
constexpr auto randi = mathrngRandiFcn;

// The class "Length" wraps a built-in array. Its methods note how they were called.
class ClassDispatch : public VmTest {
 protected:
  // What the class offers.
  struct Offers {
    bool like = false;
    bool plain = false;
    bool constructor = true;
  };

  void defineLength(Offers offers) {
    ClassDefinition definition{.name = "Length"};
    for (char const* name : {"rand", "randn", "randi"}) {
      if (offers.like)
        definition.methods[std::string(name) + "Like"] = noting(std::string(name) + "Like");
      if (offers.plain) definition.staticMethods[name] = noting(name);
    }
    if (offers.constructor)
      definition.constructor = [this](int, txArrayPtr* plhs, int, txArray const** prhs) {
        plhs[0] = length(txShare(*prhs[0]));
      };
    vm.context().classes().add(std::move(definition));
  }

  txArrayPtr length(txArrayPtr wrapped) {
    return embedded_host::makeObject(vm.context().classes().find("Length"), std::move(wrapped));
  }

  embedded_host::Function noting(std::string name) {
    return [this, name](int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
      note = name + "/" + std::to_string(nlhs);
      for (int i = 0; i < nrhs; ++i) note += " " + shapeOf(*prhs[i]);
      plhs[0] = txCreateText(std::string_view("taken"));
    };
  }

  std::string note;
};

TEST_F(ClassDispatch, MethodsTakeTheCallWithTheArgumentsThatAreTheirs) {
  struct Row {
    Offers offers;
    txBuiltin builtin;
    Args arguments;
    int nlhs;
    char const* note;
  };
  constexpr Offers kBoth{.like = true, .plain = true}, kPlain{.plain = true};
  auto const one = [this] { return length(row({1})); };
  for (auto const& offers : {kBoth, kPlain}) {
    defineLength(offers);
    Row rows[] = {
        // The "like" method of a prototype's class comes first.
        {kBoth, rand, args(2, 3, "like", one()), 1, "randLike/1 1x1 Length 1x1 double 1x1 double"},
        {kBoth, randn, args("like", one()), 0, "randnLike/0 1x1 Length"},
        {kBoth, randi, args(row({1, 6}), 2, "like", one()), 1,
         "randiLike/1 1x1 Length 1x2 double 1x1 double"},
        // The plain one is called without the prototype, or with what stands before the class name.
        {kPlain, rand, args(2, 3, "like", one()), 1, "rand/1 1x1 double 1x1 double"},
        {kPlain, randi, args(6, 2, "like", one()), 1, "randi/1 1x1 double 1x1 double"},
        {kPlain, rand, args(2, 3, "Length"), 1, "rand/1 1x1 double 1x1 double"},
        {kPlain, randn, args(2, embedded_host::makeClassIdentifier(u"Length")), 1,
         "randn/1 1x1 double"},
        {kPlain, randi, args(row({1, 6}), 3, "Length"), 1, "randi/1 1x2 double 1x1 double"},
    };
    std::size_t const before = globalState();
    for (Row const& row : rows) {
      if (row.offers.like != offers.like) continue;
      SCOPED_TRACE(row.note);
      EXPECT_EQ(call(row.builtin, row.arguments, row.nlhs)->scalarText(), u"taken");
      EXPECT_EQ(note, row.note);
    }
    EXPECT_EQ(globalState(), before);
  }
}

TEST_F(ClassDispatch, PrototypeWithoutMethodsHasResultBuiltAndCast) {
  defineLength({});
  auto const wrapped = [&](txBuiltin builtin, Args arguments, txArrayPtr prototype) {
    arguments.push_back(toArgument("like"));
    arguments.push_back(length(std::move(prototype)));
    txArrayPtr const result = call(builtin, arguments);
    EXPECT_EQ(tcos::className(*result), "Length");
    return shapeOf(*tcos::underlyingArray(*result));
  };
  EXPECT_EQ(wrapped(rand, args(2, 3), typed<float>(1)), "2x3 single");
  EXPECT_EQ(wrapped(randi, args(6, 2), typed<std::uint8_t>(1)), "2x2 uint8");
  EXPECT_EQ(wrapped(randi, args(1), typed<bool>(1)), "1x1 logical");
  EXPECT_EQ(wrapped(randn, args(2), imaginary(1)), "2x2 complex double");
}

TEST_F(ClassDispatch, WhatTheClassCannotStandForIsRefused) {
  struct Row {
    Offers offers;
    txBuiltin builtin;
    Args arguments;
    char const* identifier;
    char const* texts = "";
  };
  constexpr Offers kCast{}, kNothing{.constructor = false};
  defineLength({});
  Row rows[] = {
      {kCast, rand, args("like", length(typed<bool>(1))), "TALVOR:rand:invalidPrototype"},
      {kCast, rand, args("like", length(typed<int>(1))), "TALVOR:rand:invalidPrototype"},
      {kCast, rand, args("like", length(nullptr)), "TALVOR:rand:invalidPrototype"},
      {kCast, rand, args("like", length(sparseScalar(1))), "TALVOR:rand:sparsePrototype"},
      {kCast, randi, args(6, "like", length(typed<std::int64_t>(1))),
       "TALVOR:randi:invalidOutputType", "Length"},
      {kCast, randi, args(6, "like", length(nullptr)), "TALVOR:randi:invalidPrototype"},
      {kCast, randi, args(6, "like", length(toArgument("text"))), "TALVOR:randi:invalidPrototype"},
      {kCast, rand, args(2, "Length"), "TALVOR:rand:invalidOutputType"},
      {kCast, randi, args(2, "Length"), "TALVOR:randi:invalidClassname"},
      // Nothing to pass a result through.
      {kNothing, rand, args(2, "like", length(row({1}))), "TALVOR:rand:invalidPrototype"},
      {kNothing, randn, args("like", length(typed<float>(1))), "TALVOR:randn:invalidPrototype"},
      {kNothing, randi, args(6, "like", length(typed<bool>(1))), "TALVOR:randi:invalidPrototype"},
      {kNothing, rand, args("like", length(sparseScalar(1))), "TALVOR:rand:sparsePrototype"},
  };
  std::size_t const before = globalState();
  for (Row const& row : rows) {
    SCOPED_TRACE(&row - rows);
    defineLength(row.offers);
    try {
      call(row.builtin, row.arguments);
      ADD_FAILURE() << "accepted";
    } catch (foundation::core::except::AnyException const& error) {
      auto const& id = error.GetBaseMsgIDObj();
      EXPECT_EQ(error.GetID(), row.identifier);
      EXPECT_EQ(argumentsOf(id), row.texts);
      EXPECT_EQ(id.faultyArgument(), static_cast<int>(row.arguments.size()));
    }
  }
  EXPECT_EQ(globalState(), before);
}

TEST_F(ClassDispatch, ErrorsOfClassReachCaller) {
  ClassDefinition definition{.name = "Broken"};
  definition.staticMethods["rand"] = [](int, txArrayPtr*, int, txArray const**) {
    embedded_host::raiseHostError("TALVOR:nomem", 1);
  };
  vm.context().classes().add(std::move(definition));
  EXPECT_EQ(identifierOf([] { call(rand, args("Broken")); }), "TALVOR:nomem");
}

TEST_F(ClassDispatch, SizesAreSeenThroughObjects) {
  defineLength({});
  EXPECT_EQ(shapeOf(*call(rand, args(length(row({2, 3}))))), "2x3 double");
}

// A class with a conversion of its own may stand for a size.
TEST_F(ClassDispatch, ObjectsWithDoubleMethodAreConvertedTogether) {
  ClassDefinition definition{.name = "Roman"};
  definition.methods["double"] = [](int, txArrayPtr* plhs, int, txArray const**) {
    plhs[0] = embedded_host::makeScalar(4.0);
  };
  vm.context().classes().add(std::move(definition));
  auto const roman = [&] {
    return embedded_host::makeObject(vm.context().classes().find("Roman"));
  };
  EXPECT_EQ(shapeOf(*call(rand, args(2, roman()))), "2x4 double");
  EXPECT_EQ(shapeOf(*call(randi, args(6, roman(), 2, "int8"))), "4x2 int8");
  EXPECT_EQ(identifierOf([&] { call(randn, args(roman(), "x", 1)); }), "TALVOR:randn:inputType");
}

TEST_F(ClassDispatch, ConversionsThatGiveNothingLeaveTheObjectAsItIs) {
  ClassDefinition definition{.name = "Roman"};
  definition.methods["double"] = [](int, txArrayPtr*, int, txArray const**) {};
  vm.context().classes().add(std::move(definition));
  auto const roman = [&](txArrayPtr underlying) {
    return embedded_host::makeObject(vm.context().classes().find("Roman"), std::move(underlying));
  };
  // The cell, which has no method, makes all sizes be converted.
  try {
    call(rand, args(roman(row({4})), cellOf(nullptr)));
    ADD_FAILURE() << "accepted";
  } catch (foundation::core::except::AnyException const& error) {
    EXPECT_EQ(error.GetBaseMsgIDObj().faultyArgument(), 2);
  }
}

TEST_F(ClassDispatch, SizesThatAreNumbersAreNotConverted) {
  vm.context().functions().add("talvor.internal.builtinhelper.convertSizeArgToDouble",
                               noting("convert"));
  call(rand, args(2, typed<std::int8_t>(3), typed<bool>(1), sparseScalar(2)));
  EXPECT_EQ(note, "");
}

// Nine sizes are kept in host memory while they are converted.
TEST_F(ClassDispatch, ConvertedSizesLeaveNothingBehind) {
  Args const sizes = args(1, 1, 1, 1, 1, 1, 1, "2", 1);
  mrGetGlobalStream();
  vm.context().functions().add("talvor.internal.builtinhelper.convertSizeArgToDouble",
                               [](int nlhs, txArrayPtr* plhs, int, txArray const**) {
                                 for (int i = 0; i < nlhs; ++i) plhs[i] = row({2});
                               });
  auto const blocks = [] { return embedded_host::allocationCounts().liveBlocks; };
  auto const before = blocks();
  EXPECT_EQ(numbers(*call(rand, sizes)).size(), 512U);
  EXPECT_EQ(blocks(), before);
}

// A host without the conversion leaves such sizes as they are.
TEST_F(ClassDispatch, MissingConversionIsWrongInputType) {
  vm.context().functions().remove("talvor.internal.builtinhelper.convertSizeArgToDouble");
  EXPECT_EQ(identifierOf([&] { call(rand, args(cellOf(nullptr), 1)); }), "TALVOR:rand:inputType");
}

}  // namespace
