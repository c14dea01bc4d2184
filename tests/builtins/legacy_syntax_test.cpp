// The two-part syntax of rand and randn, and legacy mode, through the builtins.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "builtins/builtins.h"
#include "embedded_host/array.h"
#include "embedded_host/vm_context.h"
#include "tests/support/identifiers.h"
#include "vmstate/global_stream.h"
#include "vmstate/legacy_mode.h"

namespace {

using namespace embedded_host;
using testing_support::identifierOf;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

// A virtual machine that notes its warnings as "identifier(argument, argument)".
class Machine {
 public:
  Machine() {
    vm_.setWarningSink([this](auto const& id, std::string const& text) {
      std::string note = id.identifier() + '(';
      for (auto const& argument : id.arguments()) {
        if (note.back() != '(') note += ", ";
        note += std::get<std::string>(argument);
      }
      warnings_.push_back(note + ')');
      EXPECT_NE(text, "");
    });
  }

  // The warnings since the last call.
  std::vector<std::string> warnings() { return std::exchange(warnings_, {}); }

  VmContext& context() { return vm_; }

 private:
  std::vector<std::string> warnings_;
  VmContext vm_;
};

using Args = std::vector<txArray const*>;

txArrayPtr call(txBuiltin function, int nlhs, Args args) {
  txArrayPtr outputs[4];
  function(nlhs, outputs, static_cast<int>(args.size()), args.data());
  return std::move(outputs[0]);
}

txArrayPtr call(txBuiltin function, char const* keyword) {
  return call(function, 1, {txCreateText(std::string_view(keyword)).get()});
}

void set(txBuiltin function, char const* keyword, txArrayPtr const& value) {
  call(function, 0, {txCreateText(std::string_view(keyword)).get(), value.get()});
}

void set(txBuiltin function, char const* keyword, double value) {
  set(function, keyword, txCreateDouble(value));
}

template <class T>
std::vector<T> values(txArrayPtr const& array) {
  auto const elements = elementsOf<T>(*array);
  return {elements.begin(), elements.end()};
}

std::vector<double> draw(txBuiltin function, double n) {
  return values<double>(call(function, 1, {txCreateDouble(n).get(), txCreateDouble(1).get()}));
}

bool legacyMode() { return *call(inLegacyMode, 1, {})->dataAs<bool>(); }

// The stream behind a handle that `getter` makes; releases the handle.
std::shared_ptr<randstream> streamFrom(txBuiltin getter) {
  txArrayPtr const handle = call(getter, 1, {});
  std::unique_ptr<std::shared_ptr<randstream>> const owner(
      reinterpret_cast<std::shared_ptr<randstream>*>(*handle->dataAs<std::uint64_t>()));
  return *owner;
}

std::shared_ptr<randstream> globalStream() { return streamFrom(getsetGlobalRandStream); }

// The bytes of the legacy stream's state.
std::vector<char> legacyState() {
  auto const stream = streamFrom(getLegacyRandStream);
  std::vector<char> bytes(stream->getStateBufLen());
  stream->getStateBuf(bytes.data(), bytes.size());
  return bytes;
}

std::vector<double> uniformState(std::size_t at = 0, double value = 0.5) {
  std::vector<double> state(35, 0.5);
  state[32] = state[33] = state[34] = 0;
  state[at] = value;
  return state;
}

std::vector<std::uint32_t> twisterState(std::uint32_t position) {
  std::vector<std::uint32_t> state(625, 1);
  state[624] = position;
  return state;
}

template <class T>
txArrayPtr column(std::vector<T> const& elements) {
  return makeArray<T>(std::array<std::uint64_t, 2>{elements.size(), 1}, std::span(elements));
}

template <class T>
txArrayPtr row(std::vector<T> const& elements) {
  return makeArray<T>(std::array<std::uint64_t, 2>{1, elements.size()}, std::span(elements));
}

// One keyword form.
struct Form {
  txBuiltin function;
  char const* keyword;
  char const* name;  // "RAND", "RANDN"
  char const* distribution;
  std::size_t stateLen;
  char const* refusal;
};

std::ostream& operator<<(std::ostream& out, Form const& f) {
  return out << f.name << "_" << f.keyword;
}

const Form kRandSeed{mathrngRandFcn, "seed", "RAND", "uniform", 1, "TALVOR:rand:invalidSeed"};
const Form kRandState{mathrngRandFcn, "state", "RAND", "uniform", 35, "TALVOR:rand:invalidState"};
const Form kRandTwister{mathrngRandFcn, "twister", "RAND",
                        "uniform",      625,       "TALVOR:rand:invalidTwisterState"};
const Form kRandnSeed{mathrngRandnFcn, "seed", "RANDN", "normal", 1, "TALVOR:randn:invalidSeed"};
const Form kRandnState{mathrngRandnFcn, "state", "RANDN", "normal", 2, "TALVOR:randn:invalidState"};

class LegacyForm : public testing::TestWithParam<Form> {
 protected:
  std::vector<std::string> activating() const {
    return {std::string("TALVOR:RandStream:ActivatingLegacyGenerators(") + GetParam().name + ", " +
            GetParam().keyword + ")"};
  }
  std::vector<std::string> inactive() const {
    return {std::string("TALVOR:RandStream:ReadingInactiveLegacyGeneratorState(") +
            GetParam().keyword + ", " + GetParam().distribution + ")"};
  }

