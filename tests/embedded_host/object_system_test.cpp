#include "embedded_host/object_system.h"

#include <gmock/gmock.h>

#include "embedded_host/allocator.h"
#include "embedded_host/array.h"
#include "embedded_host/vm_context.h"
#include "host/tcos.h"
#include "host/tdispatcher.h"
#include "tests/support/identifiers.h"

using namespace embedded_host;
using testing::ElementsAre;

using testing_support::identifierOf;

namespace {

// Returns the number of its arguments plus `base`.
Function counter(int base) {
  return [base](int, txArrayPtr* plhs, int nrhs, txArray const**) {
    plhs[0] = txCreateDouble(base + nrhs);
  };
}

ClassPtr makeClass(ClassDefinition definition) {
  return std::make_shared<ClassDefinition const>(std::move(definition));
}

double readNumber(txArray const& object, char const* property) {
  return txGetProperty(object, property)->scalarAsDouble();
}

TEST(Objects, ValuesAreCopiedWhenChangedAndGoWithoutADestroyer) {
  int destroyed = 0;
  ClassPtr const definition =
      makeClass({.name = "Value", .properties = {{.name = "X"}}, .destroyer = [&](txArray&) {
                   ++destroyed;
                 }});
  makeObject(definition).reset();
  EXPECT_EQ(destroyed, 0);
  txArrayPtr const first = makeObject(definition);
  setProperty(*first, "X", *txCreateDouble(1));
  txArrayPtr const second = txShare(*first);
  setProperty(*second, "X", *txCreateDouble(2));
  EXPECT_EQ(readNumber(*first, "X"), 1);
  EXPECT_EQ(readNumber(*second, "X"), 2);
  EXPECT_FALSE(sameObject(*first, *txShare(*first)));
}

TEST(Objects, HandlesAreOneObject) {
  txArrayPtr const first =
      makeObject(makeClass({.name = "Handle", .handle = true, .properties = {{.name = "X"}}}));
  txArrayPtr const second = txShare(*first);
  setProperty(*second, "X", *txCreateDouble(2));
  EXPECT_EQ(readNumber(*first, "X"), 2);
  EXPECT_TRUE(sameObject(*first, *second));
  EXPECT_FALSE(sameObject(*first, *makeObject(classOf(*first))));
}

TEST(Objects, HandleIsDestroyedOnceWithItsLastShareAndItsPropertiesStillThere) {
  std::vector<double> seen;
  ClassPtr const definition = makeClass({.name = "Handle",
                                         .handle = true,
                                         .properties = {{.name = "StreamID"}},
                                         .destroyer = [&](txArray& object) {
                                           seen.push_back(readNumber(object, "StreamID"));
                                           throw 1;  // dropped: nobody is left to be told
                                         }});
  std::int64_t const before = allocationCounts().liveBlocks;
  txArrayPtr first = makeObject(definition);
  setStoredProperty(*first, "StreamID", txCreateDouble(17));
  txArrayPtr second = txShare(*first);
  first.reset();
  EXPECT_TRUE(seen.empty());
  second.reset();
  EXPECT_THAT(seen, ElementsAre(17));
  EXPECT_EQ(allocationCounts().liveBlocks, before);
}

TEST(Objects, HandleThatItsDestroyerSharesLivesOn) {
  txArrayPtr kept;
  int destroyed = 0;
  txArrayPtr object = makeObject(makeClass({.name = "Handle",
                                            .handle = true,
                                            .properties = {{.name = "X"}},
                                            .destroyer = [&](txArray& dying) {
                                              ++destroyed;
                                              kept = txShare(dying);
                                            }}));
  setProperty(*object, "X", *txCreateDouble(4));
  object.reset();
  ASSERT_NE(kept, nullptr);
  EXPECT_EQ(readNumber(*kept, "X"), 4);
  kept.reset();
  EXPECT_EQ(destroyed, 1);
}

TEST(Objects, PropertiesGoThroughTheirHooks) {
  ClassPtr const definition = makeClass(
      {.name = "Celsius",
       .properties = {
           {.name = "Kelvin"},
           {.name = "Degrees",
            .get =
                [](txArray const& object) {
                  return txCreateDouble(storedProperty(object, "Kelvin")->scalarAsDouble() - 273);
                },
            .set =
                [](txArray& object, txArray const& value) {
                  setStoredProperty(object, "Kelvin", txCreateDouble(value.scalarAsDouble() + 273));
                }},
           {.name = "Computed", .get = [](txArray const&) { return txCreateDouble(9); }},
           {.name = "Fixed", .readOnly = true}}});
  txArrayPtr const object = makeObject(definition);
  setProperty(*object, "Degrees", *txCreateDouble(7));
  EXPECT_EQ(readNumber(*object, "Kelvin"), 280);
  EXPECT_EQ(readNumber(*object, "Degrees"), 7);
  EXPECT_TRUE(txGetProperty(*object, "Fixed")->isEmpty());
  EXPECT_EQ(txGetProperty(*object, "kelvin"), nullptr);
  EXPECT_EQ(txGetProperty(*txCreateDouble(1), "Kelvin"), nullptr);
  txArrayPtr const one = txCreateDouble(1);
  EXPECT_EQ(identifierOf([&] { setProperty(*object, "Computed", *one); }),
            "TALVOR:object:ReadOnlyProperty");
  EXPECT_EQ(identifierOf([&] { setProperty(*object, "Fixed", *one); }),
            "TALVOR:object:ReadOnlyProperty");
  EXPECT_EQ(identifierOf([&] { setProperty(*object, "None", *one); }),
            "TALVOR:object:UnknownProperty");
  EXPECT_EQ(identifierOf([&] { setProperty(*txShare(*one), "X", *one); }),
            "TALVOR:object:NotObject");
}

TEST(Objects, ShowTheArrayUnderneath) {
  txArrayPtr const object = makeObject(makeClass({.name = "Length"}), makeRow({1., 2., 3.}));
  EXPECT_THAT(object->dims(), ElementsAre(1, 3));
  EXPECT_EQ(object->classID(), txClassObject);
  ASSERT_NE(tcos::underlyingArray(*object), nullptr);
  EXPECT_THAT(elementsOf<double>(*tcos::underlyingArray(*object)), ElementsAre(1, 2, 3));
  EXPECT_THAT(elementsOf<double>(*txToDouble(*object)), ElementsAre(1, 2, 3));
  txArrayPtr const bare = makeObject(classOf(*object));
  EXPECT_EQ(tcos::underlyingArray(*bare), nullptr);
  txArrayPtr const plain = txCreateDouble(1);
  EXPECT_EQ(tcos::underlyingArray(*plain), plain.get());
}

TEST(Classes, AreNamedAsTheirUsersNameThem) {
  EXPECT_EQ(tcos::className(*makeScalar(std::int8_t{1})), "int8");
  EXPECT_EQ(tcos::className(*makeString(u"x")), "string");
  EXPECT_EQ(tcos::className(*makeObject(makeClass({.name = "RandStream"}))), "RandStream");
  EXPECT_EQ(tcos::builtinClass(u"uint64"), txClassUint64);
  EXPECT_EQ(tcos::builtinClass(u"Double"), txClassUnknown);
  EXPECT_EQ(tcos::builtinClass(u"doublet"), txClassUnknown);
  EXPECT_EQ(tcos::builtinClass(u"\u0164ouble"), txClassUnknown);
  EXPECT_EQ(tcos::namedClass(*makeClassIdentifier(u"single")), u"single");
  EXPECT_EQ(tcos::namedClass(*txCreateText("single")), std::nullopt);
}

class Methods : public testing::Test {
 protected:
  Methods() : inside_(vm_) {
    vm_.classes().add({.name = "Gauge",
                       .constructor = counter(300),
                       .methods = {{"randLike", counter(100)}, {"plus", counter(110)}},
                       .staticMethods = {{"rand", counter(200)}}});
    vm_.functions().add("plus", counter(0));
    object_ = makeObject(vm_.classes().find("Gauge"));
    args_ = {object_.get(), number_.get()};
  }

