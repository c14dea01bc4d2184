#include "builtins/legacy_syntax.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>

#include "errors/argument_counts.h"
#include "errors/keys.h"
#include "vmstate/legacy_mode.h"

namespace builtins {
namespace {

// One generator as the syntax sees it. Every one takes a real double scalar as its seed; those with
// a longer state take that too.
struct Form {
  LegacyGenerator generator;
  bool (*acceptsState)(txArray const& state);  // of its class and length
  void (*refuse)();
};

constexpr int kValuePosition = 2;

template <class Key>
void refuseWith() {
  errors::raise(Key(), kValuePosition);
}

bool acceptsAny(txArray const&) { return true; }

// The table needs values that its recurrence can hold; the borrow and the counters may be 0.
bool acceptsUniformState(txArray const& array) {
  constexpr std::size_t kTable = 32;
  const std::span values(array.dataAs<double>(), static_cast<std::size_t>(array.numel()));
  return std::ranges::all_of(values, [](double v) { return v >= 0 && v < 1; }) &&
         std::ranges::all_of(values.first(kTable), [](double v) { return v >= 0x1p-53; });
}

bool acceptsTwisterState(txArray const& array) {
  std::uint64_t const position = array.numel() - 1;  // behind the words, whose number it may reach
  return array.dataAs<std::uint32_t>()[position] <= position;
}

constexpr std::array kRandForms = {
    Form{LegacyGenerator::uniformSeed, acceptsAny, refuseWith<TALVOR::rand::invalidSeed>},
    Form{LegacyGenerator::uniformState, acceptsUniformState,
         refuseWith<TALVOR::rand::invalidState>},
    Form{LegacyGenerator::uniformTwister, acceptsTwisterState,
         refuseWith<TALVOR::rand::invalidTwisterState>},
};
constexpr std::array kRandnForms = {
    Form{LegacyGenerator::normalSeed, acceptsAny, refuseWith<TALVOR::randn::invalidSeed>},
    Form{LegacyGenerator::normalState, acceptsAny, refuseWith<TALVOR::randn::invalidState>},
};

void read(Form const& form, txArrayPtr* plhs) {
  auto const [classID, length] = legacyStateType(form.generator);
  const std::uint64_t dims[] = {length, 1};
  txArrayPtr state = txCreateUninitialized(dims, classID);
  readLegacyGenerator(form.generator, state->data());
  plhs[0] = std::move(state);
}

void set(Form const& form, txArray const& value) {
  auto const dims = value.dims();
  const bool column = dims.size() == 2 && dims[1] == 1 && !value.isComplex();
  if (column && value.classID() == txClassDouble && value.isScalar()) {
    return seedLegacyGenerator(form.generator, value.scalarAsDouble());
  }
  auto const [classID, length] = legacyStateType(form.generator);
  if (column && value.classID() == classID && value.numel() == length) {
    txArrayPtr const full = txToFull(value);
    if (form.acceptsState(*full)) return loadLegacyGenerator(form.generator, full->data());
  }
  form.refuse();
}

bool run(std::span<Form const> forms, int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  auto const keyword = nrhs > 0 ? prhs[0]->scalarText() : std::nullopt;
  if (!keyword) return false;
  auto const form = std::ranges::find_if(forms, [&](Form const& candidate) {
    return std::ranges::equal(*keyword, std::string_view(legacyKeyword(candidate.generator)));
  });
  if (form == forms.end()) return false;
  if (nlhs > 1) matrix::detail::error_maxlhs();
  if (nrhs == 1) {
    read(*form, plhs);
    return true;
  }
  if (nlhs > 0) errors::raise(TALVOR::legacy_two_part::maxlhs());
  if (nrhs > 2) errors::raise(TALVOR::legacy_two_part::maxrhs());
  set(*form, *prhs[1]);
  return true;
}

}  // namespace

bool legacyRand(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  return run(kRandForms, nlhs, plhs, nrhs, prhs);
}

bool legacyRandn(int nlhs, txArrayPtr* plhs, int nrhs, txArray const** prhs) {
  return run(kRandnForms, nlhs, plhs, nrhs, prhs);
}

}  // namespace builtins