  Machine machine_;
  EnterVm enter_{machine_.context()};
};

TEST_P(LegacyForm, ReadingGivesAColumnAndWarnsWhileInactive) {
  auto const& form = GetParam();
  txArrayPtr const state = call(form.function, form.keyword);
  EXPECT_EQ(state->classID(), form.stateLen == 625 ? txClassUint32 : txClassDouble);
  EXPECT_EQ(state->dims().size(), 2u);
  EXPECT_EQ(state->dims()[0], form.stateLen);
  EXPECT_EQ(state->dims()[1], 1u);
  EXPECT_EQ(machine_.warnings(), inactive());
  EXPECT_FALSE(legacyMode());
}

TEST_P(LegacyForm, SettingEntersLegacyModeAndWarnsOnce) {
  auto const& form = GetParam();
  set(form.function, form.keyword, 1);
  EXPECT_EQ(machine_.warnings(), activating());
  EXPECT_TRUE(legacyMode());
  set(form.function, form.keyword, 2);
  call(form.function, form.keyword);  // active now: read in silence
  EXPECT_EQ(machine_.warnings(), std::vector<std::string>{});
}

TEST_P(LegacyForm, SeedAndStateRepeatTheDraws) {
  auto const& form = GetParam();
  set(form.function, form.keyword, 5);
  auto const fromSeed = draw(form.function, 20);
  txArrayPtr const state = call(form.function, form.keyword);
  auto const fromState = draw(form.function, 20);
  EXPECT_NE(fromState, fromSeed);
  set(form.function, form.keyword, state);
  EXPECT_EQ(draw(form.function, 20), fromState);
  set(form.function, form.keyword, 5);
  EXPECT_EQ(draw(form.function, 20), fromSeed);
}

TEST_P(LegacyForm, SettingOneGeneratorLeavesTheOthersAlone) {
  auto const& chosen = GetParam();
  std::vector<Form> const all = {kRandSeed, kRandState, kRandTwister, kRandnSeed, kRandnState};
  auto const states = [&] {
    std::vector<std::vector<char>> result;
    for (auto const& form : all) {
      txArrayPtr const state = call(form.function, form.keyword);
      auto const* bytes = static_cast<char const*>(state->data());
      result.emplace_back(bytes, bytes + state->numel() * elementBytes(state->classID()));
    }
    return result;
  };
  auto const before = states();
  set(chosen.function, chosen.keyword, 4711);
  auto const after = states();
  for (std::size_t i = 0; i < all.size(); ++i) {
    const bool same =
        all[i].function != chosen.function || std::string_view(all[i].keyword) != chosen.keyword;
    EXPECT_EQ(after[i] == before[i], same) << all[i];
  }
}

TEST_P(LegacyForm, OutputsAndFurtherArgumentsAreRefused) {
  auto const& form = GetParam();
  auto const keyword = txCreateText(std::string_view(form.keyword));
  auto const one = txCreateDouble(1);
  auto const before = legacyState();
  auto const error = [&](int nlhs, Args args) {
    return identifierOf([&] { call(form.function, nlhs, args); });
  };
  EXPECT_EQ(error(1, {keyword.get(), one.get()}), "TALVOR:legacy_two_part:maxlhs");
  EXPECT_EQ(error(0, {keyword.get(), one.get(), one.get()}), "TALVOR:legacy_two_part:maxrhs");
  EXPECT_EQ(error(1, {keyword.get(), one.get(), one.get()}), "TALVOR:legacy_two_part:maxlhs");
  EXPECT_EQ(error(2, {keyword.get(), one.get()}), "TALVOR:maxlhs");
  EXPECT_EQ(error(2, {keyword.get()}), "TALVOR:maxlhs");
  EXPECT_EQ(legacyState(), before);
  EXPECT_FALSE(legacyMode());
}

TEST_P(LegacyForm, KeywordsAreExactAndMayBeStrings) {
  auto const& form = GetParam();
  std::u16string upper;
  for (char const* c = form.keyword; *c; ++c) upper += static_cast<char16_t>(*c - 32);
  std::u16string lower(form.keyword, form.keyword + std::strlen(form.keyword));
  const std::string unknown = form.function == &mathrngRandFcn ? "TALVOR:rand:invalidOutputType"
                                                               : "TALVOR:randn:invalidOutputType";
  for (auto const& text : {upper, lower + u" ", lower.substr(1), u"\u0161" + lower.substr(1)}) {
    EXPECT_EQ(identifierOf([&] { call(form.function, 1, {txCreateText(text).get()}); }), unknown);
  }
  EXPECT_EQ(call(form.function, 1, {makeString(lower).get()})->numel(), form.stateLen);
}

INSTANTIATE_TEST_SUITE_P(Keywords, LegacyForm,
                         testing::Values(kRandSeed, kRandState, kRandTwister, kRandnSeed,
                                         kRandnState),
                         testing::PrintToStringParamName());

struct Offer {
  std::string what;
  Form form;
  std::function<txArrayPtr()> value;
  bool accepted;
};

std::ostream& operator<<(std::ostream& out, Offer const& o) {
  return out << o.form << " " << o.what;
}

// Offered in legacy mode and outside it.
class LegacyValue : public testing::TestWithParam<Offer> {
 protected:
  Machine machine_;
  EnterVm enter_{machine_.context()};
};

TEST_P(LegacyValue, IsAcceptedOrRefusedWithoutATrace) {
  auto const& [what, form, value, accepted] = GetParam();
  for (const bool inside : {false, true}) {
    if (inside) {
      set(mathrngRandFcn, "seed", 3);
      set(mathrngRandnFcn, "seed", 3);
    }
    EXPECT_EQ(legacyMode(), inside);
    machine_.warnings();
    auto const before = legacyState();
    auto const globalBefore = globalStream();
    Form const& f = form;
    auto const& offered = value;
    auto const error = identifierOf([&] { set(f.function, f.keyword, offered()); });
    if (accepted) {
      ASSERT_EQ(error, "no error");
      EXPECT_TRUE(legacyMode());
      for (const double x : draw(f.function, 100)) ASSERT_TRUE(std::isfinite(x));
      return;
    }
    EXPECT_EQ(error, f.refusal);
    EXPECT_EQ(legacyState(), before);
    EXPECT_EQ(globalStream(), globalBefore);
    EXPECT_EQ(machine_.warnings(), std::vector<std::string>{});
  }
}

constexpr std::array<std::uint64_t, 2> kEmpty = {0, 0};
constexpr std::array<std::uint64_t, 3> kDeep = {1, 1, 2};

std::vector<Offer> offersToAll() {
  std::vector<Offer> offers;
  for (auto const& form : {kRandSeed, kRandState, kRandTwister, kRandnSeed, kRandnState}) {
    for (const double seed :
         {0.0, 1.0, 0.5, -1.0, 4294967296.0, 1e300, 5e-324, kNaN, kInf, -kInf}) {
      offers.push_back(
          {"seed " + std::to_string(seed), form, [seed] { return txCreateDouble(seed); }, true});
    }
    auto const refused = [&](char const* what, std::function<txArrayPtr()> value) {
      offers.push_back({what, form, std::move(value), false});
    };
    offers.push_back({"sparse scalar", form, [] { return toSparse(*txCreateDouble(5)); }, true});
    refused("single", [] { return makeScalar<float>(1); });
    refused("uint32 scalar", [] { return makeScalar<std::uint32_t>(1); });
    refused("logical", [] { return txCreateLogical(true); });
    refused("text", [] { return txCreateText(std::string_view("5")); });
    refused("complex", [] { return makeComplex(1, 2); });
    refused("empty", [] { return makeZeros(kEmpty, txClassDouble); });
    refused("three-dimensional", [] { return makeZeros(kDeep, txClassDouble); });
    refused("row of two", [] { return row<double>({1, 2}); });
    refused("column of three", [] { return column<double>({1, 2, 3}); });
    refused("cell", [] { return txCreateCell(kEmpty); });
  }
  return offers;
}

std::vector<Offer> offersOfStates() {
  std::vector<Offer> offers = {
      {"of two doubles", kRandnState,
       [] {
         return column<double>({1, 0});
       },
       true},
      {"of two hostile doubles", kRandnState,
       [] {
         return column<double>({kNaN, 1e300});
       },
       true},
      {"of two singles", kRandnState,
       [] {
         return column<float>({1, 2});
       },
       false},
      {"of two", kRandSeed,
       [] {
         return column<double>({1, 2});
       },
       false},
      {"of two", kRandnSeed,
       [] {
         return column<double>({1, 2});
       },
       false},
      {"of two", kRandState,
       [] {
         return column<double>({1, 2});
       },
       false},
      {"good", kRandState, [] { return column(uniformState()); }, true},
      {"sparse", kRandState, [] { return toSparse(*column(uniformState())); }, true},
      {"as a row", kRandState, [] { return row(uniformState()); }, false},
      {"of 34", kRandState, [] { return column(std::vector<double>(34, 0.5)); }, false},
      {"all zero", kRandState, [] { return column(std::vector<double>(35, 0)); }, false},
      {"least", kRandState, [] { return column(uniformState(31, 0x1p-53)); }, true},
      {"at the start", kRandTwister, [] { return column(twisterState(0)); }, true},
      {"at 624", kRandTwister, [] { return column(twisterState(624)); }, true},
      {"at 625", kRandTwister, [] { return column(twisterState(625)); }, false},
      {"far out", kRandTwister, [] { return column(twisterState(0xffffffff)); }, false},
      {"as a row", kRandTwister, [] { return row(twisterState(0)); }, false},
      {"of 624", kRandTwister, [] { return column(std::vector<std::uint32_t>(624, 1)); }, false},
      {"of int32", kRandTwister, [] { return column(std::vector<std::int32_t>(625, 1)); }, false},
      {"of doubles", kRandTwister, [] { return column(std::vector<double>(625, 1)); }, false},
  };
  // Where a value stands decides whether it may be 0.
  for (const std::size_t at : {0u, 31u, 32u, 33u, 34u}) {
    const bool inTable = at < 32;
    for (auto const& [value, accepted] :
         {std::pair(0.0, !inTable), std::pair(0x1.fp-54, !inTable), std::pair(1 - 0x1p-53, true),
          std::pair(1.0, false), std::pair(-0x1p-60, false), std::pair(kNaN, false),
          std::pair(kInf, false), std::pair(1e300, false)}) {
      offers.push_back({"with " + std::to_string(value) + " at " + std::to_string(at), kRandState,
                        [at, v = value] { return column(uniformState(at, v)); }, accepted});
    }
  }
  return offers;
}

INSTANTIATE_TEST_SUITE_P(Seed, LegacyValue, testing::ValuesIn(offersToAll()));
INSTANTIATE_TEST_SUITE_P(State, LegacyValue, testing::ValuesIn(offersOfStates()));

class LegacyMode : public testing::Test {
 protected:
  Machine machine_;
  EnterVm enter_{machine_.context()};
};

TEST_F(LegacyMode, AFreshMachineIsNotInIt) {
  EXPECT_FALSE(legacyMode());
  EXPECT_EQ(machine_.warnings(), std::vector<std::string>{});
}

TEST_F(LegacyMode, TwisterSeedsAreThoseOfTheTwister) {
  set(mathrngRandFcn, "twister", 5489);
  EXPECT_EQ(draw(mathrngRandFcn, 2)[0], 0.81472368639317894);
  set(mathrngRandFcn, "twister", 0);
  EXPECT_EQ(draw(mathrngRandFcn, 1)[0], 0.81472368639317894);
  set(mathrngRandFcn, "twister", 4294967296.0 + 5489);
  EXPECT_EQ(draw(mathrngRandFcn, 1)[0], 0.81472368639317894);
}

TEST_F(LegacyMode, SeedsOfTheStateGeneratorsUseTheirLowWord) {
  set(mathrngRandnFcn, "state", 7);
  EXPECT_EQ(values<double>(call(mathrngRandnFcn, "state")), (std::vector<double>{362436069, 7}));
  set(mathrngRandnFcn, "state", 0);
  EXPECT_EQ(values<double>(call(mathrngRandnFcn, "state")),
            (std::vector<double>{362436069, 521288629}));
  set(mathrngRandFcn, "state", 7);
  auto const seven = values<double>(call(mathrngRandFcn, "state"));
  set(mathrngRandFcn, "state", 4294967296.0 + 7);
  EXPECT_EQ(values<double>(call(mathrngRandFcn, "state")), seven);
}

TEST_F(LegacyMode, SeedOfTheSeedGeneratorsReadsBackRepaired) {
  set(mathrngRandFcn, "seed", 0);
  EXPECT_EQ(values<double>(call(mathrngRandFcn, "seed"))[0], 931316785);
  set(mathrngRandFcn, "seed", 1);
  EXPECT_EQ(values<double>(call(mathrngRandFcn, "seed"))[0], 1);
  // The word is 65536 then: its successor is 16807 * 65536 modulo 2^31 - 1.
  EXPECT_EQ(draw(mathrngRandFcn, 1)[0], 1101463552 * 4.656612875245797e-10);
}

TEST_F(LegacyMode, FurtherSwitchesAreSilentAndReadingTellsTheInactiveOnes) {
  set(mathrngRandFcn, "seed", 1);
  machine_.warnings();
  set(mathrngRandnFcn, "state", 1);
  EXPECT_EQ(machine_.warnings(), std::vector<std::string>{});
  call(mathrngRandFcn, "twister");
  call(mathrngRandnFcn, "seed");
  EXPECT_EQ(machine_.warnings(),
            (std::vector<std::string>{
                "TALVOR:RandStream:ReadingInactiveLegacyGeneratorState(twister, uniform)",
                "TALVOR:RandStream:ReadingInactiveLegacyGeneratorState(seed, normal)"}));
}

TEST_F(LegacyMode, ItsNormalMethodIsTheOneInUse) {
  set(mathrngRandnFcn, "seed", 1);
  EXPECT_STREQ(globalStream()->getRandnAlg(), "V4 (polar)");
  set(mathrngRandnFcn, "state", 1);
  EXPECT_STREQ(globalStream()->getRandnAlg(), "V5 (ziggurat)");
}

TEST_F(LegacyMode, ClearingTheGlobalStreamLeavesItAndTheStatesSurvive) {
  set(mathrngRandFcn, "state", 11);
  draw(mathrngRandFcn, 5);
  auto const state = legacyState();
  machine_.warnings();
  call(clearGlobalRandStream, 0, {});
  EXPECT_FALSE(legacyMode());
  EXPECT_EQ(legacyState(), state);
  draw(mathrngRandFcn, 5);
  EXPECT_EQ(legacyState(), state);
  call(mathrngRandFcn, "state");
  EXPECT_EQ(machine_.warnings(),
            (std::vector<std::string>{
                "TALVOR:RandStream:ReadingInactiveLegacyGeneratorState(state, uniform)"}));
  set(mathrngRandnFcn, "seed", 1);
  EXPECT_EQ(
      machine_.warnings(),
      (std::vector<std::string>{"TALVOR:RandStream:ActivatingLegacyGenerators(RANDN, seed)"}));
  EXPECT_TRUE(legacyMode());
}

TEST_F(LegacyMode, TwoMachinesHaveTheirOwn) {
  set(mathrngRandFcn, "state", 1);
  auto const state = legacyState();
  Machine other;
  {
    EnterVm enter(other.context());
    EXPECT_FALSE(legacyMode());
    EXPECT_NE(legacyState(), state);
    set(mathrngRandFcn, "state", 2);
    EXPECT_TRUE(legacyMode());
    draw(mathrngRandFcn, 10);
  }
  EXPECT_EQ(legacyState(), state);
  EXPECT_EQ(other.warnings().size(), 1u);
  EXPECT_EQ(machine_.warnings().size(), 1u);
}

TEST_F(LegacyMode, ArgumentCountsOfItsBuiltins) {
  auto const one = txCreateDouble(1);
  constexpr char kWrong[] = "TALVOR:RandStream:set:WrongNumberArgs";
  EXPECT_EQ(identifierOf([&] { call(getLegacyRandStream, 1, {one.get()}); }), kWrong);
  EXPECT_EQ(identifierOf([&] { call(getLegacyRandStream, 2, {}); }), kWrong);
  EXPECT_EQ(identifierOf([&] { call(inLegacyMode, 1, {one.get()}); }), "TALVOR:maxrhs");
  EXPECT_EQ(identifierOf([&] { call(inLegacyMode, 2, {}); }), "TALVOR:maxlhs");
}

TEST_F(LegacyMode, TwisterIsNoKeywordOfRandn) {
  EXPECT_EQ(identifierOf([] { call(mathrngRandnFcn, "twister"); }),
            "TALVOR:randn:invalidOutputType");
}

TEST_F(LegacyMode, AStateThatTheTwisterCannotLeaveIsRefused) {
  auto const before = legacyState();
  EXPECT_EQ(identifierOf(
                [] { set(mathrngRandFcn, "twister", column(std::vector<std::uint32_t>(625, 0))); }),
            "TALVOR:RandStream:mt19937ar:InvalidState");
  EXPECT_EQ(legacyState(), before);
  EXPECT_FALSE(legacyMode());
}

}  // namespace
