// Calls that are offered to the host's classes, against a class of the embedded host.

#include <gmock/gmock.h>

#include "builtins/builtins.h"
#include "embedded_host/messages.h"
#include "embedded_host/object_system.h"
#include "tests/support/calls.h"
#include "tests/support/identifiers.h"

namespace {

using namespace testing_support;
using embedded_host::ClassDefinition;

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

bool isTaken(txArray const& value) { return value.scalarText() == u"taken"; }

TEST_F(ClassDispatch, PrototypeGetsLikeMethodFirst) {
  defineLength({.like = true, .plain = true});
  std::size_t const before = globalState();
  EXPECT_TRUE(isTaken(*call(mathrngRandFcn, args(2, 3, "like", length(row({1}))))));
  EXPECT_EQ(note, "randLike/1 1x1 Length 1x1 double 1x1 double");
  EXPECT_TRUE(isTaken(*call(mathrngRandnFcn, args("like", length(row({1}))), 0)));
  EXPECT_EQ(note, "randnLike/0 1x1 Length");
  EXPECT_TRUE(isTaken(*call(mathrngRandiFcn, args(row({1, 6}), 2, "like", length(row({1}))))));
  EXPECT_EQ(note, "randiLike/1 1x1 Length 1x2 double 1x1 double");
  EXPECT_EQ(globalState(), before);
}

TEST_F(ClassDispatch, PrototypeWithoutLikeMethodGetsPlainOneWithoutItself) {
  defineLength({.plain = true});
  EXPECT_TRUE(isTaken(*call(mathrngRandFcn, args(2, 3, "like", length(row({1}))))));
  EXPECT_EQ(note, "rand/1 1x1 double 1x1 double");
  EXPECT_TRUE(isTaken(*call(mathrngRandiFcn, args(6, 2, "like", length(row({1}))))));
  EXPECT_EQ(note, "randi/1 1x1 double 1x1 double");
}

TEST_F(ClassDispatch, PrototypeWithoutMethodsHasResultBuiltAndCast) {
  defineLength({});
  txArrayPtr const result = call(mathrngRandFcn, args(2, 3, "like", length(typed<float>(1))));
  EXPECT_EQ(shapeOf(*result), "2x3 Length");
  EXPECT_EQ(shapeOf(*tcos::underlyingArray(*result)), "2x3 single");
  txArrayPtr const integers =
      call(mathrngRandiFcn, args(6, 2, "like", length(typed<std::uint8_t>(1))));
  EXPECT_EQ(shapeOf(*tcos::underlyingArray(*integers)), "2x2 uint8");
  txArrayPtr const logical = call(mathrngRandiFcn, args(1, "like", length(typed<bool>(1))));
  EXPECT_EQ(shapeOf(*tcos::underlyingArray(*logical)), "1x1 logical");
  txArrayPtr const complex = call(mathrngRandnFcn, args(2, "like", length(imaginary(1))));
  EXPECT_EQ(shapeOf(*tcos::underlyingArray(*complex)), "2x2 complex double");
}

TEST_F(ClassDispatch, PrototypeAroundWrongClassIsRefused) {
  defineLength({});
  auto const error = [&](txBuiltin builtin, txArrayPtr wrapped) {
    std::size_t const before = globalState();
    std::string const id =
        identifierOf([&] { call(builtin, args(2, "like", length(std::move(wrapped)))); });
    EXPECT_EQ(globalState(), before);
    return id;
  };
  EXPECT_EQ(error(mathrngRandFcn, typed<bool>(1)), "TALVOR:rand:invalidPrototype");
  EXPECT_EQ(error(mathrngRandFcn, typed<int>(1)), "TALVOR:rand:invalidPrototype");
  EXPECT_EQ(error(mathrngRandFcn, nullptr), "TALVOR:rand:invalidPrototype");
  EXPECT_EQ(error(mathrngRandFcn, sparseScalar(1)), "TALVOR:rand:sparsePrototype");
}

TEST_F(ClassDispatch, IntegerPrototypesAreRefusedByKind) {
  defineLength({});
  auto const attempt = [&](txArrayPtr wrapped) {
    return [this, given = std::make_shared<txArrayPtr>(std::move(wrapped))] {
      call(mathrngRandiFcn, args(6, "like", length(*given ? txShare(**given) : nullptr)));
    };
  };
  EXPECT_EQ(identifierOf(attempt(typed<std::int64_t>(1))), "TALVOR:randi:invalidOutputType");
  EXPECT_EQ(argumentsOf(attempt(typed<std::int64_t>(1))), "Length");
  EXPECT_EQ(identifierOf(attempt(nullptr)), "TALVOR:randi:invalidPrototype");
  EXPECT_EQ(identifierOf(attempt(toArgument("text"))), "TALVOR:randi:invalidPrototype");
}

TEST_F(ClassDispatch, ClassNameGetsSizesOrLimitsAndSizes) {
  defineLength({.plain = true});
  EXPECT_TRUE(isTaken(*call(mathrngRandFcn, args(2, 3, "Length"))));
  EXPECT_EQ(note, "rand/1 1x1 double 1x1 double");
  EXPECT_TRUE(
      isTaken(*call(mathrngRandnFcn, args(2, embedded_host::makeClassIdentifier(u"Length")))));
  EXPECT_EQ(note, "randn/1 1x1 double");
  EXPECT_TRUE(isTaken(*call(mathrngRandiFcn, args(row({1, 6}), 3, "Length"))));
  EXPECT_EQ(note, "randi/1 1x2 double 1x1 double");
}

TEST_F(ClassDispatch, ClassWithoutMethodIsNoOutputType) {
  defineLength({});
  EXPECT_EQ(identifierOf([] { call(mathrngRandFcn, args(2, "Length")); }),
            "TALVOR:rand:invalidOutputType");
  EXPECT_EQ(identifierOf([] { call(mathrngRandiFcn, args(2, "Length")); }),
            "TALVOR:randi:invalidClassname");
}

TEST_F(ClassDispatch, ErrorsOfClassReachCaller) {
  ClassDefinition definition{.name = "Broken"};
  definition.staticMethods["rand"] = [](int, txArrayPtr*, int, txArray const**) {
    embedded_host::raiseHostError("TALVOR:nomem", 1);
  };
  vm.context().classes().add(std::move(definition));
  EXPECT_EQ(identifierOf([] { call(mathrngRandFcn, args("Broken")); }), "TALVOR:nomem");
}

TEST_F(ClassDispatch, SizesAreSeenThroughObjects) {
  defineLength({});
  EXPECT_EQ(shapeOf(*call(mathrngRandFcn, args(length(row({2, 3}))))), "2x3 double");
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
  EXPECT_EQ(shapeOf(*call(mathrngRandFcn, args(2, roman()))), "2x4 double");
  EXPECT_EQ(shapeOf(*call(mathrngRandiFcn, args(6, roman(), 2, "int8"))), "4x2 int8");
  EXPECT_EQ(identifierOf([&] { call(mathrngRandnFcn, args(roman(), "x", 1)); }),
            "TALVOR:randn:inputType");
}

// A host without the conversion leaves such sizes as they are.
TEST_F(ClassDispatch, MissingConversionIsWrongInputType) {
  vm.context().functions().remove("talvor.internal.builtinhelper.convertSizeArgToDouble");
  EXPECT_EQ(identifierOf([&] { call(mathrngRandFcn, args(cellOf(nullptr), 1)); }),
            "TALVOR:rand:inputType");
}

}  // namespace