  VmContext vm_;
  EnterVm inside_;
  txArrayPtr object_;
  txArrayPtr const number_ = txCreateDouble(1);
  std::vector<txArray const*> args_;
  txArrayPtr result_;
};

TEST_F(Methods, AreFoundByTheFirstArgumentOrTheClassAndHaveTheirOwnArguments) {
  std::vector<txArray const*> const one{number_.get()};
  std::vector<txArray const*> const swapped{args_[1], args_[0]};
  EXPECT_TRUE(tcos::callMethod("randLike", 1, &result_, args_));
  EXPECT_EQ(result_->scalarAsDouble(), 102);
  EXPECT_TRUE(tcos::callMethodOfClass(*object_, "rand", 1, &result_, one));
  EXPECT_EQ(result_->scalarAsDouble(), 201);
  EXPECT_TRUE(tcos::callStaticMethod(u"Gauge", "rand", 1, &result_, {}));
  EXPECT_EQ(result_->scalarAsDouble(), 200);
  EXPECT_FALSE(tcos::callMethod("rand", 1, &result_, args_));
  EXPECT_FALSE(tcos::callMethod("randLike", 1, &result_, swapped));
  EXPECT_FALSE(tcos::callMethod("randLike", 1, &result_, {}));
  EXPECT_FALSE(tcos::callMethodOfClass(*object_, "randLike", 1, &result_, one));
  EXPECT_FALSE(tcos::callStaticMethod(u"Nothing", "rand", 1, &result_, {}));
}

TEST_F(Methods, DispatchPrefersMethodThenFunctionThenConstructor) {
  EXPECT_TRUE(dispatch("plus", 1, &result_, args_));
  EXPECT_EQ(result_->scalarAsDouble(), 112);
  std::vector<txArray const*> const swapped{args_[1], args_[0]};
  EXPECT_TRUE(dispatch("plus", 1, &result_, swapped));
  EXPECT_EQ(result_->scalarAsDouble(), 112);
  std::vector<txArray const*> const one{number_.get()};
  EXPECT_TRUE(dispatch("plus", 1, &result_, one));
  EXPECT_EQ(result_->scalarAsDouble(), 1);
  EXPECT_TRUE(dispatch("Gauge", 1, &result_, one));
  EXPECT_EQ(result_->scalarAsDouble(), 301);
  EXPECT_FALSE(dispatch("minus", 1, &result_, one));
}

TEST_F(Methods, OfAnObjectInFrontLeaveOtherCallsToFunctions) {
  vm_.classes().add({.name = "Meter", .objectFirst = true, .methods = {{"plus", counter(500)}}});
  txArrayPtr const meter = makeObject(vm_.classes().find("Meter"));
  std::vector<txArray const*> const inFront{meter.get(), number_.get()};
  std::vector<txArray const*> const behind{number_.get(), meter.get()};
  EXPECT_TRUE(dispatch("plus", 1, &result_, inFront));
  EXPECT_EQ(result_->scalarAsDouble(), 502);
  EXPECT_TRUE(dispatch("plus", 1, &result_, behind));
  EXPECT_EQ(result_->scalarAsDouble(), 2);
}

TEST_F(Methods, NamesThatCanBeCalledAreKnownBeforehand) {
  vm_.classes().add({.name = "Abstract"});
  EXPECT_TRUE(Tdispatcher::has("plus"));
  EXPECT_TRUE(Tdispatcher::has("Gauge"));
  EXPECT_FALSE(Tdispatcher::has("Abstract"));
  EXPECT_FALSE(Tdispatcher::has("minus"));
}

}  // namespace
